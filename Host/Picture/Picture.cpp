#include "Picture/Picture.h"

#include <algorithm>

#include "Picture/BackEnd.h"
#include "Picture/Composition.h"
#include "Picture/EntityPainter.h"
#include "Picture/PageLayout.h"
#include "Text/Text.h"

namespace host::picture {
namespace {

constexpr double kRasterDeviationPx = 0.1;
constexpr double kVectorDeviationPx = 0.02;  // 0.005 mm on paper
constexpr double kThinnestVectorPx = 0.34;   // 0.09 mm
constexpr double kBarsBelowPx = 1.3;

const database::BlockContents* findLayout(const database::DrawingDatabase& db, const std::string& name,
                                          std::string& known) {
  const std::wstring wanted = text::fromUtf8(name);
  if (text::equalFolded(wanted, L"Model")) return &db.modelSpace();
  for (const auto& [layoutName, block] : db.layouts()) {
    if (text::equalFolded(layoutName, wanted)) return block;
    known += (known.empty() ? "" : ", ") + text::toUtf8(layoutName);
  }
  return nullptr;
}

Problem failure(std::string sentence) { return problemOf(Code::PictureEmpty, std::move(sentence)); }

Box visibleExtents(const database::DrawingDatabase& db, const database::BlockContents& block,
                   const PictureOptions& options, GlyphSource& glyphs) {
  View view;
  view.boundsOnly = true;
  view.deviation = 0;
  BoundsCanvas canvas;
  EntityPainter(db, options, glyphs, view, canvas).paint(block);
  return canvas.box();
}

/// True when a line or fill has a point in the area: then the drawing lies there, not only the rim of a pen or a line
/// without end.
bool hasPointIn(const DisplayList& list, const Box& area) {
  return std::ranges::any_of(list.points, [&](const Point p) {
    return p.x > area.minX && p.y > area.minY && p.x < area.maxX && p.y < area.maxY;
  });
}

/// Paper spaces measure the paper itself: the unit of a layout's plot settings (tag 72: 0 inches, 1 millimetres).
double metresPerPaperUnit(const database::DrawingDatabase& db, const std::string& layout) {
  constexpr double kInch = 0.0254, kMillimetre = 0.001;
  const std::wstring wanted = text::fromUtf8(layout);
  double metres = kMillimetre;
  db.forEachSlot([&](const database::Slot& slot) {
    if (slot.type != database::DxfType::Layout || slot.isErased()) return;
    bool isLayoutPart = false, isInches = false;
    std::wstring name;
    database::TagCursor tags = slot.tags();
    for (database::Tag tag; tags.next(tag);) {
      if (tag.code == 100) isLayoutPart = tag.trimmed() == "AcDbLayout";
      if (tag.code == 72 && !isLayoutPart) isInches = tag.integer() == 0;
      if (tag.code == 1 && isLayoutPart) name = db.codec().decode(tag.value);
    }
    if (text::equalFolded(name, wanted)) metres = isInches ? kInch : kMillimetre;
  });
  return metres;
}

}  // namespace

Result<Composition> composePicture(const database::DrawingDatabase& db, const PictureOptions& given,
                                   PictureFormat format) {
  PictureOptions options = given;
  std::string known;
  const database::BlockContents* block = findLayout(db, options.layout, known);
  if (block == nullptr)
    return problemOf(Code::OutputFailed,
                     "There is no layout \"" + options.layout + "\"; the drawing has " + known + ".");

  if (block != &db.modelSpace()) options.metresPerUnit = metresPerPaperUnit(db, options.layout);

  GlyphSource glyphs;
  const std::string chosen = options.layers == "*" ? "" : " on layers \"" + options.layers + "\"";
  Box extents;
  const auto findExtents = [&]() -> std::optional<Problem> {
    extents = visibleExtents(db, *block, options, glyphs);
    if (extents.isEmpty())
      return failure("Layout \"" + options.layout + "\" has nothing visible" + chosen + " to draw.");
    if (options.window && !options.window->intersects(extents))
      return failure("Nothing visible" + chosen + " lies in the window " + boxText(*options.window) +
                     "; the drawing covers " + boxText(extents) + ".");
    return std::nullopt;
  };
  // A window says where the picture lies: the whole drawing is looked at only when nothing shows in it.
  if (!options.window)
    if (auto problem = findExtents()) return *problem;

  const Result<PageLayout> laidOut = layOutPage(options.window.value_or(extents), options, format);
  if (!laidOut) {
    if (options.window)
      if (auto problem = findExtents()) return *problem;
    return laidOut;
  }
  const PageLayout& layout = *laidOut;
  const bool isRaster = format == PictureFormat::Png;
  View view;
  view.toPicture = layout.toPicture;
  view.pixelsPerMm = layout.pixelsPerMm;
  view.deviation = isRaster ? kRasterDeviationPx : kVectorDeviationPx;
  view.thinnestLine = isRaster ? 1 : kThinnestVectorPx;
  view.barsBelow = isRaster ? kBarsBelowPx : 0;
  view.area = {0, 0, layout.page.widthPx, layout.page.heightPx};
  if (options.window) {
    // A window on paper shows what is in the window, not what else would fit.
    Box window;
    window.add(view.toPicture.plan({options.window->minX, options.window->minY, 0}));
    window.add(view.toPicture.plan({options.window->maxX, options.window->maxY, 0}));
    view.area = {std::max(view.area.minX, window.minX), std::max(view.area.minY, window.minY),
                 std::min(view.area.maxX, window.maxX), std::min(view.area.maxY, window.maxY)};
  }
  DisplayListCanvas canvas;
  EntityPainter painter(db, options, glyphs, view, canvas);
  if (options.window)
    painter.paintInArea(*block);
  else
    painter.paint(*block);
  Composition made{{}, canvas.take(), layout.page};
  if (options.window && !hasPointIn(made.list, view.area))
    if (auto problem = findExtents()) return *problem;
  if (made.list.items.empty()) {
    const Box shown = options.window.value_or(layout.area);
    return failure("Nothing visible" + chosen + " lies in the window " + boxText(shown) + "; the drawing covers " +
                   boxText(extents) + ".");
  }

  made.picture.drawn = layout.area;
  std::string notes;
  const auto note = [&notes](const std::string& text) { notes += (notes.empty() ? "" : " ") + text; };
  if (!layout.note.empty()) note(layout.note);
  if (painter.isCutShort()) note("The drawing repeats blocks so often that part of it was left out.");
  if (painter.isTooDeep()) {
    note("Blocks that are nested more than " + std::to_string(geometry::kDeepestNesting) + " deep are not shown.");
  }
  if (painter.hasTextBars()) note("The drawing has so much text that part of it is shown as bars.");
  if (!painter.leftOut().empty()) {
    std::string kinds;
    for (const auto& [kind, count] : painter.leftOut())
      kinds += (kinds.empty() ? "" : ", ") + std::to_string(count) + " " + std::string(kind);
    note("Left out, having no picture of their own: " + kinds + ".");
  }
  if (!glyphs.hasFont()) note("The font DejaVu Sans was not found, so texts are shown as boxes.");
  if (!notes.empty()) made.picture.remark = problemOf(Code::PictureNote, std::move(notes));
  return made;
}

Result<Picture> drawPicture(const database::DrawingDatabase& db, const PictureOptions& options, PictureFormat format) {
  if (const std::string_view why = whyNot(format); !why.empty()) return problemOf(Code::OutputFailed, std::string(why));
  Result<Composition> made = composePicture(db, options, format);
  if (!made) return made;
  made->picture.bytes = renderPicture(made->list, made->page, options.background, format);
  if (made->picture.bytes.empty())
    return problemOf(Code::OutputFailed, "The picture could not be made; it may be too large for the memory.");
  return std::move(made->picture);
}

}  // namespace host::picture

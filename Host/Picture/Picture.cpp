#include "Picture/Picture.h"

#include <algorithm>

#include "Picture/BackEnd.h"
#include "Picture/Composition.h"
#include "Picture/EntityPainter.h"
#include "Picture/PageLayout.h"
#include "Picture/PlotStyles.h"
#include "Picture/Sheet.h"
#include "Picture/Strays.h"
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

/// Boxes of the visible entities, where there is something to see.
std::vector<Box> visibleBoxes(const database::DrawingDatabase& db, const database::BlockContents& block,
                              const PictureOptions& options, GlyphSource& glyphs) {
  View view;
  view.boundsOnly = true;
  view.deviation = 0;
  BoundsCanvas canvas;
  EntityPainter painter(db, options, glyphs, view, canvas);
  std::vector<Box> boxes;
  painter.paintEach(block, [&](const database::Slot&, bool isBefore) {
    if (isBefore)
      canvas.begin();
    else if (!canvas.box().isEmpty())
      boxes.push_back(canvas.box());
  });
  return boxes;
}

/// True when a line or fill has a point in the area: then the drawing lies there, not only the rim of a pen or a line
/// without end.
bool hasPointIn(const DisplayList& list, const Box& area) {
  return std::ranges::any_of(list.points, [&](const Point p) {
    return p.x > area.minX && p.y > area.minY && p.x < area.maxX && p.y < area.maxY;
  });
}

std::string unplottedNote(const database::DrawingDatabase& db, const std::map<std::uint32_t, std::size_t>& layers) {
  constexpr std::size_t kMostNames = 4;
  std::size_t count = 0, named = 0;
  std::string names;
  for (const auto& [layer, entities] : layers) {
    count += entities;
    if (named++ < kMostNames) names += (names.empty() ? "" : ", ") + text::toUtf8(db.layerName(layer));
  }
  if (named > kMostNames) names += " and " + std::to_string(named - kMostNames) + " more";
  return "Left out, on layers that are not plotted (" + names + "): " + std::to_string(count) +
         (count == 1 ? " entity." : " entities.");
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

  // Paper spaces measure the paper itself.
  constexpr double kInch = 0.0254, kMillimetre = 0.001;
  const PlotSettings plotting = plotSettings(db, options.layout);
  if (block != &db.modelSpace()) options.metresPerUnit = plotting.isInches ? kInch : kMillimetre;
  std::string styleNote;
  const std::optional<PlotStyles> styles = findPlotStyles(plotting, options, styleNote);
  options.plotStyles = styles ? &*styles : nullptr;

  GlyphSource glyphs;
  const std::string chosen = options.layers == "*" ? "" : " on layers \"" + options.layers + "\"";
  Box extents;  // of everything visible
  Strays shown;
  std::size_t visible = 0;
  const auto findExtents = [&]() -> std::optional<Problem> {
    const std::vector<Box> boxes = visibleBoxes(db, *block, options, glyphs);
    extents = {};
    for (const Box& box : boxes) extents.add(box);
    visible = boxes.size();
    // A sheet is as large as its maker drew it.
    shown = options.showsAll || block != &db.modelSpace() ? Strays{extents, 0} : withoutStrays(boxes);
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

  const Box wanted = options.window.value_or(shown.extents);
  const Result<PageLayout> laidOut =
      options.sheet != nullptr ? layOutSheet(wanted, options, format) : layOutPage(wanted, options, format);
  if (!laidOut) {
    if (options.window)
      if (auto problem = findExtents()) return *problem;
    return laidOut;
  }
  const PageLayout& layout = *laidOut;
  const bool isRaster = picture::isRaster(format);
  View view;
  view.toPicture = layout.toPicture;
  view.pixelsPerMm = layout.pixelsPerMm;
  view.deviation = isRaster ? kRasterDeviationPx : kVectorDeviationPx;
  view.thinnestLine = isRaster ? 1 : kThinnestVectorPx;
  view.barsBelow = isRaster ? kBarsBelowPx : 0;
  view.area = layout.frame.value_or(Box{0, 0, layout.page.widthPx, layout.page.heightPx});
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
  if (layout.frame) {
    const Box& f = *layout.frame;
    canvas.beginClip({{f.minX, f.minY}, {f.maxX, f.minY}, {f.maxX, f.maxY}, {f.minX, f.maxY}});
  }
  if (options.window)
    painter.paintInArea(*block);
  else
    painter.paint(*block);
  if (layout.frame) canvas.endClip();
  if (options.window && !hasPointIn(canvas.list(), view.area))
    if (auto problem = findExtents()) return *problem;
  if (canvas.list().items.empty()) {
    return failure("Nothing visible" + chosen + " lies in the window " + boxText(options.window.value_or(layout.area)) +
                   "; the drawing covers " + boxText(extents) + ".");
  }

  const std::string sheetNote =
      options.sheet != nullptr ? paintSheet(options, layout, view, glyphs, canvas, db, painter) : std::string();
  Composition made{{}, canvas.take(), layout.page};
  made.picture.drawn = layout.area;
  made.picture.unitsPerPixel = 1 / layout.toPicture.x.x;
  made.picture.upperLeft = {-layout.toPicture.origin.x / layout.toPicture.x.x,
                            layout.toPicture.origin.y / layout.toPicture.x.x};
  std::string notes;
  const auto note = [&notes](const std::string& text) { notes += (notes.empty() ? "" : " ") + text; };
  if (!layout.note.empty()) note(layout.note);
  if (!sheetNote.empty()) note(sheetNote);
  if (!options.window && shown.left > 0)
    note("Far from the rest and left out: " + std::to_string(shown.left) + " of " + std::to_string(visible) +
         " entities. The picture shows " + boxText(shown.extents) + ", everything covers " + boxText(extents) +
         "; --all takes them in.");
  if (!painter.unplotted().empty()) note(unplottedNote(db, painter.unplotted()));
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
  if (!painter.missingImages().empty()) {
    std::string names;
    for (const std::string& name : painter.missingImages()) names += (names.empty() ? "" : ", ") + name;
    note("Images that could not be read are shown as frames: " + names + ".");
  }
  if (painter.damagedClips() > 0)
    note("Blocks whose boundaries cannot be used are shown whole: " + std::to_string(painter.damagedClips()) + ".");
  if (!styleNote.empty()) note(styleNote);
  if (!glyphs.missing().empty()) {
    constexpr std::size_t kMostNamed = 8;
    std::string letters;
    std::size_t named = 0;
    for (const wchar_t letter : glyphs.missing()) {
      char code[16];
      std::snprintf(code, sizeof code, "U+%04lX", static_cast<unsigned long>(letter));
      if (named++ < kMostNamed) letters += (letters.empty() ? "" : ", ") + std::string(code);
    }
    if (named > kMostNamed) letters += " and " + std::to_string(named - kMostNamed) + " more";
    note("Letters that no font here has are shown as boxes: " + letters + ".");
  }
  if (glyphs.leftUnshaped())
    note("This program was built without HarfBuzz and FriBidi: letters that join, or run from the right, stand apart.");
  if (!glyphs.hasFont()) note("The font DejaVu Sans was not found, so texts are shown as boxes.");
  if (!notes.empty()) made.picture.remark = problemOf(Code::PictureNote, std::move(notes));
  return made;
}

std::string worldFile(const Picture& picture) {
  const double step = picture.unitsPerPixel;
  std::string lines;
  for (const double value : {step, 0.0, 0.0, -step, picture.upperLeft.x + step / 2, picture.upperLeft.y - step / 2})
    lines += text::formatReal(value) + "\n";
  return lines;
}

double metresPerUnit(const database::DrawingDatabase& db) {
  switch (db.headerInteger("$INSUNITS", 70).value_or(0)) {
    case 1:
      return 0.0254;
    case 2:
      return 0.3048;
    case 4:
      return 0.001;
    case 5:
      return 0.01;
    case 7:
      return 1000;
    default:
      return 1;
  }
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

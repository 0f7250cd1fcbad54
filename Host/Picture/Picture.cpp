#include "Picture/Picture.h"

#include <algorithm>

#include "Picture/BackEnd.h"
#include "Picture/Composition.h"
#include "Picture/EntityPainter.h"
#include "Picture/Formats/PdfWriter.h"
#include "Picture/PageLayout.h"
#include "Picture/Painting/HandleLabels.h"
#include "Picture/Sheet.h"
#include "Picture/Sheets/PlotStyles.h"
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
  known = "Model";
  for (const auto& [layoutName, block] : db.layouts()) {
    if (text::equalFolded(layoutName, wanted)) return block;
    if (block != &db.modelSpace()) known += ", " + text::toUtf8(layoutName);
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

/// Names of layers, and what is known of the plan.
void addNotes(Composition& made, const database::DrawingDatabase& db, const PictureOptions& options,
              const PageLayout& layout, View view, GlyphSource& glyphs) {
  DisplayNotes& notes = made.list.notes;
  for (const DisplayNotes::Run& run : notes.runs)
    if (run.origin.layer != 0) notes.layers.try_emplace(run.origin.layer, text::toUtf8(db.layerName(run.origin.layer)));
  notes.title = text::toUtf8(db.headerText("$TITLE", 1).value_or(L""));
  if (notes.title.empty()) notes.title = options.title.empty() ? "Drawing" : options.title;
  notes.page = options.layout == "Model" ? notes.title : options.layout;
  if (options.facts == nullptr) return;
  if (options.layout == "Model") notes.metresPerPixel = options.metresPerUnit / layout.toPicture.x.x;
  notes.entities = options.facts->entities;
  view.area = {0, 0, kSwatchWidthPx, kSwatchHeightPx};
  for (const LegendRow& row : options.facts->legend) {
    const database::Slot* const sample = db.findHandle(row.sample);
    DisplayListCanvas canvas;
    EntityPainter painter(db, options, glyphs, view, canvas);
    if (sample == nullptr || !painter.isShown(*sample)) continue;
    painter.begin(db.modelSpace());
    painter.paintSwatch(*sample, {1, 1, kSwatchWidthPx - 1, kSwatchHeightPx - 1});
    notes.swatches.push_back(
        {text::toUtf8(row.name), text::toUtf8(row.amount), std::make_shared<const DisplayList>(canvas.take())});
  }
}

}  // namespace

Result<Composition> composePicture(const database::DrawingDatabase& db, const PictureOptions& given,
                                   PictureFormat format) {
  PictureOptions options = given;
  std::string known;
  const database::BlockContents* block = findLayout(db, options.layout, known);
  if (block == nullptr)
    return problemOf(Code::WrongUsage, "There is no layout \"" + options.layout + "\"; the drawing has " + known + ".");

  const bool isModel = block == &db.modelSpace();
  options.layout = isModel ? PictureOptions().layout : options.layout;
  const std::optional<PlotSettings> plot = plotSettings(db, text::fromUtf8(options.layout));
  // Paper spaces measure the paper itself.
  if (!isModel) options.metresPerUnit = (plot ? plot->millimetres : 1) / 1000;
  const bool wantsOwnPaper =
      !isModel && plot && !options.paper && !options.scale && !options.window && options.sheet == nullptr;
  std::string styleNote;
  const std::optional<PlotStyles> styles =
      plot ? findPlotStyles(plot->styleSheet, options, styleNote) : std::optional<PlotStyles>();
  options.plotStyles = styles ? &*styles : nullptr;

  GlyphSource glyphs;
  const std::string chosen = options.layers == "*" ? "" : " on layers \"" + options.layers + "\"";
  Box extents;  // of everything visible
  Strays shown;
  std::vector<Box> boxes;
  const auto findExtents = [&]() -> std::optional<Problem> {
    boxes = visibleBoxes(db, *block, options, glyphs);
    extents = {};
    for (const Box& box : boxes) extents.add(box);
    // A sheet is as large as its maker drew it.
    shown = options.showsAll || !isModel ? Strays{extents, 0} : withoutStrays(boxes);
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
  const std::optional<PaperPlace> place = wantsOwnPaper ? paperPlace(*plot, shown.extents) : std::nullopt;
  if (options.dpi && !place && !options.paper && !options.scale && options.sheet == nullptr)
    return problemOf(Code::WrongUsage, "Layout \"" + options.layout +
                                           "\" has no paper of its own; --dpi goes with --paper or --scale here.");
  const Result<PageLayout> laidOut = place                      ? layOutPaper(*place, options, format)
                                     : options.sheet != nullptr ? layOutSheet(wanted, options, format)
                                                                : layOutPage(wanted, options, format);
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
  DisplayListCanvas canvas(format == PictureFormat::Pdf || options.hasRealText);
  EntityPainter painter(db, options, glyphs, view, canvas);
  const bool hasNotes = !isRaster;
  if (hasNotes)
    painter.setEnter([&](std::uint32_t layer, std::uint64_t handle) {
      const bool isTold = options.facts != nullptr && options.facts->entities.contains(handle);
      canvas.setOrigin({layer, isTold ? handle : 0});
    });
  if (layout.frame) {
    const Box& f = *layout.frame;
    canvas.beginClip({{f.minX, f.minY}, {f.maxX, f.minY}, {f.maxX, f.maxY}, {f.minX, f.maxY}});
  }
  if (options.window)
    painter.paintInArea(*block);
  else
    painter.paint(*block);
  painter.setEnter({});
  canvas.setOrigin({});
  if (!options.handles.empty()) labelHandles(db, *block, options.handles, layout, painter);
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
  if (hasNotes) addNotes(made, db, options, layout, view, glyphs);
  made.picture.drawn = layout.area;
  made.picture.unitsPerPixel = 1 / layout.toPicture.x.x;
  made.picture.upperLeft = {-layout.toPicture.origin.x / layout.toPicture.x.x,
                            layout.toPicture.origin.y / layout.toPicture.x.x};
  std::string notes;
  const auto note = [&notes](const std::string& text) { notes += (notes.empty() ? "" : " ") + text; };
  if (!layout.note.empty()) note(layout.note);
  if (!sheetNote.empty()) note(sheetNote);
  const std::string visible = " of " + std::to_string(boxes.size()) + " entities.";
  if (place)
    if (const auto off = std::ranges::count_if(boxes, [&](const Box& box) { return !box.intersects(place->paper); });
        off > 0)
      note("Off the layout's paper and left out: " + std::to_string(off) + visible);
  if (!options.window && shown.left > 0)
    note("Far from the rest and left out: " + std::to_string(shown.left) + visible + " The picture shows " +
         boxText(shown.extents) + ", everything covers " + boxText(extents) + "; --all takes them in.");
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

void setDrawingFile(PictureOptions& options, const std::filesystem::path& file) {
  options.drawingFolder = file.parent_path().string();
  options.title = file.stem().string();
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

namespace {

/// Lets the page say where it lies on the Earth.
Result<> measure(Composition& made, const PictureOptions& options) {
  if (!options.measureOf) return {};
  Result<std::optional<GeoMeasure>> place = options.measureOf(made.picture);
  if (!place) return place.problem();
  made.page.measure = std::move(*place);
  return {};
}

/// A page for each layout in which something is visible.
Result<Picture> drawAllLayouts(const database::DrawingDatabase& db, const PictureOptions& options) {
  std::vector<Composition> made;
  std::string remarks;
  std::optional<Problem> failed;
  PictureOptions own = options;
  for (const auto& [name, block] : db.layouts()) {
    if (block == &db.modelSpace()) continue;
    own.layout = text::toUtf8(name);
    Result<Composition> page = composePicture(db, own, PictureFormat::Pdf);
    const auto remark = [&](const std::string& sentence) {
      remarks += (remarks.empty() ? "" : " ") + own.layout + ": " + sentence;
    };
    if (!page && page.problem().code != Code::PictureEmpty) return page;
    if (!page) {
      failed = page.problem();
      remark(failed->text);
      continue;
    }
    if (const Result<> measured = measure(*page, own); !measured) return measured.problem();
    if (page->picture.remark) remark(page->picture.remark->text);
    made.push_back(std::move(page.value()));
  }
  if (made.empty()) return failed.value_or(problemOf(Code::PictureEmpty, "The drawing has no layout but Model."));
  std::vector<PdfPage> pages;
  pages.reserve(made.size());
  for (const Composition& each : made) pages.push_back({&each.list, each.page, each.list.notes.page});
  Picture picture = std::move(made.front().picture);
  picture.bytes = writePdf(pages, options.background);
  picture.remark.reset();
  if (!remarks.empty()) picture.remark = problemOf(Code::PictureNote, std::move(remarks));
  return picture;
}

}  // namespace

Result<> checkFormat(const PictureOptions& options, PictureFormat format) {
  if (const std::string_view why = whyNot(format); !why.empty()) return problemOf(Code::OutputFailed, std::string(why));
  if (options.hasRealText && format != PictureFormat::Svg && format != PictureFormat::Html)
    return problemOf(Code::WrongUsage, "--real-text writes letters as text, so it goes with SVG and web pages only.");
  if (options.layout == kAllLayouts && format != PictureFormat::Pdf)
    return problemOf(Code::WrongUsage, "--layout * makes a page of each layout, so it goes with PDF only.");
  return {};
}

Result<Picture> drawPicture(const database::DrawingDatabase& db, const PictureOptions& options, PictureFormat format) {
  if (const Result<> fits = checkFormat(options, format); !fits) return fits.problem();
  if (options.layout == kAllLayouts) return drawAllLayouts(db, options);
  Result<Composition> made = composePicture(db, options, format);
  if (!made) return made;
  if (format == PictureFormat::Pdf)
    if (const Result<> measured = measure(*made, options); !measured) return measured.problem();
  made->picture.bytes = renderPicture(made->list, made->page, options.background, format);
  if (made->picture.bytes.empty())
    return problemOf(Code::OutputFailed, "The picture could not be made; it may be too large for the memory.");
  return std::move(made->picture);
}

}  // namespace host::picture

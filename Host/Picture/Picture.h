// Pictures of drawings: PNG, SVG, PDF and web pages from one display list.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Geometry/EntityPaths.h"
#include "Picture/DisplayList.h"

namespace host::picture {

/// A TIFF is drawn as a PNG, of which the caller makes it.
enum class PictureFormat { Png, Svg, Pdf, Tiff, Html };
inline bool isRaster(PictureFormat format) { return format == PictureFormat::Png || format == PictureFormat::Tiff; }

struct PaperSize {
  double widthMm = 0, heightMm = 0;
  std::string name;     // "A3"; empty for a size in figures
  bool mayTurn = true;  // no orientation was asked for: the one that suits the drawing
};

struct Sheet;      // Picture/Sheet.h
class PlotStyles;  // Picture/PlotStyles.h

/// A kind of thing that the plan shows.
struct LegendRow {
  std::wstring name, amount;
  std::uint64_t sample = 0;  // handle of an entity of the plan, whose look the row shows
};

/// What is known of a plan beyond its entities, for SVG and web pages.
struct PlanFacts {
  std::map<std::uint64_t, EntityNote> entities;  // by their handles
  std::vector<LegendRow> legend;
};

struct Picture;

/// Where a part of a page lies on the Earth.
struct GeoMeasure {
  geometry::Box part;  // picture coordinates
  /// Latitudes and longitudes, on the system's own datum, of the part's corners on the page: lower left, upper left,
  /// upper right, lower right.
  std::array<double, 8> corners{};
  std::string code;        // of the system in the register of EPSG; empty: it has none
  std::string definition;  // of the system, WKT
};
/// Asked of a picture that is laid out and has no bytes yet. Nothing: its place is not known.
using MeasureOf = std::function<Result<std::optional<GeoMeasure>>(const Picture&)>;

enum class LineweightMode { AsDrawn, Off, Factor };
enum class ColorMode { AsDrawn, Grayscale, Monochrome };

/// Stands for the name of a layout: each of them on a page of its own.
constexpr std::string_view kAllLayouts = "*";

struct PictureOptions {
  static constexpr int kDefaultWidthPx = 1600;
  int widthPx = kDefaultWidthPx;        // width of a PNG; SVG and PDF without paper and scale: at 96 per inch
  std::optional<double> dpi;            // of a PNG with paper or scale, in place of the width
  std::optional<geometry::Box> window;  // drawing units; default: extents of what is visible, with a margin
  bool showsAll = false;                // without a window: strays far away from the rest, too
  std::optional<PaperSize> paper;
  std::optional<double> scale;                         // 1:500 is 0.002
  double metresPerUnit = 1;                            // of the drawing (metresPerUnit below); for `scale`
  std::optional<std::uint32_t> background = 0xFFFFFF;  // 0xRRGGBB; nothing: transparent
  LineweightMode lineweights = LineweightMode::AsDrawn;
  double lineweightFactor = 1;
  ColorMode colors = ColorMode::AsDrawn;
  std::string layers = "*";          // wildcard pattern, UTF-8; layers that are not plotted are left out in any case
  std::string handles;               // wildcard pattern of layers at whose outlines handles are written; empty: none
  std::string layout = "Model";      // name of the layout to draw, UTF-8
  const PlanFacts* facts = nullptr;  // for SVG and web pages
  std::string drawingFolder;         // where files lie that the drawing names; empty: the current folder
  std::vector<std::filesystem::path> supportFolders;  // where plot styles are looked for after that
  const PlotStyles* plotStyles = nullptr;             // of the layout; found by drawPicture itself
  std::string title;             // in formats that tell one, of a drawing that has none of its own; UTF-8
  const Sheet* sheet = nullptr;  // what the picture is laid on, in place of a paper; made of the next three by callers
  std::string sheetFile;         // a drawing; empty: no sheet
  std::vector<std::pair<std::string, std::string>> fields;  // names of attributes, and what they are filled with
  std::string legendFile;                                   // own texts of the legend
  bool hasRealText = false;                                 // SVG and web pages: letters are text where they can be
  bool hasWorldFile = false;                                // a file beside a PNG says where it lies
  std::string system;   // of the drawing's coordinates, "EPSG:3879": TIFF and PDF tell their places; empty: its own
  MeasureOf measureOf;  // of the pages of a PDF
};

struct Picture {
  std::string bytes;    // the file
  geometry::Box drawn;  // the area shown, drawing units
  /// Drawing units of a picture coordinate (a pixel of a PNG), and the drawing's place of its upper left corner.
  double unitsPerPixel = 0;
  geometry::Point upperLeft;
  std::optional<Problem> remark;  // what the user should know: the paper is too small, text is shown as bars ...
};

/// Takes folder and title from the drawing's file.
void setDrawingFile(PictureOptions& options, const std::filesystem::path& file);

/// Why no picture of the format can be made with the options: they go with others, or this program cannot make it.
Result<> checkFormat(const PictureOptions& options, PictureFormat format);

/// Draws one layout of a drawing: those of paper on their own paper, true to size, unless another is asked for. The
/// same drawing and options give the same bytes. Fails when nothing visible lies in the area.
Result<Picture> drawPicture(const database::DrawingDatabase& db, const PictureOptions& options, PictureFormat format);

/// Metres in one unit of the drawing by $INSUNITS. Unitless counts as metres.
double metresPerUnit(const database::DrawingDatabase& db);

/// Lines of a world file: where the pixels of a PNG lie, the middle of the upper left one last.
std::string worldFile(const Picture& picture);

/// By the ending of a file name, without regard to case.
std::optional<PictureFormat> formatOfFile(std::string_view fileName);

// Each of these reads the text of one option into `options`. The problem names the value and the accepted forms;
// `options` is then unchanged.
Result<> setWidth(PictureOptions& options, std::string_view text);        // 1600
Result<> setDpi(PictureOptions& options, std::string_view text);          // 300
Result<> setWindow(PictureOptions& options, std::string_view text);       // x1,y1,x2,y2
Result<> setPaper(PictureOptions& options, std::string_view text);        // A0 ... A5, A3-landscape, 594x420
Result<> setScale(PictureOptions& options, std::string_view text);        // 1:500
Result<> setBackground(PictureOptions& options, std::string_view text);   // white, #ffffff, transparent
Result<> setLineweights(PictureOptions& options, std::string_view text);  // on, off, 2.5
/// The first call replaces the default, others add alternatives.
Result<> addLayers(PictureOptions& options, std::string_view text);

Result<> addField(PictureOptions& options, std::string_view text);  // OTSIKKO=Koivukuja

/// An option of pictures, the same wherever pictures are asked for.
struct OptionRow {
  std::string_view name;         // "--paper"
  std::string_view form;         // of its value, for help: "SIZE"; empty: a switch without a value
  std::string_view description;  // for help
  Result<> (*read)(PictureOptions&, std::string_view value);
  bool mayRepeat = false;
};
std::span<const OptionRow> optionRows();
/// Refuses options that contradict each other and pictures that are too large, as far as can be told without a drawing.
Result<> checkOptions(const PictureOptions& options);

}  // namespace host::picture

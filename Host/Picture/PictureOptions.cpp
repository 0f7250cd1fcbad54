#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>

#include "Picture/BackEnd.h"
#include "Picture/PaperSizes.h"
#include "Picture/Picture.h"
#include "Text/Text.h"

namespace host::picture {
namespace {

std::string lowered(std::string_view text) {
  std::string low(text);
  std::ranges::transform(low, low.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return low;
}

/// A number that is the whole text; nothing when it is not finite.
std::optional<double> wholeNumber(std::string_view text) {
  if (text.empty() || text.find_first_not_of("0123456789+-.eE") != std::string_view::npos) return {};
  const auto value = text::parseReal(text);
  if (!value || !std::isfinite(*value)) return {};
  return value;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (;;) {
    const std::size_t end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

Problem refusal(std::string sentence) { return problemOf(Code::WrongUsage, std::move(sentence)); }

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

Result<> setLayout(PictureOptions& options, std::string_view text) {
  if (text.empty()) return refusal("The name of the layout is empty.");
  options.layout = text;
  return {};
}
Result<> addHandles(PictureOptions& options, std::string_view text) {
  if (text.empty()) return refusal("A pattern of layers is empty.");
  options.handles += (options.handles.empty() ? "" : ",") + std::string(text);
  return {};
}
Result<> setAll(PictureOptions& options, std::string_view) {
  options.showsAll = true;
  return {};
}
Result<> setSheet(PictureOptions& options, std::string_view text) {
  if (text.empty()) return refusal("The name of the sheet is empty.");
  options.sheetFile = text;
  return {};
}
Result<> setLegend(PictureOptions& options, std::string_view text) {
  if (text.empty()) return refusal("The name of the legend's file is empty.");
  options.legendFile = text;
  return {};
}
Result<> setWorldFile(PictureOptions& options, std::string_view) {
  options.hasWorldFile = true;
  return {};
}
Result<> setSystem(PictureOptions& options, std::string_view text) {
  if (text.empty()) return refusal("The name of the coordinate system is empty.");
  options.system = text;
  return {};
}
Result<> setRealText(PictureOptions& options, std::string_view) {
  options.hasRealText = true;
  return {};
}
Result<> setColors(PictureOptions& options, ColorMode mode) {
  if (options.colors != ColorMode::AsDrawn && options.colors != mode)
    return refusal("--grayscale excludes --monochrome");
  options.colors = mode;
  return {};
}
Result<> setGrayscale(PictureOptions& options, std::string_view) { return setColors(options, ColorMode::Grayscale); }
Result<> setMonochrome(PictureOptions& options, std::string_view) { return setColors(options, ColorMode::Monochrome); }

constexpr std::array kRows = {
    OptionRow{"--width", "PX", "width in pixels, 1 to 30000 [1600]", setWidth},
    OptionRow{"--dpi", "N", "pixels per inch of a PNG with --paper, --scale, --sheet or --layout, in place of --width",
              setDpi},
    OptionRow{"--paper", "SIZE", "paper: A0 to A5, A3-landscape, or 594x420 in millimetres", setPaper},
    OptionRow{"--scale", "1:N", "scale on the paper", setScale},
    OptionRow{"--window", "x1,y1,x2,y2", "the part to draw, drawing units", setWindow},
    OptionRow{"--all", "", "everything, also strays far away from the rest", setAll},
    OptionRow{"--background", "COLOUR", "a name, #rrggbb or transparent [white]", setBackground},
    OptionRow{"--lineweights", "off|FACTOR", "draw lines thin, or their widths times a factor", setLineweights},
    OptionRow{"--layout", "NAME", "the layout to draw, on its own paper; * for a PDF page of each [Model]", setLayout},
    OptionRow{"--layers", "PATTERN", "only layers whose names match, for instance tm?_*; may be given more than once",
              addLayers, true},
    OptionRow{"--handles", "PATTERN",
              "write handles at outlines on layers whose names match; may be given more than once", addHandles, true},
    OptionRow{"--sheet", "FILE", "lay the picture on this sheet, for instance A3-kaava", setSheet},
    OptionRow{"--field", "NAME=TEXT", "fill an attribute of the sheet; may be given more than once", addField, true},
    OptionRow{"--legend", "FILE", "own texts of the sheet's legend", setLegend},
    OptionRow{"--worldfile", "", "beside a PNG a .pgw file that says where it lies", setWorldFile},
    OptionRow{"--crs", "NAME",
              "coordinate system of the drawing for TIFF and PDF, as EPSG:3879 [what the drawing tells]", setSystem},
    OptionRow{"--real-text", "", "letters of SVG and web pages as text, except those that are strokes [outlines]",
              setRealText},
    OptionRow{"--grayscale", "", "shades of grey", setGrayscale},
    OptionRow{"--monochrome", "", "one colour", setMonochrome},
};

}  // namespace

std::span<const OptionRow> optionRows() { return kRows; }

Result<> checkOptions(const PictureOptions& options) {
  if (options.sheetFile.empty()) {
    if (!options.fields.empty()) return refusal("--field goes with --sheet");
    if (!options.legendFile.empty()) return refusal("--legend goes with --sheet");
  } else if (options.paper) {
    return refusal("--sheet excludes --paper: the sheet is the paper");
  }
  if (!options.dpi) return {};
  if (!options.paper && !options.scale && options.sheetFile.empty() && options.layout == PictureOptions{}.layout)
    return refusal("--dpi goes with --paper, --scale, --sheet or --layout");
  if (options.widthPx != PictureOptions::kDefaultWidthPx) return refusal("--dpi excludes --width");
  if (!options.paper) return {};
  const double width = options.paper->widthMm * *options.dpi / kMmPerInch;
  const double height = options.paper->heightMm * *options.dpi / kMmPerInch;
  if (std::max(width, height) <= kLargestSidePx && width * height <= kMostPixels) return {};
  const double most = std::min({kLargestSidePx / options.paper->widthMm, kLargestSidePx / options.paper->heightMm,
                                std::sqrt(kMostPixels / options.paper->widthMm / options.paper->heightMm)});
  return refusal("--dpi: at most " + std::to_string(static_cast<int>(most * kMmPerInch)) +
                 " pixels per inch go on this paper");
}

const std::vector<PaperSize>& paperSizes() {
  static const std::vector<PaperSize> sizes = {{148, 210, "A5"}, {210, 297, "A4"}, {297, 420, "A3"},
                                               {420, 594, "A2"}, {594, 841, "A1"}, {841, 1189, "A0"}};
  return sizes;
}

std::optional<PictureFormat> formatOfFile(std::string_view fileName) {
  const std::string low = lowered(fileName);
  if (low.ends_with(".png")) return PictureFormat::Png;
  if (low.ends_with(".svg")) return PictureFormat::Svg;
  if (low.ends_with(".pdf")) return PictureFormat::Pdf;
  if (low.ends_with(".tif") || low.ends_with(".tiff")) return PictureFormat::Tiff;
  if (low.ends_with(".html")) return PictureFormat::Html;
  return {};
}

Result<> setWidth(PictureOptions& options, std::string_view text) {
  const auto value = wholeNumber(text);
  if (!value || *value < 1 || *value > kLargestSidePx || *value != std::floor(*value))
    return refusal("Picture width " + quoted(text) + " is not a whole number of pixels from 1 to " +
                   std::to_string(kLargestSidePx) + ".");
  options.widthPx = static_cast<int>(*value);
  return {};
}

Result<> setDpi(PictureOptions& options, std::string_view text) {
  constexpr double kFewest = 10, kMost = 2400;
  const auto value = wholeNumber(text);
  if (!value || *value < kFewest || *value > kMost)
    return refusal("Resolution " + quoted(text) + " is not a number of pixels per inch from 10 to 2400.");
  options.dpi = *value;
  return {};
}

Result<> addLayers(PictureOptions& options, std::string_view text) {
  if (text.empty()) return refusal("A pattern of layers is empty.");
  options.layers = options.layers == "*" ? std::string(text) : options.layers + "," + std::string(text);
  return {};
}

Result<> addField(PictureOptions& options, std::string_view text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos || equals == 0)
    return refusal("Field " + quoted(text) + " is not of the form NAME=TEXT.");
  options.fields.emplace_back(text.substr(0, equals), text.substr(equals + 1));
  return {};
}

Result<> setWindow(PictureOptions& options, std::string_view text) {
  double figures[4] = {};
  const auto parts = split(text, ',');
  bool isGood = parts.size() == 4;
  for (std::size_t i = 0; isGood && i < 4; ++i) {
    const auto value = wholeNumber(parts[i]);
    isGood = value.has_value() && std::abs(*value) <= 1e15;
    if (isGood) figures[i] = *value;
  }
  geometry::Box box;
  if (isGood) {
    box.add(geometry::Point{figures[0], figures[1]});
    box.add(geometry::Point{figures[2], figures[3]});
    isGood = box.maxX > box.minX && box.maxY > box.minY;
  }
  if (!isGood)
    return refusal("Picture window " + quoted(text) + " is not of the form x1,y1,x2,y2 with two opposite corners.");
  options.window = box;
  return {};
}

Result<> setPaper(PictureOptions& options, std::string_view text) {
  const Problem error =
      refusal("Paper " + quoted(text) +
              " is not known; use A0, A1, A2, A3, A4 or A5, with -landscape or -portrait, or WIDTHxHEIGHT in "
              "millimetres.");
  const std::string low = lowered(text);
  if (const auto sides = split(low, 'x'); sides.size() == 2) {
    const auto width = wholeNumber(sides[0]), height = wholeNumber(sides[1]);
    if (!width || !height || *width < 10 || *height < 10 || *width > 5000 || *height > 5000) return error;
    options.paper = PaperSize{*width, *height, {}, false};
    return {};
  }
  const auto parts = split(low, '-');
  for (const PaperSize& size : paperSizes()) {
    if (parts[0] != lowered(size.name)) continue;
    PaperSize paper = size;
    if (parts.size() == 2 && (parts[1] == "landscape" || parts[1] == "portrait")) {
      paper.mayTurn = false;
      if (parts[1] == "landscape") std::swap(paper.widthMm, paper.heightMm);
    } else if (parts.size() != 1) {
      return error;
    }
    options.paper = paper;
    return {};
  }
  return error;
}

Result<> setScale(PictureOptions& options, std::string_view text) {
  const auto parts = split(text, ':');
  const auto paper = wholeNumber(parts[0]);
  const auto drawing = parts.size() == 2 ? wholeNumber(parts[1]) : std::nullopt;
  if (!paper || !drawing || *paper <= 0 || *drawing <= 0 || *paper / *drawing < 1e-9 || *paper / *drawing > 1e6)
    return refusal("Scale " + quoted(text) + " is not of the form 1:500.");
  options.scale = *paper / *drawing;
  return {};
}

Result<> setBackground(PictureOptions& options, std::string_view text) {
  const std::string low = lowered(text);
  if (low == "transparent") {
    options.background.reset();
    return {};
  }
  const std::optional<std::uint32_t> color = colorOf(low);
  const bool isFigure = low.starts_with("#");
  if ((isFigure && low.size() != 4 && low.size() != 7) || !color)
    return refusal("Background " + quoted(text) +
                   " is not a colour; use a name such as white, #rrggbb, or transparent.");
  options.background = color;
  return {};
}

Result<> setLineweights(PictureOptions& options, std::string_view text) {
  const std::string low = lowered(text);
  if (low == "on" || low == "off") {
    options.lineweights = low == "on" ? LineweightMode::AsDrawn : LineweightMode::Off;
    return {};
  }
  const auto factor = wholeNumber(text);
  if (!factor || *factor <= 0 || *factor > 100)
    return refusal("Lineweights " + quoted(text) + " are not on, off or a factor from above 0 to 100.");
  options.lineweights = LineweightMode::Factor;
  options.lineweightFactor = *factor;
  return {};
}

}  // namespace host::picture

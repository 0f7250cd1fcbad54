#include <algorithm>
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

}  // namespace

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

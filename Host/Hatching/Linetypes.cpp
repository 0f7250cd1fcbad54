#include "Hatching/Linetypes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "Hatching/DefinitionFile.h"

namespace host::hatching {

namespace {

constexpr std::size_t kMostDashes = 12;
constexpr int kFirstExtendedData = 1000;

bool hasLength(const std::vector<double>& dashes) {
  return std::any_of(dashes.begin(), dashes.end(), [](double dash) { return dash != 0; });
}

/// Reads "A,dash,..." into the linetype; answers what is wrong with it.
std::string readDashes(Linetype& linetype, std::string_view line) {
  const std::size_t comma = line.find(',');
  if (comma == std::string_view::npos || comma == 0 || (line.front() != 'A' && line.front() != 'a') ||
      line.substr(1, comma - 1).find_first_not_of(" \t") != std::string_view::npos) {
    return "a linetype's dashes begin with \"A,\".";
  }
  std::optional<std::vector<double>> dashes = parseNumbers(line.substr(comma + 1));
  if (!dashes) return "a value is not a number.";
  if (dashes->size() > kMostDashes) return "a linetype has at most 12 dashes and gaps.";
  if (!hasLength(*dashes)) return "the dashes have no length.";
  if (dashes->front() < 0) return "a linetype begins with a dash or a dot.";
  if (!linetype.dashes.empty()) return "the linetype has its dashes already.";
  linetype.dashes = std::move(*dashes);
  return {};
}

}  // namespace

std::vector<double> linetypeDashes(database::TagCursor tags) {
  std::vector<double> dashes;
  database::Tag tag;
  while (tags.next(tag) && tag.code < kFirstExtendedData) {
    if (tag.code == 49) dashes.push_back(tag.real());
  }
  if (!hasLength(dashes)) dashes.clear();
  return dashes;
}

std::vector<LinetypeMark> linetypeMarks(database::TagCursor tags) {
  enum Kind { kUpright = 1, kText = 2, kShape = 4 };
  constexpr double kRadPerDegree = std::numbers::pi / 180;
  std::vector<LinetypeMark> marks;
  std::size_t elements = 0;
  bool isMark = false;
  database::Tag tag;
  while (tags.next(tag) && tag.code < kFirstExtendedData) {
    if (tag.code == 49) ++elements;
    if (tag.code == 49 || tag.code == 74) isMark = false;
    if (tag.code == 74 && elements > 0 && (tag.integer() & (kText | kShape)) != 0) {
      isMark = true;
      LinetypeMark& mark = marks.emplace_back();
      mark.element = elements - 1;
      mark.isUpright = (tag.integer() & kUpright) != 0;
    }
    if (!isMark) continue;
    LinetypeMark& mark = marks.back();
    switch (tag.code) {
      case 9:
        mark.text = tag.value;
        break;
      case 44:
        mark.along = tag.real();
        break;
      case 45:
        mark.across = tag.real();
        break;
      case 46:
        mark.scale = tag.real();
        break;
      case 50:
        mark.rotationRad = tag.real() * kRadPerDegree;
        break;
      case 75:
        mark.shape = static_cast<int>(tag.integer());
        break;
      case 340:
        mark.style = tag.handle();
        break;
      default:
        break;
    }
  }
  std::erase_if(marks, [](const LinetypeMark& mark) { return !(mark.scale > 0); });
  return marks;
}

std::vector<Linetype> parseLinetypeFile(std::string_view text, std::vector<Problem>& problems) {
  std::vector<Linetype> linetypes;
  bool isUnderHeader = false;
  const auto header = [&](std::string_view name, std::string_view description) -> std::string {
    isUnderHeader = !name.empty();
    if (!isUnderHeader) return "the linetype has no name.";
    linetypes.push_back({std::string(name), std::string(description), {}});
    return {};
  };
  const auto body = [&](std::string_view line) -> std::string {
    if (!isUnderHeader) return "the line belongs to no linetype.";
    return readDashes(linetypes.back(), line);
  };
  readDefinitionFile(text, header, body, problems);
  std::erase_if(linetypes, [](const Linetype& linetype) { return linetype.dashes.empty(); });
  return linetypes;
}

}  // namespace host::hatching

#include "Hatching/Patterns.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "Curves/Plane.h"
#include "Hatching/DefinitionFile.h"

namespace host::hatching {

namespace {

constexpr double kRadPerDegree = std::numbers::pi / 180;

/// Cosine and sine; exactly 0 and 1 at quarter turns, so that upright patterns have plain numbers in files.
struct Direction {
  double cosine, sine;
  explicit Direction(double angle) : cosine(std::cos(angle)), sine(std::sin(angle)) {
    constexpr double kNoise = 1e-15;
    if (std::abs(cosine) < kNoise) cosine = 0;
    if (std::abs(sine) < kNoise) sine = 0;
  }
  Point2 turned(double x, double y) const { return {x * cosine - y * sine, x * sine + y * cosine}; }
};

std::string capitals(std::string_view name) {
  std::string upper(name);
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return upper;
}

/// Adds the family of a line "angle, x,y, dx,dy [, dash...]"; answers what is wrong with it.
std::string addFamily(Pattern& pattern, std::string_view line) {
  const std::optional<std::vector<double>> numbers = parseNumbers(line);
  if (!numbers) return "a value is not a number.";
  if (numbers->size() < 5) return "angle, base point and offset need five numbers.";
  PatternLine family;
  family.angleRad = (*numbers)[0] * kRadPerDegree;
  family.baseX = (*numbers)[1];
  family.baseY = (*numbers)[2];
  family.offsetX = (*numbers)[3];
  family.offsetY = (*numbers)[4];
  family.dashes.assign(numbers->begin() + 5, numbers->end());
  if (family.offsetY == 0) return "the lines have no spacing.";
  const auto hasLength = [](double dash) { return dash != 0; };
  if (!family.dashes.empty() && std::none_of(family.dashes.begin(), family.dashes.end(), hasLength)) {
    return "the dashes have no length.";
  }
  pattern.families.push_back(std::move(family));
  return {};
}

}  // namespace

std::vector<Pattern> parsePatternFile(std::string_view text, std::vector<Problem>& problems) {
  std::vector<Pattern> patterns;
  bool isUnderHeader = false;
  const auto header = [&](std::string_view name, std::string_view description) -> std::string {
    isUnderHeader = !name.empty();
    if (!isUnderHeader) return "the pattern has no name.";
    patterns.push_back({capitals(name), std::string(description), {}});
    return {};
  };
  const auto body = [&](std::string_view line) -> std::string {
    if (!isUnderHeader) return "the line belongs to no pattern.";
    return addFamily(patterns.back(), line);
  };
  readDefinitionFile(text, header, body, problems);
  for (Pattern& pattern : patterns) {
    if (pattern.name == "SOLID") pattern.families.clear();
  }
  std::erase_if(patterns, [](const Pattern& p) { return p.families.empty() && p.name != "SOLID"; });
  return patterns;
}

std::vector<PatternLine> scaledPattern(const Pattern& pattern, double angleRad, double scale) {
  std::vector<PatternLine> lines;
  lines.reserve(pattern.families.size());
  const Direction hatch(angleRad);
  for (const PatternLine& family : pattern.families) {
    PatternLine line;
    line.angleRad = family.angleRad + angleRad;
    const Point2 base = hatch.turned(family.baseX * scale, family.baseY * scale);
    const Point2 offset = Direction(line.angleRad).turned(family.offsetX * scale, family.offsetY * scale);
    line.baseX = base.x;
    line.baseY = base.y;
    line.offsetX = offset.x;
    line.offsetY = offset.y;
    for (const double dash : family.dashes) line.dashes.push_back(dash * scale);
    const bool hasNumbers =
        std::all_of(line.dashes.begin(), line.dashes.end(), [](double d) { return std::isfinite(d); });
    if (hasNumbers && isFinite(base) && isFinite(offset)) lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace host::hatching

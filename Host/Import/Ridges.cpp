#include "Import/Ridges.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "Text/Text.h"

namespace host::import {
namespace {

using curves::Point2;
using curves::Polygon;

constexpr double kLeastRidge = 0.2;  // metres: the ridge of a roof that rises to one point
constexpr double kLowest = 0.3, kHighest = 30;

Point2 rotated(Point2 point, double cosine, double sine) {
  return {point.x * cosine + point.y * sine, point.y * cosine - point.x * sine};
}

/// A rectangle in a system turned by an angle.
struct Rectangle {
  double cosine = 1, sine = 0;
  double minX = 0, minY = 0, maxX = 0, maxY = 0;
  double length() const { return maxX - minX; }
  double width() const { return maxY - minY; }
};

Rectangle around(const Polygon& outline, double cosine, double sine) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  Rectangle box{cosine, sine, kInfinity, kInfinity, -kInfinity, -kInfinity};
  for (const Point2 point : outline) {
    const auto [x, y] = rotated(point, cosine, sine);
    box.minX = std::min(box.minX, x), box.maxX = std::max(box.maxX, x);
    box.minY = std::min(box.minY, y), box.maxY = std::max(box.maxY, y);
  }
  return box;
}

/// The smallest rectangle along one of the edges, lying along its longer side.
Rectangle smallestAround(const Polygon& outline) {
  Rectangle best;
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const Point2 a = outline[i], b = outline[(i + 1) % outline.size()];
    const double length = std::hypot(b.x - a.x, b.y - a.y);
    if (length < 0.1) continue;
    const Rectangle box = around(outline, (b.x - a.x) / length, (b.y - a.y) / length);
    const double area = box.length() * box.width();
    if (area < least * (1 - 1e-9)) {
      least = area;
      best = box;
    }
  }
  return best.length() < best.width() ? around(outline, -best.sine, best.cosine) : best;
}

/// The parts of the line y = `level` that lie inside, in the rectangle's system; the longest of them.
std::optional<std::pair<double, double>> longestInside(const Polygon& outline, const Rectangle& box, double level) {
  std::vector<double> crossings;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const Point2 a = rotated(outline[i], box.cosine, box.sine);
    const Point2 b = rotated(outline[(i + 1) % outline.size()], box.cosine, box.sine);
    if ((a.y > level) == (b.y > level)) continue;
    crossings.push_back(a.x + (level - a.y) / (b.y - a.y) * (b.x - a.x));
  }
  std::sort(crossings.begin(), crossings.end());
  std::optional<std::pair<double, double>> longest;
  for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
    if (!longest || crossings[i + 1] - crossings[i] > longest->second - longest->first)
      longest = {crossings[i], crossings[i + 1]};
  }
  return longest;
}

/// "NE", "45"; degrees clockwise from north.
std::optional<double> bearingOf(const std::string& text) {
  static constexpr std::array kNames = {"N", "NNE", "NE", "ENE", "E", "ESE", "SE", "SSE",
                                        "S", "SSW", "SW", "WSW", "W", "WNW", "NW", "NNW"};
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (text == kNames[i]) return static_cast<double>(i) * 22.5;
  }
  return parseMeasure(text);
}

bool isOneOf(const std::string& value, const std::string& patterns) {
  return !value.empty() && text::matchesWildcard(text::fromUtf8(value), text::fromUtf8(patterns));
}

}  // namespace

std::optional<Roof> roofOf(const RoofRules& rules, const Attributes& attributes) {
  if (rules.shape.empty()) return std::nullopt;
  const std::string shape = attributes(rules.shape);
  Roof roof;
  if (isOneOf(shape, rules.hipped)) {
    roof.form = Roof::Form::Hipped;
  } else if (!isOneOf(shape, rules.gabled)) {
    return std::nullopt;
  }
  roof.height = valueOf(rules.height, attributes);
  if (roof.height && !(*roof.height > 0)) roof.height.reset();
  if (const std::optional<double> slope = valueOf(rules.angle, attributes); slope && *slope > 0 && *slope < 80)
    roof.slopeDegrees = *slope;
  if (!rules.direction.empty()) roof.facingDegrees = bearingOf(attributes(rules.direction));
  roof.isAcross = !rules.across.empty() && holds(rules.across, attributes);
  return roof;
}

std::optional<Ridge> ridgeOver(const Polygon& outline, const Roof& roof) {
  if (outline.size() < 3) return std::nullopt;
  Rectangle box = smallestAround(outline);
  if (!(box.width() > 0)) return std::nullopt;
  bool turns = roof.isAcross;
  if (roof.facingDegrees) {
    // The ridge runs across the way a slope looks.
    const double bearing = *roof.facingDegrees * std::numbers::pi / 180;
    const double along = std::sin(bearing) * box.cosine + std::cos(bearing) * box.sine;
    turns = std::abs(along) > std::numbers::sqrt2 / 2;
  }
  if (turns) box = around(outline, -box.sine, box.cosine);
  const double level = (box.minY + box.maxY) / 2;
  const auto inside = longestInside(outline, box, level);
  if (!inside) return std::nullopt;
  auto [from, to] = *inside;
  if (roof.form == Roof::Form::Hipped) {
    const double middle = (from + to) / 2;
    const double half = std::max((to - from - box.width()) / 2, kLeastRidge / 2);
    from = middle - half, to = middle + half;
  }
  if (to - from < kLeastRidge / 2) return std::nullopt;
  const auto placed = [&box](double x, double y) { return rotated({x, y}, box.cosine, -box.sine); };
  const double rise = box.width() / 2 * std::tan(roof.slopeDegrees * std::numbers::pi / 180);
  const double height = std::clamp(roof.height.value_or(rise), kLowest, kHighest);
  return Ridge{placed(from, level), placed(to, level), std::round(height * 10) / 10};
}

}  // namespace host::import

// The painter's hatches: solid, gradient, pattern lines, and a tint where lines would be too dense to tell apart.
#include <algorithm>
#include <cmath>

#include "Database/ObjectAccess.h"
#include "Geometry/HatchArea.h"
#include "Hatching/HatchRecord.h"
#include "Picture/Clipping.h"
#include "Picture/EntityPainter.h"

namespace host::picture {
namespace {

using geometry::Transform;
using hatching::Polygon;

constexpr double kClosestLinesPx = 1.2;
constexpr std::size_t kMostPiecesOfHatch = 400'000;
constexpr std::size_t kMostPieces = 3'000'000;

double spacing(const hatching::PatternLine& family) {
  return std::abs(family.offsetY * std::cos(family.angleRad) - family.offsetX * std::sin(family.angleRad));
}

/// Share of the line that is drawn; dots count as `dot` long.
double drawnShare(const std::vector<double>& dashes, double dot) {
  double drawn = 0, round = 0;
  for (const double dash : dashes) {
    drawn += dash > 0 ? dash : dash == 0 ? dot : 0;
    round += std::abs(dash);
  }
  return round > 0 ? std::min(1.0, drawn / round) : 1;
}

/// How much of the area lines `width` wide would cover.
double coverage(const std::vector<hatching::PatternLine>& families, double width) {
  double open = 1;
  for (const hatching::PatternLine& family : families) {
    const double step = spacing(family);
    const double share = step > 0 ? std::min(1.0, width / step) * drawnShare(family.dashes, width) : 0.5;
    open *= 1 - share;
  }
  return std::clamp(1 - open, 0.08, 0.7);
}

std::uint32_t meanColor(const std::vector<std::uint32_t>& colors) {
  std::uint32_t mean = 0;
  for (const unsigned shift : {0U, 8U, 16U}) {
    std::uint64_t sum = 0;
    for (const std::uint32_t c : colors) sum += c >> shift & 0xFF;
    mean |= static_cast<std::uint32_t>(sum / colors.size()) << shift;
  }
  return mean;
}

/// The part of the loops that can be seen, so that a large hatch seen from close is not worked out as a whole.
std::vector<Polygon> cutToPicture(const std::vector<Polygon>& loops, const Transform& plane, const Box& area) {
  const double determinant = plane.x.x * plane.y.y - plane.x.y * plane.y.x;
  if (determinant == 0 || area.isEmpty()) return loops;
  Box window;
  for (const Point p : {Point{area.minX, area.minY}, Point{area.maxX, area.minY}, Point{area.maxX, area.maxY},
                        Point{area.minX, area.maxY}}) {
    const double x = p.x - plane.origin.x, y = p.y - plane.origin.y;
    window.add(Point{(x * plane.y.y - y * plane.y.x) / determinant, (y * plane.x.x - x * plane.x.y) / determinant});
  }
  const double border = (window.maxX - window.minX + window.maxY - window.minY) / 100;
  window = {window.minX - border, window.minY - border, window.maxX + border, window.maxY + border};
  std::vector<Polygon> cut;
  std::vector<Point> ring, clipped, scratch;
  for (const Polygon& loop : loops) {
    ring.clear();
    Box box;
    for (const auto& p : loop) {
      ring.push_back({p.x, p.y});
      box.add(ring.back());
    }
    if (!box.intersects(window)) continue;
    if (window.contains({box.minX, box.minY}) && window.contains({box.maxX, box.maxY})) {
      cut.push_back(loop);
      continue;
    }
    clipPolygon(window, ring, clipped, scratch);
    if (clipped.size() < 3) continue;
    Polygon& part = cut.emplace_back();
    for (const Point p : clipped) part.push_back({p.x, p.y});
  }
  return cut;
}

}  // namespace

void EntityPainter::paintHatch(const database::Slot& entity, const Place& place, const Style& style) {
  const double outerScale = place.toPicture.planScale();
  const double deviation = view_.deviation > 0 && outerScale > 0 ? view_.deviation / outerScale : 0;
  const hatching::HatchRecord hatch = geometry::readHatch(entity, deviation);
  const database::ObjectAxes axes(hatch.normal);
  const Transform plane = place.toPicture.after({axes.ax, axes.ay, axes.az, AcGePoint3d{} + axes.az * hatch.elevation});
  const std::vector<Polygon> loops = geometry::filledLoops(hatch);
  const auto fill = [&](Color color) {
    std::vector<geometry::Chain> rings;
    for (const Polygon& loop : loops) {
      geometry::Chain& ring = rings.emplace_back();
      for (const auto& p : loop) ring.push_back({p.x, p.y, 0});
    }
    fillChains(rings, plane, FillRule::EvenOdd, color);
  };
  if (hatch.gradient && !hatch.gradientColors.empty())
    return fill(appearances_.color(-1, meanColor(hatch.gradientColors), style.appearance));
  if (hatch.solid || view_.boundsOnly) return fill(style.pen.color);
  if (hatch.pattern.empty()) return;

  const double scale = plane.planScale();
  bool isTooDense = patternPieces_ >= kMostPieces;
  for (const hatching::PatternLine& family : hatch.pattern)
    // A family of rare dashes may have its lines close together.
    if (!(spacing(family) * scale >= kClosestLinesPx * drawnShare(family.dashes, 1 / scale))) isTooDense = true;
  std::vector<hatching::PatternSegment> segments;
  if (!isTooDense) {
    const auto outcome =
        hatching::fillPattern(hatch.pattern, cutToPicture(loops, plane, view_.area), kMostPiecesOfHatch,
                              [&](const hatching::PatternSegment& segment) { segments.push_back(segment); });
    isTooDense = outcome == hatching::FillOutcome::TooDense;
  }
  if (isTooDense) {
    Color tint = style.pen.color;
    tint.alpha = static_cast<std::uint8_t>(std::lround(tint.alpha * coverage(hatch.pattern, style.pen.width / scale)));
    return fill(tint);
  }
  patternPieces_ += segments.size();
  std::vector<Point> line(2);
  for (const hatching::PatternSegment& segment : segments) {
    line[0] = plane.plan({segment.from.x, segment.from.y, 0});
    line[1] = plane.plan({segment.to.x, segment.to.y, 0});
    canvas_.stroke(line, false, style.pen);
  }
}

}  // namespace host::picture

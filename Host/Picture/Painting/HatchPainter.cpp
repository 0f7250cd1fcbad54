// The painter's hatches: solid, gradient, pattern lines, and a tint where lines would be too dense to tell apart.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <string_view>

#include "Database/ObjectAccess.h"
#include "Geometry/HatchArea.h"
#include "Hatching/HatchRecord.h"
#include "Picture/EntityPainter.h"
#include "Picture/Painting/Clipping.h"

namespace host::picture {
namespace {

using curves::Polygon;
using geometry::Transform;

/// The second colour of a gradient of one colour: its shade up to a half, its tint from there.
std::uint32_t tinted(std::uint32_t rgb, double tint) {
  std::uint32_t mixed = 0;
  for (const unsigned shift : {0U, 8U, 16U}) {
    const double c = rgb >> shift & 0xFF;
    const double to = tint <= 0.5 ? c * 2 * tint : c + (255 - c) * (2 * tint - 1);
    mixed |= static_cast<std::uint32_t>(std::lround(to)) << shift;
  }
  return mixed;
}

/// The gradient in the hatch's plane: it fills the box of the loops in its own direction. Colours run from the first on
/// the outside (linear: on the left) to the second, the other way round in inverted forms.
Gradient gradientOf(const hatching::HatchRecord& hatch, const std::vector<Polygon>& loops, Color first, Color second) {
  std::string_view form = hatch.gradientForm.name;
  if (form.starts_with("INV")) {
    form.remove_prefix(3);
    std::swap(first, second);
  }
  const double c = std::cos(hatch.gradientForm.angleRad), s = std::sin(hatch.gradientForm.angleRad);
  Box box;  // u along the gradient's direction, v across
  for (const Polygon& loop : loops)
    for (const Point p : loop) box.add(Point{p.x * c + p.y * s, p.y * c - p.x * s});
  const double width = std::max(box.maxX - box.minX, 1e-9), height = std::max(box.maxY - box.minY, 1e-9);
  const double shift = hatch.gradientForm.shift;
  Gradient gradient;
  double u = box.minX, v = box.minY, scaleU = width, scaleV = height;
  gradient.stops = {{0, first}, {1, second}};
  if (form == "CYLINDER") {
    const double middle = 0.5 - 0.25 * shift;
    gradient.stops = {{0, first}, {middle, second}, {1, first}};
  } else if (form == "SPHERICAL" || form == "HEMISPHERICAL" || form == "CURVED") {
    gradient.isRadial = true;
    gradient.stops = {{0, second}, {1, first}};
    u += width * (0.5 - 0.25 * shift);
    if (form == "SPHERICAL") {
      v += height * (0.5 + 0.25 * shift);
      scaleU = width * std::numbers::sqrt2 / 2;
      scaleV = height * std::numbers::sqrt2 / 2;
    } else if (form == "HEMISPHERICAL") {
      scaleU = std::hypot(width / 2, height);
      scaleV = scaleU;
    } else {
      // Wide arches: the middle lies a height below.
      constexpr double kInner = 0.4;
      v -= height * kInner / (1 - kInner);
      scaleU = scaleV = height / (1 - kInner);
      scaleU = std::max(scaleU, width);
      gradient.stops = {{0, second}, {kInner, second}, {1, first}};
    }
  } else {
    u -= width * 0.5 * shift;
  }
  gradient.origin = {u * c - v * s, u * s + v * c};
  gradient.axisX = {c * scaleU, s * scaleU};
  gradient.axisY = {-s * scaleV, c * scaleV};
  return gradient;
}

}  // namespace

void EntityPainter::paintHatch(const database::Slot& entity, const Place& place, const Style& style,
                               const LoopsOf& loopsOf) {
  const double outerScale = place.toPicture.planScale();
  const double deviation = view_.deviation > 0 && outerScale > 0 ? view_.deviation / outerScale : 0;
  const hatching::HatchRecord hatch = geometry::readHatch(entity, deviation);
  const database::ObjectAxes axes(hatch.normal);
  const Transform plane = place.toPicture.after({axes.ax, axes.ay, axes.az, AcGePoint3d{} + axes.az * hatch.elevation});
  const std::vector<Polygon> loops = loopsOf ? loopsOf(plane) : geometry::filledLoops(hatch);
  std::size_t points = 0;
  for (const Polygon& loop : loops) points += loop.size();
  if (!spend(pointsLeft_, points)) return;
  const auto rings = [&] {
    std::vector<geometry::Chain> chains;
    for (const Polygon& loop : loops) {
      geometry::Chain& ring = chains.emplace_back();
      for (const Point p : loop) ring.push_back({p.x, p.y, 0});
    }
    return chains;
  };
  const auto fill = [&](Color color) { fillChains(rings(), plane, FillRule::EvenOdd, color); };
  if (hatch.gradient && !hatch.gradientColors.empty() && !loops.empty()) {
    const std::uint32_t from = hatch.gradientColors.front();
    const std::uint32_t to =
        hatch.gradientColors.size() > 1 ? hatch.gradientColors.back() : tinted(from, hatch.gradientForm.tint);
    const auto color = [&](std::uint32_t rgb) {
      return appearances_.fillColor(Appearances::withColor(-1, rgb, style.appearance));
    };
    Gradient gradient = gradientOf(hatch, loops, color(from), color(to));
    const auto placed = [&](Point p, bool isVector) {
      const AcGeVector3d moved = plane.vector({p.x, p.y, 0});
      return isVector ? Point{moved.x, moved.y} : Point{moved.x + plane.origin.x, moved.y + plane.origin.y};
    };
    gradient.origin = placed(gradient.origin, false);
    gradient.axisX = placed(gradient.axisX, true);
    gradient.axisY = placed(gradient.axisY, true);
    const double area = gradient.axisX.x * gradient.axisY.y - gradient.axisX.y * gradient.axisY.x;
    // Seen from the side, or of one colour: nothing runs.
    if (!(std::abs(area) > 1e-9) || color(from) == color(to)) return fill(color(from));
    Rings projected;
    for (const geometry::Chain& ring : rings())
      if (!project(ring, plane, projected.emplace_back())) projected.back().clear();
    return details_.fillGradient(projected, gradient);
  }
  if (hatch.solid || view_.boundsOnly) return fill(style.fill);
  if (hatch.pattern.empty()) return;
  details_.pattern(hatch.pattern, loops, plane, style.line.pen);
}

}  // namespace host::picture

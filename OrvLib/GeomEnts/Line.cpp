#include "OrvLib/GeomEnts/Line.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace OrvLib {

Line Line::fromAngle(const Point3d& start, double planAngleRad, double length, double elevationRad) {
  const double plan = length * std::cos(elevationRad);
  return {start, start + Point3d{std::cos(planAngleRad) * plan, std::sin(planAngleRad) * plan,
                                 length * std::sin(elevationRad)}};
}

double Line::planAngle() const {
  const Point3d v = vector();
  return v.x == 0 && v.y == 0 ? 2 * std::numbers::pi : std::atan2(v.y, v.x);
}

bool Line::contains(const Point3d& point, double tolerance) const {
  const Point3d v = vector();
  const Point3d w = point - start;
  const double square = v.x * v.x + v.y * v.y + v.z * v.z;
  const double t = square > 0 ? std::clamp((w.x * v.x + w.y * v.y + w.z * v.z) / square, 0.0, 1.0) : 0.0;
  return point.distanceTo(start + v * t) <= tolerance;
}

}  // namespace OrvLib

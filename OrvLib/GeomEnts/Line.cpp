#include "OrvLib/GeomEnts/Line.h"

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

}  // namespace OrvLib

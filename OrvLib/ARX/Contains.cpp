#include "OrvLib/ARX/Contains.h"

#include <algorithm>

namespace OrvLib {

bool isOnSegment(const Point3d& point, const Line& segment, double tolerance) {
  const Point3d v = segment.vector();
  const Point3d w = point - segment.start;
  const double square = v.x * v.x + v.y * v.y + v.z * v.z;
  const double t = square > 0 ? std::clamp((w.x * v.x + w.y * v.y + w.z * v.z) / square, 0.0, 1.0) : 0.0;
  return point.distanceTo(segment.start + v * t) <= tolerance;
}

}  // namespace OrvLib

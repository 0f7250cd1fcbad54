// Straight segments.
#pragma once

#include "OrvLib/GeomStructs/Point3d.h"

namespace OrvLib {

struct Line {
  Point3d start;
  Point3d end;

  /// end = start + length * (cos angle * cos elevation, sin angle * cos elevation, sin elevation).
  /// `planAngleRad` runs counter-clockwise from +X; a negative length goes the other way.
  static Line fromAngle(const Point3d& start, double planAngleRad, double length, double elevationRad = 0);

  Point3d vector() const { return end - start; }
  double length() const { return start.distanceTo(end); }
  /// Plan direction, radians in (-pi, pi]; 2 pi when the ends coincide in plan.
  double planAngle() const;
};

}  // namespace OrvLib

// Affine maps of space: from block coordinates to world coordinates, from object planes to space.
#pragma once

#include <cmath>

#include "Geometry/EntityPaths.h"
#include "gepnt3d.h"

namespace host::geometry {

/// p -> origin + x * p.x + y * p.y + z * p.z.
struct Transform {
  AcGeVector3d x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1};
  AcGePoint3d origin;

  AcGePoint3d point(const AcGePoint3d& p) const { return origin + vector(p.asVector()); }
  AcGeVector3d vector(const AcGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }
  /// Seen from above.
  Point plan(const AcGePoint3d& p) const {
    return {origin.x + x.x * p.x + y.x * p.y + z.x * p.z, origin.y + x.y * p.x + y.y * p.y + z.y * p.z};
  }
  /// First `inner`, then this.
  Transform after(const Transform& inner) const {
    return {vector(inner.x), vector(inner.y), vector(inner.z), point(inner.origin)};
  }
  Transform movedBy(const AcGeVector3d& v) const { return {x, y, z, origin + v}; }
  /// The largest factor by which lengths in the XY plane grow in plan.
  double planScale() const {
    // Largest singular value of the 2 x 2 plan matrix.
    const double e = (x.x + y.y) / 2, f = (x.x - y.y) / 2, g = (x.y + y.x) / 2, h = (x.y - y.x) / 2;
    return std::hypot(e, h) + std::hypot(f, g);
  }
  static Transform translation(const AcGeVector3d& v) { return Transform{}.movedBy(v); }
};

inline Point plan(const AcGePoint3d& p) { return {p.x, p.y}; }

}  // namespace host::geometry

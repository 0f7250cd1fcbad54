// Points, segments and rings in the plane.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "Geometry/EntityPaths.h"

namespace host::geometry {

/// Even-odd rule. `ring` holds anything with x and y; the last point joins the first.
template <class Ring, class Place>
bool isInsideRing(const Ring& ring, const Place& p) {
  bool inside = false;
  for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++)
    if ((ring[i].y > p.y) != (ring[j].y > p.y) &&
        p.x < ring[i].x + (ring[j].x - ring[i].x) * ((p.y - ring[i].y) / (ring[j].y - ring[i].y)))
      inside = !inside;
  return inside;
}

inline double distanceToSegment(Point p, Point a, Point b) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double square = dx * dx + dy * dy;
  const double t = square > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / square, 0.0, 1.0) : 0;
  return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
}

/// Twice the signed area of the triangle; positive when c lies left of a to b.
inline double turn(Point a, Point b, Point c) { return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x); }

/// True when closed segments share a point.
inline bool segmentsTouch(Point a, Point b, Point c, Point d) {
  if (std::max(a.x, b.x) < std::min(c.x, d.x) || std::max(c.x, d.x) < std::min(a.x, b.x) ||
      std::max(a.y, b.y) < std::min(c.y, d.y) || std::max(c.y, d.y) < std::min(a.y, b.y))
    return false;
  const auto opposite = [](double u, double v) { return !((u > 0 && v > 0) || (u < 0 && v < 0)); };
  return opposite(turn(a, b, c), turn(a, b, d)) && opposite(turn(c, d, a), turn(c, d, b));
}

/// True when each segment passes from one side of the other to the other side.
inline bool segmentsCross(Point a, Point b, Point c, Point d) {
  const auto opposite = [](double u, double v) { return (u > 0 && v < 0) || (u < 0 && v > 0); };
  return opposite(turn(a, b, c), turn(a, b, d)) && opposite(turn(c, d, a), turn(c, d, b));
}

}  // namespace host::geometry

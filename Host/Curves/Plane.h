// Points of the plane, boxes, segments and rings.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace host::curves {

/// A point or a vector, drawing units.
struct Point2 {
  double x = 0, y = 0;
};
using Polygon = std::vector<Point2>;  // closed, first point not repeated

inline Point2 operator+(Point2 a, Point2 b) { return {a.x + b.x, a.y + b.y}; }
inline Point2 operator-(Point2 a, Point2 b) { return {a.x - b.x, a.y - b.y}; }
inline Point2 operator-(Point2 a) { return {-a.x, -a.y}; }
inline Point2 operator*(Point2 a, double f) { return {a.x * f, a.y * f}; }
inline double dot(Point2 a, Point2 b) { return a.x * b.x + a.y * b.y; }
inline double cross(Point2 a, Point2 b) { return a.x * b.y - a.y * b.x; }
inline double length(Point2 a) { return std::hypot(a.x, a.y); }
inline double distance(Point2 a, Point2 b) { return length(b - a); }
inline bool isFinite(Point2 p) { return std::isfinite(p.x) && std::isfinite(p.y); }
/// A quarter turn counter-clockwise.
inline Point2 left(Point2 a) { return {-a.y, a.x}; }

/// Upright box; empty until something is added.
struct Box {
  double minX = std::numeric_limits<double>::infinity(), minY = std::numeric_limits<double>::infinity();
  double maxX = -std::numeric_limits<double>::infinity(), maxY = -std::numeric_limits<double>::infinity();

  bool isEmpty() const { return minX > maxX; }
  void add(Point2 p) {
    minX = std::min(minX, p.x);
    minY = std::min(minY, p.y);
    maxX = std::max(maxX, p.x);
    maxY = std::max(maxY, p.y);
  }
  void add(const Box& other) {
    minX = std::min(minX, other.minX);
    minY = std::min(minY, other.minY);
    maxX = std::max(maxX, other.maxX);
    maxY = std::max(maxY, other.maxY);
  }
  bool contains(Point2 p) const { return p.x >= minX && p.x <= maxX && p.y >= minY && p.y <= maxY; }
  bool intersects(const Box& other) const {
    return minX <= other.maxX && other.minX <= maxX && minY <= other.maxY && other.minY <= maxY;
  }
};

/// Even-odd rule; the last point joins the first.
inline bool isInsideRing(const Polygon& ring, Point2 p) {
  bool inside = false;
  for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++)
    if ((ring[i].y > p.y) != (ring[j].y > p.y) &&
        p.x < ring[i].x + (ring[j].x - ring[i].x) * ((p.y - ring[i].y) / (ring[j].y - ring[i].y)))
      inside = !inside;
  return inside;
}

inline double distanceToSegment(Point2 p, Point2 a, Point2 b) {
  const Point2 d = b - a;
  const double square = dot(d, d);
  const double t = square > 0 ? std::clamp(dot(p - a, d) / square, 0.0, 1.0) : 0;
  return std::hypot(p.x - a.x - t * d.x, p.y - a.y - t * d.y);
}

/// Twice the signed area of the triangle; positive when c lies left of a to b.
inline double turn(Point2 a, Point2 b, Point2 c) { return cross(b - a, c - a); }

/// True when closed segments share a point.
inline bool segmentsTouch(Point2 a, Point2 b, Point2 c, Point2 d) {
  if (std::max(a.x, b.x) < std::min(c.x, d.x) || std::max(c.x, d.x) < std::min(a.x, b.x) ||
      std::max(a.y, b.y) < std::min(c.y, d.y) || std::max(c.y, d.y) < std::min(a.y, b.y))
    return false;
  const auto opposite = [](double u, double v) { return !((u > 0 && v > 0) || (u < 0 && v < 0)); };
  return opposite(turn(a, b, c), turn(a, b, d)) && opposite(turn(c, d, a), turn(c, d, b));
}

/// True when each segment passes from one side of the other to the other side.
inline bool segmentsCross(Point2 a, Point2 b, Point2 c, Point2 d) {
  const auto opposite = [](double u, double v) { return (u > 0 && v < 0) || (u < 0 && v > 0); };
  return opposite(turn(a, b, c), turn(a, b, d)) && opposite(turn(c, d, a), turn(c, d, b));
}

}  // namespace host::curves

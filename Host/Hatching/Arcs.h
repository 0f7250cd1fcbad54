// Arcs given by two points and a bulge.
#pragma once

#include <cmath>
#include <numbers>

#include "Hatching/Loops.h"

namespace host::hatching {

inline Point2 operator+(Point2 a, Point2 b) { return {a.x + b.x, a.y + b.y}; }
inline Point2 operator-(Point2 a, Point2 b) { return {a.x - b.x, a.y - b.y}; }
inline Point2 operator*(Point2 a, double f) { return {a.x * f, a.y * f}; }
inline double dot(Point2 a, Point2 b) { return a.x * b.x + a.y * b.y; }
inline double cross(Point2 a, Point2 b) { return a.x * b.y - a.y * b.x; }
inline double length(Point2 a) { return std::hypot(a.x, a.y); }
inline double distance(Point2 a, Point2 b) { return length(b - a); }
inline bool isFinite(Point2 p) { return std::isfinite(p.x) && std::isfinite(p.y); }
inline Point2 left(Point2 a) { return {-a.y, a.x}; }

/// The circle an arc lies on. `sweep` is signed, positive counter-clockwise, at most a full turn.
struct Arc {
  Point2 centre;
  double radius = 0;
  double startAngle = 0;
  double sweep = 0;

  Point2 at(double fraction) const {
    const double angle = startAngle + fraction * sweep;
    return {centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)};
  }
};

/// The bulge must not be 0.
inline Arc arcOf(Point2 from, Point2 to, double bulge) {
  Arc arc;
  const Point2 chord = to - from;
  arc.centre = (from + to) * 0.5 + left(chord) * ((1 - bulge * bulge) / (4 * bulge));
  arc.radius = length(chord) * (1 + bulge * bulge) / (4 * std::abs(bulge));
  arc.startAngle = std::atan2(from.y - arc.centre.y, from.x - arc.centre.x);
  arc.sweep = 4 * std::atan(bulge);
  return arc;
}

/// Number of equal chords of an arc that stay within `deviation` of it: at least one every quarter turn, at most 4096 a
/// turn, so a deviation of 0 (or NaN) is harmless.
int chordCount(double radius, double sweep, double deviation);

}  // namespace host::hatching

// Ellipses and splines in the plane as chords.
#pragma once

#include <optional>
#include <vector>

#include "Hatching/Loops.h"

namespace host::hatching {

/// Part of an ellipse: centre + major * cos t + minor * sin t, t from `start` over `sweep` radians (negative: clockwise
/// where minor lies left of major).
struct EllipseArc {
  Point2 centre, major, minor;
  double start = 0, sweep = 0;
  Point2 at(double t) const;
};

/// A B-spline by degree, knots and control points, with one weight each when rational; or a curve through fit points.
struct Spline {
  int degree = 3;
  std::vector<double> knots;
  std::vector<Point2> controls;
  std::vector<double> weights;                     // empty: all 1
  std::vector<Point2> fits;                        // used when there are no control points
  std::optional<Point2> startTangent, endTangent;  // of the fit curve
};

/// Points from the start to the end of the curve, both given; chords stay within `deviation`, unless that would need
/// more than some thousand of them.
Polygon flatten(const EllipseArc& arc, double deviation);
/// Nothing when knots, weights and control points do not fit together or are not finite.
std::optional<Polygon> flatten(const Spline& spline, double deviation);

}  // namespace host::hatching

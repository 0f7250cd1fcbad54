// Arcs of circles and ellipses, and splines, as chains of chords: the one flattening under pictures, picks, extents and
// hatches, so that a hatch has the very chords of the curve it is bounded by.
//
// Curves lie in the plane (Point2) or in space (AcGePoint3d); what is said here holds for both. Coordinates are drawing
// units, angles radians. `deviation` is the largest distance between chord and curve in drawing units; zero or less
// means a ten-thousandth of the curve's size. It is kept unless it would ask for more than some thousand chords a
// piece.
#pragma once

#include <numbers>
#include <utility>
#include <vector>

#include "Curves/Plane.h"
#include "gepnt3d.h"

namespace host::curves {

using Chain = std::vector<AcGePoint3d>;

template <class Point>
using VectorOf = decltype(std::declval<Point>() - std::declval<Point>());

/// centre + major * cos t + minor * sin t, t from `start` over `sweep` (negative: the other way round; at most a turn
/// counts). Circles and their arcs are the case of equal, perpendicular axes.
template <class Point>
struct EllipseArc {
  Point centre;
  VectorOf<Point> major, minor;
  double start = 0, sweep = 2 * std::numbers::pi;

  Point at(double t) const;
  bool isWhole() const;
};

/// Adds the arc's points to `chain`, both ends included; a whole turn does not repeat its first point. The ends of the
/// axes are always among them, so circles and upright ellipses have exact boxes. Nothing is added for numbers that are
/// not finite or without a sweep.
template <class Point>
void flatten(const EllipseArc<Point>& arc, double deviation, std::vector<Point>& chain);

/// A B-spline, rational when it has weights; or, without control points, the curve through fit points.
///
/// A B-spline whose knots do not fit (another number than controls + degree + 1, falling, not finite, without length)
/// is drawn on clamped, evenly spaced ones; weights that do not fit (another number than the control points, not
/// finite, not positive) are left out.
///
/// The curve through fit points is the cubic with continuous curvature on knots as far apart as the points (chord
/// length). At an end it runs along the given tangent, at unit speed whatever the tangent's length; a zero tangent or
/// one that is not finite means a natural end, without curvature. A closed one goes on smoothly from its last to its
/// first point, unless tangents say how it leaves and arrives there.
template <class Point>
struct Spline {
  int degree = 3;  // of the B-spline
  std::vector<double> knots;
  std::vector<Point> controls;
  std::vector<double> weights;
  std::vector<Point> fits;
  VectorOf<Point> startTangent{}, endTangent{};  // of the curve through fit points, as is what follows
  bool isClosed = false;
};

/// With natural ends.
template <class Point>
Spline<Point> splineThrough(std::vector<Point> points) {
  Spline<Point> spline;
  spline.fits = std::move(points);
  return spline;
}

/// From the start to the end of the curve, both given (a closed one repeats its first point). Where control points make
/// no curve (too few for the degree, or that out of range) the fit points do; empty when they do not either, or when a
/// point is not finite.
template <class Point>
std::vector<Point> flatten(const Spline<Point>& spline, double deviation);

}  // namespace host::curves

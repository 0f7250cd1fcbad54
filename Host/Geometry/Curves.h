// Curves as chains of points that stay within a given distance of the true curve.
#pragma once

#include <vector>

#include "gepnt3d.h"

namespace host::geometry {

using Chain = std::vector<AcGePoint3d>;

/// An ellipse arc: center + major * cos t + minor * sin t, t from `begin` to `end` (radians, begin < end).
/// Circles and arcs are the case of equal, perpendicular axes.
struct EllipseArc {
  AcGePoint3d center;
  AcGeVector3d major, minor;
  double begin = 0, end = 0;
  bool isWhole() const;
};

/// Adds the arc's points to `chain`, both ends included (a whole ellipse does not repeat its first point). Quarter
/// points of the axes are always among them, so circles and arcs have exact boxes. `deviation` is the largest distance
/// between chord and curve; zero or less means a ten-thousandth of the radius.
void flatten(const EllipseArc& arc, double deviation, Chain& chain);

/// Arc between two points of a plane by its bulge (tangent of a quarter of the included angle, positive
/// counter-clockwise), without the first point, with the last.
void flattenBulge(const AcGePoint3d& from, const AcGePoint3d& to, double bulge, double deviation, Chain& chain);

/// A B-spline, rational when it has weights.
struct Nurbs {
  int degree = 3;
  std::vector<double> knots;  // controls + degree + 1; otherwise a clamped uniform vector is used
  Chain controls;
  std::vector<double> weights;  // one per control point, or empty
};
/// Empty when the degree or the number of control points cannot make a curve.
Chain flatten(const Nurbs& curve, double deviation);

/// The cubic spline with continuous curvature through the points (chord-length parameters). Zero tangents: natural
/// ends. `closed` joins the last point to the first smoothly; the first point is then repeated at the end.
Chain interpolate(const Chain& points, bool closed, const AcGeVector3d& startTangent, const AcGeVector3d& endTangent,
                  double deviation);

/// Outline of a polyline with width, as closed rings to be filled by the nonzero rule. `widths` holds start and end
/// width of each piece, in pairs. Corners are mitred where the width goes on unchanged, square where it jumps. The
/// points lie in the plane z = const.
std::vector<Chain> wideOutline(const Chain& points, bool closed, const std::vector<double>& widths);

}  // namespace host::geometry

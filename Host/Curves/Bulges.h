// Arcs given by two points and a bulge, the tangent of a quarter of the included angle, positive counter-clockwise; and
// rings of straight pieces and such arcs. Coordinates in drawing units, angles in radians.
#pragma once

#include <cmath>
#include <optional>
#include <vector>

#include "Curves/Curve.h"
#include "Curves/Plane.h"

namespace host::curves {

/// Part of a circle. `sweep` is signed, positive counter-clockwise, at most a full turn.
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

/// The bulge must not be 0. With chord c the radius is c (1 + b^2) / (4 b) and the centre lies c (1 - b^2) / (4 b) to
/// the left of the chord's middle.
Arc arcOf(Point2 from, Point2 to, double bulge);

/// Adds the points of a piece to `chain`, without the first, with the last, by the chords of `flatten(EllipseArc)`. In
/// space the piece lies in the plane z = const. Straight where the bulge is not finite, next to nothing, or the radius
/// is out of all proportion to the chord.
template <class Point>
void flattenBulge(const Point& from, const Point& to, double bulge, double deviation, std::vector<Point>& chain);

/// A vertex and the bulge of the piece that starts there.
struct LoopVertex {
  double x = 0, y = 0, bulge = 0;
  Point2 point() const { return {x, y}; }
};
using Loop = std::vector<LoopVertex>;  // closed: the last piece returns to the first vertex, which is not repeated

/// The loop with its arcs as chords.
Polygon flatten(const Loop& loop, double deviation);
/// Signed area with arcs, positive counter-clockwise.
double area(const Loop& loop);
/// Area between an arc and its chord, with the sign of the bulge.
double segmentArea(double chord, double bulge);
/// Length of a piece along its arc.
double arcLength(double chord, double bulge);

/// Bulge of the arc from `from` to `to` that leaves in the direction (radians). Nothing when the points coincide or the
/// arc would have to turn straight back.
std::optional<double> tangentBulge(Point2 from, double directionRad, Point2 to);
/// Bulge of the arc through a point between the ends; nothing when two of the points coincide or `on` lies on the
/// chord's line outside the chord.
std::optional<double> bulgeThrough(Point2 from, Point2 on, Point2 to);
/// Bulge of the counter-clockwise arc about the centre from `from` to the direction of `to`; `end` is where it ends.
std::optional<double> bulgeAbout(Point2 centre, Point2 from, Point2 to, Point2& end);
/// Direction in which a piece ends, radians.
double endDirection(Point2 from, Point2 to, double bulge);

}  // namespace host::curves

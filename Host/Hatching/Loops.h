// Closed loops of straight pieces and arcs: validity, flattening, area.
#pragma once

#include <vector>

namespace host::hatching {

/// A vertex and the bulge of the piece that starts there: tangent of a quarter of its included angle, positive
/// counter-clockwise.
struct LoopVertex {
  double x = 0, y = 0, bulge = 0;
};
using Loop = std::vector<LoopVertex>;  // closed: the last piece returns to the first vertex, which is not repeated

struct Point2 {
  double x = 0, y = 0;
};
using Polygon = std::vector<Point2>;  // closed, first point not repeated

enum class LoopFault { None, NotFinite, NotClosed, TooFewPoints, ZeroArea, SelfCrossing };

/// Takes a polyline's vertices as a loop: drops consecutive duplicate points, accepts a last point equal to the first
/// in place of the closed flag. `loop` is set on None only.
LoopFault makeLoop(const std::vector<LoopVertex>& vertices, bool closedFlag, Loop& loop);

/// Arcs become chords that stay within `deviation` of the arc (at least one point every quarter turn).
Polygon flatten(const Loop& loop, double deviation);
/// Signed area with arcs, positive counter-clockwise.
double area(const Loop& loop);

}  // namespace host::hatching

// Geometry of the polyline being drawn: tangent arcs, arcs by point, centre, angle or direction. Pure functions.
#pragma once

#include <optional>
#include <vector>

#include "gepnt2d.h"

namespace host::editor {

/// A vertex and the piece that starts there.
struct DraftVertex {
  AcGePoint2d point;
  double bulge = 0;  // tangent of a quarter of the included angle, positive counter-clockwise
  double startWidth = 0, endWidth = 0;
};

/// Bulge of the arc from `from` to `to` that leaves in the direction (radians). Nothing when the points coincide or the
/// arc would have to turn straight back.
std::optional<double> tangentBulge(const AcGePoint2d& from, double directionRad, const AcGePoint2d& to);
/// Bulge of the arc through a point between the ends; nothing when two of the points coincide or `on` lies on the
/// chord's line outside the chord.
std::optional<double> bulgeThrough(const AcGePoint2d& from, const AcGePoint2d& on, const AcGePoint2d& to);
/// Bulge of the counter-clockwise arc about the centre from `from` to the direction of `to`; `end` is where it ends.
std::optional<double> bulgeAbout(const AcGePoint2d& center, const AcGePoint2d& from, const AcGePoint2d& to,
                                 AcGePoint2d& end);
/// Direction in which a piece ends, radians.
double endDirection(const AcGePoint2d& from, const AcGePoint2d& to, double bulge);

}  // namespace host::editor

// Polylines of both kinds, leaders and multilines as wires.
#pragma once

#include <string_view>
#include <vector>

#include "Geometry/EntityShapes.h"

namespace host::geometry {

/// LWPOLYLINE, 2D and 3D POLYLINE. Spline frame points are skipped, bulges flattened, widths give outlines.
void readPolyline(const database::Slot& entity, double deviation, std::vector<Wire>& wires);
/// The leader's line and its arrowhead.
void readLeader(const database::Slot& entity, double deviation, std::vector<Wire>& wires);
/// One wire for each element of the multiline's style.
void readMultiline(const database::Slot& entity, std::vector<Wire>& wires);
/// Filled arrowhead with its tip at `tip`, pointing away from `towards`.
Wire arrowhead(const AcGePoint3d& tip, const AcGePoint3d& towards, double size);

/// A figure of a dimension style, by its code there and the header variable that holds it for drawings without styles.
double dimensionStyleReal(const database::DrawingDatabase& db, std::string_view style, int code, const char* variable,
                          double otherwise);

}  // namespace host::geometry

// The vertices of lightweight polylines, read and put in the place of others.
#pragma once

#include <optional>
#include <vector>

#include "Curves/Plane.h"
#include "Database/DrawingDatabase.h"

namespace host::editor {

struct PolylineVertex {
  curves::Point2 point;
  double bulge = 0, startWidth = 0, endWidth = 0;  // of the piece that starts here
};

/// Puts other vertices into a lightweight polyline; everything else of it keeps its bytes. One that was closed stays
/// so. False when it cannot be changed.
bool setVertices(database::Slot& polyline, const std::vector<PolylineVertex>& vertices, bool isClosed);

/// The corners of a closed lightweight polyline of straight pieces without widths; nothing for other entities. A last
/// point that repeats the first is left out.
std::optional<curves::Polygon> straightRing(database::Slot& entity);

}  // namespace host::editor

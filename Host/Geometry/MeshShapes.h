// Polygon meshes, polyface meshes and subdivision meshes as wires.
#pragma once

#include <vector>

#include "Geometry/EntityShapes.h"

namespace host::geometry {

void readMesh(const database::Slot& entity, std::vector<Wire>& wires);

}  // namespace host::geometry

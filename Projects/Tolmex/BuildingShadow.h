// The shadow and roof fill of a building.
#pragma once

#include "Tolmex/Building.h"
#include "Tolmex/ShadowDrawing.h"

namespace OrvLib {

/// Draws the roof fill, whose id the building keeps, and the shadow of its outline as it stands. Nothing when the
/// document cannot be locked or the building's polyline not be written to. A ridge line that cannot be read any more
/// counts as none.
void makeBuildingShadow(Building& building, ShadowDrawing& drawing);

}  // namespace OrvLib

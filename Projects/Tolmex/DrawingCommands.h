// Draw order, line styles, fills on and off, removal of the system's data.
#pragma once

#include "Tolmex/CommandRow.h"

namespace OrvLib {

/// Moves the entities to the top, or to the bottom, of the draw order, one after the other.
Outcome bringToFront(const SelectedIds& entities);
Outcome sendToBack(const SelectedIds& entities);

/// Make a linetype the current one for new entities, through the host's own command.
void drawContinuous();
void drawDashed();
void drawDotted();

/// Shows the fills of the areas, hedges, fences and roof sides; thaws and unlocks their layers.
void showFills();

/// Hides the same fills; outlines and shadows stay. Thaws and unlocks their layers as well.
void hideFills();

/// Removes the system's data from the entities; their layers and fills stay.
void removeData(const SelectedIds& entities);

}  // namespace OrvLib

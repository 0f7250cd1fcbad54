// Draw order, line styles, fills on and off, removal of the system's data.
#pragma once

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

void bringSelectedToFront();
void sendSelectedToBack();

/// Makes the linetype the current one for new entities, through the host's own command.
void setCurrentLinetype(const ACHAR* name);

/// Shows the fills of the areas, hedges, fences and roof sides; thaws and unlocks their layers.
void showFills();

/// Hides the same fills; outlines and shadows stay. Thaws and unlocks their layers as well.
void hideFills();

/// Removes the system's data from selected entities; their layers and fills stay.
void removeDataFromSelected();

}  // namespace OrvLib

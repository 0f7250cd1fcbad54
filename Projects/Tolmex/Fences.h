// Heights and shadows of fences.
#pragma once

#include "OrvLib/ARX/HostInterface.h"
#include "Tolmex/ShadowDrawing.h"

namespace OrvLib {

/// Whether the open entity is a board fence or a stone fence.
bool isFence(const AcDbEntity& entity);

/// Stores a height (drawing units, any sign) in the tag of an open fence, whose link to a fill becomes one to itself.
/// False, with an alert, for any other entity.
bool setFenceHeight(double height, AcDbEntity& fence);

/// Draws the shadow of a fence. False for a height of zero and for a fence that cannot be written to; a fence without
/// a height is left alone.
bool makeFenceShadow(AcDbObjectId fence, ShadowDrawing& drawing);

/// Lets the user select fences and gives them one height.
void setHeightOfSelected();

}  // namespace OrvLib

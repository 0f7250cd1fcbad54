// Fences and their heights.
#pragma once

#include "Tolmex/CommandRow.h"

namespace OrvLib {

/// Whether the open entity is a board fence or a stone fence.
bool isFence(const AcDbEntity& entity);

/// Stores a height (drawing units, any sign) in the tag of an open fence, whose link to a fill becomes one to itself.
/// False, with an alert, for any other entity.
bool setFenceHeight(double height, AcDbEntity& fence);

/// Asks for a height and gives it to those polylines that are fences; alerts of every other one.
void setHeights(const SelectedIds& polylines);

}  // namespace OrvLib

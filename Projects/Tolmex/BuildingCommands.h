// The command that turns polylines into buildings and edits them.
#pragma once

#include "Tolmex/CommandRow.h"

namespace OrvLib {

/// Makes the polylines buildings, or edits the one building that is selected, after the building dialog. `Nothing` when
/// nothing was selected, the one polyline is an element, or the user cancels.
Outcome makeBuildings(const SelectedIds& polylines);

}  // namespace OrvLib

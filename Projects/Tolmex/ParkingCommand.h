// The command that lays parking places along a line.
#pragma once

#include "Tolmex/CommandRow.h"

namespace OrvLib {

/// Asks for the row's ends, angle, width and length and draws it as one group. `Nothing` when the user cancels or gives
/// numbers that make no row; the base line is drawn already when its ends are known.
Outcome makeParkingPlaces();

}  // namespace OrvLib

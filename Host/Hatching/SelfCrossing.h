// Whether a closed loop crosses itself.
#pragma once

#include "Hatching/Loops.h"

namespace host::hatching {

/// True when two pieces of the loop, straight or arcs, cross properly: each passes from one side of the other to the
/// other side, more than `tolerance` away from the ends of both. Pieces may meet at their ends, touch and overlap.
/// Coordinates should be near the origin. About n log n; stops at the first crossing, and with true when thousands of
/// pieces lie on top of each other.
bool crossesItself(const Loop& loop, double tolerance);

}  // namespace host::hatching

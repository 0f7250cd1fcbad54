#pragma once

#include "dbidar.h"

namespace host::database {

/// Moves to the next id in the direction, over erased ones when asked.
inline void moveOver(const AcDbObjectIdArray& ids, int& position, bool forward, bool skipDeleted) {
  const int step = forward ? 1 : -1;
  while (position >= 0 && position < ids.length() && skipDeleted && ids[position].isErased()) position += step;
}

}  // namespace host::database

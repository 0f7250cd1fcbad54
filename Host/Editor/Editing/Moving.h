// Moving entities of a drawing with all that belongs to them.
#pragma once

#include <vector>

#include "Database/DrawingDatabase.h"
#include "Editor/Editing/Motion.h"

namespace host::editor {

struct MoveCounts {
  std::size_t moved = 0, refused = 0;
  std::size_t fillsAlong = 0;  // hatches that were not asked for and went with their boundaries
  std::size_t freed = 0;       // hatches that lost their boundaries because these stayed, or went alone
};

/// Moves living entities with their vertices and attributes. Hatches go where all of their boundaries go, and are
/// associative no more where only some do. What cannot be moved, or lies on a locked layer, stays and is told to the
/// drawing's observer.
MoveCounts moveEntities(const std::vector<database::Slot*>& entities, const Motion& motion);

/// Those of the entities that a motion can be given to; the others are told to the drawing's observer.
std::vector<database::Slot*> movable(const std::vector<database::Slot*>& entities);

}  // namespace host::editor

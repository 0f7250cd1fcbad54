// Changes to entities of any type, past the classes of the host interface: for the editor's own commands.
#pragma once

#include <string_view>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace host::database {

/// Copies of living entities of one block, at its end, in the draw order of the originals; vertices, attributes,
/// extension dictionaries and extended data included. References between what is copied lead to the copies, others
/// stay; reactors that are not copied go, and a hatch that loses one of its boundaries is associative no more. A group
/// of which every living member is copied is copied as an unnamed one. Dimensions share the block that draws them.
/// Nothing is left behind when memory ends (std::bad_alloc).
std::vector<Slot*> copyEntities(DrawingDatabase& db, const std::vector<Slot*>& originals);

/// Gives a slot that nobody has open other tags (whole record, in the drawing's encoding), whatever its layer.
void rewriteRecord(Slot& slot, std::string_view tags);

/// The hatch's handles of its boundaries go, and so do their reactors that name it: it is associative no more.
void dissociateHatch(Slot& hatch);

/// Hatches whose boundary the entity is, by its reactors: living, associative, in its block.
std::vector<Slot*> hatchesOf(const Slot& boundary);
/// The boundaries that an associative hatch names; null for one that is gone. Empty for other hatches.
std::vector<Slot*> boundariesOf(const Slot& hatch);

}  // namespace host::database

// Objects that belong to others, and what else goes when one is erased.
#pragma once

#include <vector>

#include "Database/DrawingDatabase.h"

namespace host::database {

/// The extension dictionary of an object; null when it has none.
Slot* extensionDictionary(const Slot& slot);

/// What the object owns, one level deep: its extension dictionary, a dictionary's entries, hard-owned objects. No
/// entities, no table records.
std::vector<Slot*> ownedObjects(const Slot& slot);

/// Marks the object erased, or not, with the vertices and attributes that go with it.
void eraseSlot(Slot& slot, bool erasing);
/// Erases the extension dictionary with all that hangs on it.
void eraseExtension(const Slot& slot);

}  // namespace host::database

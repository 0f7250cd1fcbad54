// Objects that belong to others: extension dictionaries and what hangs on them.
#pragma once

#include <vector>

#include "Database/Parts.h"

namespace host::database {

/// The extension dictionary of an object; null when it has none.
Slot* extensionDictionary(const Slot& slot);

/// What the object owns, one level deep: its extension dictionary, a dictionary's entries, hard-owned objects. No
/// entities, no table records.
std::vector<Slot*> ownedObjects(const Slot& slot);

/// Erases the extension dictionary with all that hangs on it.
void eraseExtension(DrawingDatabase::Parts& parts, const Slot& slot);

}  // namespace host::database

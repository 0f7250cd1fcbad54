// A drawing, or a block of one, as a block of another.
#pragma once

#include <string_view>

#include "Database/DrawingDatabase.h"
#include "dbmain.h"

namespace host::database {

/// Copies the contents of `sourceBlock` (a block record of `source`) into the block `name` of `target`, made or emptied
/// first, and gives its id. What the contents name is copied too: layers, linetypes, styles, applications, nested
/// blocks, styles kept in dictionaries. Records that `target` has by name keep its version; anonymous blocks get new
/// numbers. Entities are drawn in the order they have in the source. Extension dictionaries and extended data of the
/// blocks and their entities are copied, but for what belongs to its own drawing (canHangOn). Entities the target's
/// version cannot hold are left out, which its problems say. eInvalidInput, eSelfReference as AcDbDatabase::insert
/// says; nothing is changed then.
Acad::ErrorStatus insertBlock(DrawingDatabase& target, std::wstring_view name, DrawingDatabase& source,
                              const Slot& sourceBlock, AcDbObjectId& id);

// ---- what a record may hold in a version of the format
// ---------------------------------------------------------------

/// Why an entity of the type cannot go from one version to another; empty when it can.
std::string_view cannotCarry(std::string_view typeName, DrawingVersion from, DrawingVersion to);
/// Whether an object of the type can be copied with an extension dictionary.
bool canHangOn(std::string_view typeName, DrawingVersion version);
/// Whether a tag of a record is known in a version. `subclass` is the marker before it.
bool isKnownTag(DxfType type, std::string_view subclass, int code, DrawingVersion version);

/// What the name in a tag refers to.
DxfType namedBy(DxfType recordType, std::string_view subclass, int code);
/// Whether tags of the code hold handles that other objects are named by.
bool holdsHandle(int code);

}  // namespace host::database

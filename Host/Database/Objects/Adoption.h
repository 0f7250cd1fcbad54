// How objects made outside become part of a drawing.
#pragma once

#include <string>
#include <string_view>

#include "Database/DrawingDatabase.h"
#include "dbmain.h"

namespace host::database {

/// Gives a new slot its record.
void setNewRecord(Slot& slot, std::string_view bytes);
/// The object's tags without its type (and, for entities, the AcDbEntity marker), in the drawing's encoding.
std::string ownTags(const AcDbObject& object, DrawingDatabase& db, bool isEntity);
/// Appends an entity to a block, vertices included. eAlreadyInDb, eWrongObjectType.
Acad::ErrorStatus appendEntity(Slot& blockRecord, AcDbEntity& entity);

/// Gives a new block record its BLOCK and ENDBLK.
void beginBlock(Slot& blockRecord, std::wstring_view name);

}  // namespace host::database

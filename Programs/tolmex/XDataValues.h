// Extended data of entities, read without opening those that have none.
#pragma once

#include "Database/DrawingDatabase.h"
#include "OrvLib/DataStruct/DataItems.h"

namespace tolmex {

/// The extended data of one application on one entity; empty when it has none.
OrvLib::DataItems extendedData(const host::database::Slot& slot, const host::database::DrawingDatabase& drawing,
                               const wchar_t* application);

}  // namespace tolmex

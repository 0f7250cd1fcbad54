// What a saved drawing has in place of its records where these count or order what the drawing holds.
#pragma once

#include <unordered_map>

#include "Database/DrawingDatabase.h"
#include "Database/Memory.h"

namespace host::database {

/// The records that a saved drawing has in place of those here: sort tables, table counts, classes, the hand seed.
/// They say what is there when it is saved; the drawing itself does not change. New text goes into `memory`.
std::unordered_map<const Slot*, Record> settledRecords(DrawingDatabase& db, Arena& memory);

}  // namespace host::database

// What `tolmex info` tells of buildings and their shadows.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace tolmex {

/// One line for a building: its values as stored, its ridge and roof colours. Nothing for an entity without a building
/// record. What is wrong with the record, or keeps it from being one, is added to `problems`.
std::optional<std::string> describeBuilding(const host::database::Slot& slot,
                                            const host::database::DrawingDatabase& drawing,
                                            std::vector<std::string>& problems);

/// The stored shadow settings in one line; nothing when the drawing has none. What is wrong with them is added to
/// `problems`.
std::optional<std::string> describeShadowSettings(AcDbDatabase& database, std::vector<std::string>& problems);

}  // namespace tolmex

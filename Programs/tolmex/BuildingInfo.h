// What `tolmex info` tells of buildings and their shadows.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace tolmex {

/// Values as stored; "?" for those that are missing.
struct BuildingValues {
  std::uint64_t handle = 0;
  std::string floors, floorHeight, baseHeight, eavesWidth, ridgeHeight, sunColor, shadeColor;
  std::optional<std::uint64_t> ridge;  // nothing: a flat roof
  bool ridgeIsAlive = false;           // is in the drawing and tagged as a ridge line
};

/// Nothing for an entity without a building record. What is wrong with the record, or keeps it from being one, is added
/// to `problems`.
std::optional<BuildingValues> readBuilding(const host::database::Slot& slot,
                                           const host::database::DrawingDatabase& drawing,
                                           std::vector<host::database::Problem>& problems);

/// Missing values have no number.
struct ShadowValues {
  std::optional<double> directionDegrees, lengthPerFloor, color, scale;
  bool isDots = false;
};

/// The stored shadow settings; nothing when the drawing has none. What is wrong with them is added to `problems`.
std::optional<ShadowValues> readShadowSettings(AcDbDatabase& database, std::vector<host::database::Problem>& problems);

}  // namespace tolmex

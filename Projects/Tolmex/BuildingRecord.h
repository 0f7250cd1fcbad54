// The building record: extended data that makes a polyline a building. Here its reading side.
#pragma once

#include <optional>
#include <string>

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

struct RoofColors {
  int shadow = 0;
  int sun = 0;
};

/// The record's values as they are stored; lengths are numbers in drawing units.
struct BuildingTexts {
  std::wstring baseHeight;
  std::wstring floorHeight;
  std::wstring nrFloors;
  std::wstring eavesWidth;
  std::wstring roofHeight;
  std::optional<std::wstring> roofLineHandle;  // present: the building has a ridge line
};

/// The colours of the roof's two sides; nothing when either is missing. The entity must be open.
std::optional<RoofColors> readRoofColors(const AcDbEntity& entity);

/// Whether the open entity carries a building record: the type "building", case ignored, and both roof colours.
bool isBuilding(const AcDbEntity& entity);

/// The record of a building; nothing when the open entity is none or any of the five values is missing.
std::optional<BuildingTexts> readBuildingTexts(const AcDbEntity& entity);

}  // namespace OrvLib

// The building record: extended data that makes a polyline a building.
#pragma once

#include <optional>
#include <string>

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

class Building;

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

/// Writes the record onto the building's polyline, which must not be open; the roof colours are those chosen last in
/// the drawing. A ridge line that cannot be read is left out, which the command line says. False, and nothing changed,
/// when the polyline cannot be written to, carries an entity tag (shown in a message box) or the host refuses the data.
bool writeBuildingRecord(const Building& building);

}  // namespace OrvLib

// Building records of entities: extended data that makes a polyline a building.
#pragma once

#include "OrvLib/ARX/HostInterface.h"
#include "Tolmex/Model/BuildingRecord.h"

namespace OrvLib {

class Building;

// The readers take an open entity. False leaves what they give untouched.

/// False when either colour is missing.
bool readRoofColours(const AcDbEntity& entity, RoofColours& colours);

/// Whether the entity carries a building record: the type "building", case ignored, and both roof colours.
bool isBuilding(const AcDbEntity& entity);

/// False when the entity is no building or any of the five values is missing. A text without a leading number is 0.
bool readBuildingRecord(const AcDbEntity& entity, BuildingRecord<double>& numbers);
bool readBuildingRecord(const AcDbEntity& entity, BuildingRecord<std::wstring>& texts);

/// Writes the record onto the building's polyline, which must not be open; the roof colours are those chosen last in
/// the drawing. A ridge line that cannot be read is left out, which the command line says. False, and nothing changed,
/// when the polyline cannot be written to, carries an entity tag (shown in a message box) or the host refuses the data.
bool writeBuildingRecord(const Building& building);

}  // namespace OrvLib

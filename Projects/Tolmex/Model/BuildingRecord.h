// The building record in its stored form, and what it says.
#pragma once

#include <optional>
#include <string>

#include "OrvLib/DataStruct/DataItems.h"

namespace OrvLib {

/// Colour indices of the roof's two sides.
struct RoofColours {
  int shaded = 0;
  int sunlit = 0;

  bool operator==(const RoofColours&) const = default;
};

/// What a complete record says of its building, lengths in drawing units. `Value` is double for the numbers,
/// std::wstring for the texts as they are stored.
template <class Value>
struct BuildingRecord {
  Value baseHeight{};
  Value floorHeight{};
  Value nrFloors{};
  Value eavesWidth{};
  Value roofHeight{};
  bool hasRoofLine = false;
  std::wstring roofLineHandle;
};

/// The values of a record as stored, complete or not; nothing for a key that is missing.
struct StoredBuilding {
  bool hasType = false;  // the record's type is "building", in any case of its letters
  std::optional<std::wstring> baseHeight;
  std::optional<std::wstring> floorHeight;
  std::optional<std::wstring> nrFloors;
  std::optional<std::wstring> eavesWidth;
  std::optional<std::wstring> roofHeight;
  std::optional<std::wstring> shadowColor;
  std::optional<std::wstring> sunColor;
  std::optional<std::wstring> roofLineHandle;

  /// Nothing when either colour is missing.
  std::optional<RoofColours> roofColours() const;
  /// Whether the record makes its polyline a building: it has the type and both roof colours.
  bool isBuilding() const { return hasType && shadowColor && sunColor; }
  /// Nothing when it is no building or any of the five values is missing.
  std::optional<BuildingRecord<std::wstring>> complete() const;
};

/// Reads a record from the extended data of its application.
StoredBuilding readStoredBuilding(const DataItems& data);

/// The numbers of a record's texts; a text without a leading number is 0.
BuildingRecord<double> numbersOf(const BuildingRecord<std::wstring>& texts);

/// The extended data that a record is stored as; the handle of the ridge line goes into it with `hasRoofLine`.
DataItems buildingRecordItems(const BuildingRecord<double>& building, const RoofColours& colours);

/// What the cursor's tooltip says of a building.
std::wstring buildingTooltip(const BuildingRecord<std::wstring>& building);

}  // namespace OrvLib

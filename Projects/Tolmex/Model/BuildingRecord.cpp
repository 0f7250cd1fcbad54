#include "Tolmex/Model/BuildingRecord.h"

#include <utility>

#include "OrvLib/DataStruct/Ordering.h"
#include "OrvLib/DataStruct/Text.h"
#include "Tolmex/Model/Names.h"

namespace OrvLib {
namespace {

namespace keys = building_keys;

constexpr const wchar_t* kRoofMaterial = L"Surf_MetalPlate";
constexpr const wchar_t* kBaseMaterial = L"Surf_Concrete";
constexpr const wchar_t* kMaterialSet = L"mat_rakennus";
constexpr const wchar_t* kTextureWidth = L"16";

}  // namespace

std::optional<RoofColours> StoredBuilding::roofColours() const {
  if (!shadowColor || !sunColor) return std::nullopt;
  return RoofColours{toInt(leadingNumber(*shadowColor)), toInt(leadingNumber(*sunColor))};
}

std::optional<BuildingRecord<std::wstring>> StoredBuilding::complete() const {
  if (!isBuilding() || !baseHeight || !floorHeight || !nrFloors || !eavesWidth || !roofHeight) return std::nullopt;
  return BuildingRecord<std::wstring>{*baseHeight,
                                      *floorHeight,
                                      *nrFloors,
                                      *eavesWidth,
                                      *roofHeight,
                                      roofLineHandle.has_value(),
                                      roofLineHandle.value_or(L"")};
}

StoredBuilding readStoredBuilding(const DataItems& data) {
  const auto value = [&](const wchar_t* key) { return valueOfKey(data, kBuildingApplication, key); };
  const std::optional<std::wstring> type = value(keys::kType);
  return {type && equalsIgnoringCase(*type, keys::kBuildingType),
          value(keys::kBaseHeight),
          value(keys::kFloorHeight),
          value(keys::kFloors),
          value(keys::kEavesWidth),
          value(keys::kRoofHeight),
          value(keys::kShadowColor),
          value(keys::kSunColor),
          value(keys::kRoofLine)};
}

BuildingRecord<double> numbersOf(const BuildingRecord<std::wstring>& texts) {
  return {leadingNumber(texts.baseHeight),
          leadingNumber(texts.floorHeight),
          leadingNumber(texts.nrFloors),
          leadingNumber(texts.eavesWidth),
          leadingNumber(texts.roofHeight),
          texts.hasRoofLine,
          texts.roofLineHandle};
}

// Order and the repeated base material are those of drawings in use.
DataItems buildingRecordItems(const BuildingRecord<double>& building, const RoofColours& colours) {
  DataItems record;
  record.emplace_back(kXDataApplication, kBuildingApplication);
  const auto add = [&](const wchar_t* key, std::wstring value, short code = kXDataText) {
    record.emplace_back(kXDataText, key);
    record.emplace_back(code, std::move(value));
  };
  add(keys::kType, keys::kBuildingType);
  add(L"rooflinelayer", layers::kRidgeLine);
  add(keys::kBaseHeight, formatNumber(building.baseHeight));
  add(keys::kEavesWidth, formatNumber(building.eavesWidth));
  add(keys::kFloorHeight, formatNumber(building.floorHeight));
  add(keys::kFloors, formatNumber(building.nrFloors));
  add(L"roofmaterial", kRoofMaterial);
  add(L"basematerial", kBaseMaterial);
  add(L"texwidth", kTextureWidth);
  add(L"basematerial", kBaseMaterial);
  add(L"materials", kMaterialSet);
  add(keys::kRoofHeight, formatNumber(building.roofHeight));
  add(kVersionKey, kVersion);
  add(keys::kShadowColor, std::to_wstring(colours.shaded));
  add(keys::kSunColor, std::to_wstring(colours.sunlit));
  if (building.hasRoofLine) add(keys::kRoofLine, building.roofLineHandle, kXDataHandle);
  return record;
}

std::wstring buildingTooltip(const BuildingRecord<std::wstring>& building) {
  const std::wstring start = L"Rakennus (" + formatNumber(leadingNumber(building.nrFloors)) + L" kerrosta): ";
  if (!building.hasRoofLine) return start + L"harjaviivaa ei määritelty.";
  return start + L"harjaviiva määritelty (" + building.roofHeight + L" m).";
}

}  // namespace OrvLib

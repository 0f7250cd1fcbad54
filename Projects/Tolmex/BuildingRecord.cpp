#include "Tolmex/BuildingRecord.h"

#include "OrvLib/ARX/AdsResbuf.h"
#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/XData.h"
#include "OrvLib/DataStruct/Ordering.h"
#include "OrvLib/DataStruct/Text.h"
#include "Tolmex/Building.h"
#include "Tolmex/DocData.h"
#include "Tolmex/EntityTag.h"
#include "Tolmex/MessageBoxes.h"

namespace OrvLib {
namespace {

namespace keys = building_keys;

/// The record's chain, fetched once for all of its keys.
class RecordChain {
 public:
  explicit RecordChain(const AcDbEntity& entity) : chain_(entity.xData(kBuildingApplication)) {}

  std::optional<std::wstring> value(const ACHAR* key) const {
    return valueInChain(chain_.get(), kBuildingApplication, key);
  }

  std::optional<RoofColors> roofColors() const {
    const auto shadow = value(keys::kShadowColor);
    const auto sun = value(keys::kSunColor);
    if (!shadow || !sun) return std::nullopt;
    return RoofColors{toInt(leadingNumber(*shadow)), toInt(leadingNumber(*sun))};
  }

  bool isBuilding() const {
    const auto type = value(keys::kType);
    return type && equalsIgnoringCase(*type, keys::kBuildingType) && roofColors();
  }

 private:
  AdsResbuf chain_;
};

}  // namespace

std::optional<RoofColors> readRoofColors(const AcDbEntity& entity) { return RecordChain(entity).roofColors(); }

bool isBuilding(const AcDbEntity& entity) { return RecordChain(entity).isBuilding(); }

std::optional<BuildingTexts> readBuildingTexts(const AcDbEntity& entity) {
  const RecordChain record(entity);
  if (!record.isBuilding()) return std::nullopt;
  BuildingTexts texts;
  struct Field {
    const ACHAR* key;
    std::wstring BuildingTexts::*text;
  };
  static constexpr Field kFields[] = {{keys::kBaseHeight, &BuildingTexts::baseHeight},
                                      {keys::kFloorHeight, &BuildingTexts::floorHeight},
                                      {keys::kFloors, &BuildingTexts::nrFloors},
                                      {keys::kEavesWidth, &BuildingTexts::eavesWidth},
                                      {keys::kRoofHeight, &BuildingTexts::roofHeight}};
  for (const Field& field : kFields) {
    auto value = record.value(field.key);
    if (!value) return std::nullopt;
    texts.*field.text = std::move(*value);
  }
  texts.roofLineHandle = record.value(keys::kRoofLine);
  return texts;
}

namespace {

constexpr const ACHAR* kRoofMaterial = L"Surf_MetalPlate";
constexpr const ACHAR* kBaseMaterial = L"Surf_Concrete";
constexpr const ACHAR* kMaterialSet = L"mat_rakennus";
constexpr const ACHAR* kTextureWidth = L"16";

/// Order and the repeated base material are those of drawings in use.
AdsResbuf recordOf(const Building& building, const RoofColors& colors) {
  AdsResbuf record;
  record.append(kXDataApplication, kBuildingApplication);
  const auto add = [&](const ACHAR* key, const std::wstring& value) {
    record.append(kXDataText, key);
    record.append(kXDataText, value);
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
  add(keys::kShadowColor, std::to_wstring(colors.shadow));
  add(keys::kSunColor, std::to_wstring(colors.sun));
  return record;
}

void addRidgeLine(AdsResbuf& record, AcDbObjectId ridgeLine) {
  const Opened<AcDbEntity> ridge(ridgeLine, AcDb::kForRead);
  if (!ridge) {
    acutPrintf(L"\nRakennuksen harjaviivaa ei saatu luettua, rakennuksen varjostus tulee tasakattona.\n");
    return;
  }
  record.append(kXDataText, keys::kRoofLine);
  record.append(kXDataHandle, handleText(*ridge));
}

}  // namespace

bool writeBuildingRecord(const Building& building) {
  AdsResbuf record = recordOf(building, currentDocData().roofColors);
  if (building.hasRoofLine) addRidgeLine(record, building.roofLineId);
  Opened<AcDbEntity> entity(building.entityId, AcDb::kForWrite);
  if (!entity) return false;
  if (const std::optional<std::wstring> tag = readCategory(*entity)) {
    entity.close();
    showMessage(*tag + L" ei ole mahdollista muuttaa rakennukseksi.\n");
    return false;
  }
  return setXDataRegistered(*entity, kBuildingApplication, record.get());
}

}  // namespace OrvLib

#include "Tolmex/BuildingRecord.h"

#include <optional>
#include <utility>

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

  std::optional<RoofColours> roofColours() const {
    const auto shaded = value(keys::kShadowColor);
    const auto sunlit = value(keys::kSunColor);
    if (!shaded || !sunlit) return std::nullopt;
    return RoofColours{toInt(leadingNumber(*shaded)), toInt(leadingNumber(*sunlit))};
  }

  bool isBuilding() const {
    const auto type = value(keys::kType);
    return type && equalsIgnoringCase(*type, keys::kBuildingType) && roofColours();
  }

 private:
  AdsResbuf chain_;
};

}  // namespace

bool readRoofColours(const AcDbEntity& entity, RoofColours& colours) {
  const std::optional<RoofColours> stored = RecordChain(entity).roofColours();
  if (stored) colours = *stored;
  return stored.has_value();
}

bool isBuilding(const AcDbEntity& entity) { return RecordChain(entity).isBuilding(); }

bool readBuildingRecord(const AcDbEntity& entity, BuildingRecord<std::wstring>& texts) {
  using Texts = BuildingRecord<std::wstring>;
  struct Field {
    const ACHAR* key;
    std::wstring Texts::*text;
  };
  static constexpr Field kFields[] = {{keys::kBaseHeight, &Texts::baseHeight},
                                      {keys::kFloorHeight, &Texts::floorHeight},
                                      {keys::kFloors, &Texts::nrFloors},
                                      {keys::kEavesWidth, &Texts::eavesWidth},
                                      {keys::kRoofHeight, &Texts::roofHeight}};
  const RecordChain record(entity);
  if (!record.isBuilding()) return false;
  Texts stored;
  for (const Field& field : kFields) {
    auto value = record.value(field.key);
    if (!value) return false;
    stored.*field.text = std::move(*value);
  }
  const std::optional<std::wstring> roofLine = record.value(keys::kRoofLine);
  stored.hasRoofLine = roofLine.has_value();
  stored.roofLineHandle = roofLine.value_or(L"");
  texts = std::move(stored);
  return true;
}

bool readBuildingRecord(const AcDbEntity& entity, BuildingRecord<double>& numbers) {
  BuildingRecord<std::wstring> texts;
  if (!readBuildingRecord(entity, texts)) return false;
  numbers = {leadingNumber(texts.baseHeight), leadingNumber(texts.floorHeight), leadingNumber(texts.nrFloors),
             leadingNumber(texts.eavesWidth), leadingNumber(texts.roofHeight),  texts.hasRoofLine,
             std::move(texts.roofLineHandle)};
  return true;
}

namespace {

constexpr const ACHAR* kRoofMaterial = L"Surf_MetalPlate";
constexpr const ACHAR* kBaseMaterial = L"Surf_Concrete";
constexpr const ACHAR* kMaterialSet = L"mat_rakennus";
constexpr const ACHAR* kTextureWidth = L"16";

/// Order and the repeated base material are those of drawings in use.
AdsResbuf recordOf(const Building& building, const RoofColours& colours) {
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
  add(keys::kShadowColor, std::to_wstring(colours.shaded));
  add(keys::kSunColor, std::to_wstring(colours.sunlit));
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
  AdsResbuf record = recordOf(building, currentDocData().roofColours);
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

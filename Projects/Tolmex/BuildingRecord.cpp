#include "Tolmex/BuildingRecord.h"

#include <optional>
#include <utility>

#include "OrvLib/ARX/AdsResbuf.h"
#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/XData.h"
#include "Tolmex/Building.h"
#include "Tolmex/DocData.h"
#include "Tolmex/EntityTag.h"
#include "Tolmex/MessageBoxes.h"

namespace OrvLib {
namespace {

StoredBuilding storedOn(const AcDbEntity& entity) {
  return readStoredBuilding(readXData(entity, kBuildingApplication));
}

/// The handle of the ridge line; nothing, as the command line then says, when it cannot be read.
std::optional<std::wstring> ridgeLineHandle(AcDbObjectId ridgeLine) {
  const Opened<AcDbEntity> ridge(ridgeLine, AcDb::kForRead);
  if (ridge) return handleText(*ridge);
  acutPrintf(L"\nRakennuksen harjaviivaa ei saatu luettua, rakennuksen varjostus tulee tasakattona.\n");
  return std::nullopt;
}

}  // namespace

bool readRoofColours(const AcDbEntity& entity, RoofColours& colours) {
  const std::optional<RoofColours> stored = storedOn(entity).roofColours();
  if (stored) colours = *stored;
  return stored.has_value();
}

bool isBuilding(const AcDbEntity& entity) { return storedOn(entity).isBuilding(); }

bool readBuildingRecord(const AcDbEntity& entity, BuildingRecord<std::wstring>& texts) {
  std::optional<BuildingRecord<std::wstring>> stored = storedOn(entity).complete();
  if (stored) texts = std::move(*stored);
  return stored.has_value();
}

bool readBuildingRecord(const AcDbEntity& entity, BuildingRecord<double>& numbers) {
  BuildingRecord<std::wstring> texts;
  if (!readBuildingRecord(entity, texts)) return false;
  numbers = numbersOf(texts);
  return true;
}

bool writeBuildingRecord(const Building& building) {
  const std::optional<std::wstring> ridgeLine =
      building.hasRoofLine ? ridgeLineHandle(building.roofLineId) : std::nullopt;
  const BuildingRecord<double> values{building.baseHeight,    building.floorHeight, building.nrFloors,
                                      building.eavesWidth,    building.roofHeight,  ridgeLine.has_value(),
                                      ridgeLine.value_or(L"")};
  const AdsResbuf record(buildingRecordItems(values, currentDocData().roofColours));
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

#include "Tolmex/Building.h"

#include <utility>

#include "OrvLib/ARX/EntityGeometry.h"
#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Selector.h"
#include "Tolmex/BuildingRecord.h"
#include "Tolmex/DocData.h"
#include "Tolmex/DocumentLock.h"
#include "Tolmex/EntityTag.h"

namespace OrvLib {
namespace {

/// The ridge line that the handle leads to; null id when it is gone or became something else.
AcDbObjectId ridgeLineOf(const std::wstring& handle) {
  const Opened<AcDbEntity> ridge(objectOfHandle(handle), AcDb::kForRead);
  return ridge && readCategory(*ridge) == row(Category::RidgeLine).tag ? ridge->objectId() : AcDbObjectId();
}

}  // namespace

Building::Building(Opened<AcDbEntity> entity) {
  const DocumentLock lock;
  if (!lock || !entity || !takeOutline(*entity)) return;
  entityId = entity->objectId();
  takeRecord(*entity);
}

Building::Building(Opened<AcDbEntity> entity, int floors, double eaves, double heightOfFloor, double heightOfBase,
                   bool isRidged, AcDbObjectId ridgeLine, double heightOfRoof)
    : nrFloors(floors),
      eavesWidth(eaves),
      floorHeight(heightOfFloor),
      baseHeight(heightOfBase),
      roofHeight(heightOfRoof),
      hasRoofLine(isRidged),
      roofLineId(ridgeLine) {
  const DocumentLock lock;
  if (lock && entity && takeOutline(*entity)) entityId = entity->objectId();
}

bool Building::takeOutline(const AcDbEntity& entity) {
  if (!isBoundary(entity)) {
    acutPrintf(L"\nwas given a non polyline object.\n");
    return false;
  }
  const std::optional<PolyArc> course = readPolyArc(entity);
  if (!course) return false;
  firstSegmentIsArc = course->firstSegmentIsArc();
  followsChords = course->hasTooManyPieces(kOutlineStep);
  outline = course->approximated(kOutlineStep);
  return true;
}

void Building::takeRecord(const AcDbEntity& entity) {
  BuildingRecord<double> record;
  if (!readBuildingRecord(entity, record)) return;
  nrFloors = record.nrFloors;
  eavesWidth = record.eavesWidth;
  floorHeight = record.floorHeight;
  baseHeight = record.baseHeight;
  roofHeight = record.roofHeight;
  if (record.hasRoofLine) roofLineId = ridgeLineOf(record.roofLineHandle);
  hasRoofLine = !roofLineId.isNull();
  valid = true;
}

void Building::refreshOutline() {
  const Opened<AcDbEntity> entity(entityId, AcDb::kForRead);
  if (!entity) return;
  firstSegmentIsArc = false;
  const DocumentLock lock;
  if (lock) takeOutline(*entity);
}

void collectBuildings(CDocData& data) {
  data.buildings.clear();
  for (const AcDbObjectId id : Selector::polylines().withDataOf(kBuildingApplication)) {
    Opened<AcDbEntity> entity(id, AcDb::kForRead);
    if (!entity) continue;
    Building building(std::move(entity));
    if (building.valid) data.buildings.push_back(std::move(building));
  }
}

}  // namespace OrvLib

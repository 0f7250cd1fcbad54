#include "Tolmex/BuildingShadow.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "OrvLib/ARX/EntityGeometry.h"
#include "Tolmex/ColorSchemeFile.h"
#include "Tolmex/Names.h"

namespace OrvLib {
namespace {

Point3dArray ridgePoints(AcDbObjectId ridgeLine) {
  Point3dArray points;
  const Opened<AcDbEntity> entity(ridgeLine, AcDb::kForRead);
  const std::optional<PolyArc> course = entity ? readPolyArc(*entity) : std::nullopt;
  if (!course) return points;
  std::transform(course->vertices().begin(), course->vertices().end(), std::back_inserter(points),
                 [](const ArcVertex& vertex) { return vertex.point; });
  return points;
}

ShadowCaster casterOf(const Building& building) {
  ShadowCaster caster;
  caster.outline = building.outline;
  caster.firstSegmentIsArc = building.firstSegmentIsArc;
  caster.nrFloors = building.nrFloors;
  caster.floorHeight = building.floorHeight;
  caster.roofHeight = building.roofHeight;
  if (building.hasRoofLine) caster.ridge = ridgePoints(building.roofLineId);
  return caster;
}

bool canBeWrittenTo(AcDbObjectId id) { return static_cast<bool>(Opened<AcDbEntity>(id, AcDb::kForWrite)); }

}  // namespace

void makeBuildingShadow(Building& building, ShadowDrawing& drawing) {
  const AcAxDocLock lock;
  if (lock.lockStatus() != Acad::eOk || !canBeWrittenTo(building.entityId)) return;
  building.roofFillId = makeHatch(building.entityId, kColorByLayer, elementLayer(layers::kRoofFill), {});
  if (building.followsChords) ShadowDrawing::tellOfChords(building.entityId);
  const ShadowSettings& settings = drawing.settings();
  drawing.draw(buildingShadow(casterOf(building), settings.shadowAngleRad, settings.shadowLengthPerFloor),
               kBuildingShadow);
}

}  // namespace OrvLib

#include "Tolmex/ShadowDrawing.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <string>

#include "OrvLib/ARX/EntityGeometry.h"
#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/DataStruct/Text.h"
#include "Tolmex/ColorSchemeFile.h"
#include "Tolmex/EntityTag.h"
#include "Tolmex/Model/Names.h"

namespace OrvLib {

/// Whose shadow it is: what its group says and what becomes of the hatches' boundaries.
struct ShadowKind {
  const ACHAR* groupDescription;
  const ACHAR* boundaryLayer;
  bool keepsBoundaries;  // on the layer, which is made and switched off; otherwise they are erased
};

namespace {

constexpr ShadowKind kBuildingShadow{L"Rakennuksien varjon hatch", layers::kShadowBoundary, true};
constexpr ShadowKind kFenceShadow{L"Aidan varjon hatch", layers::kPassingBoundary, false};

constexpr const ACHAR* kGroupPrefix = L"Varjo";
constexpr int kBoundaryColor = 34;
constexpr int kBoundaryLayerColor = 7;
constexpr double kNoHeight = 0.0001;    // of a fence; those below it cast no shadow
constexpr double kSmallestArea = 1e-4;  // square drawing units; below it a quadrilateral counts as a line

bool isWide(const Quad& quad) {
  const Point3d a = quad[2] - quad[0];
  const Point3d b = quad[3] - quad[1];
  return std::abs(a.x * b.y - a.y * b.x) / 2 > kSmallestArea;
}

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

/// Tells that the shadow of an entity follows the chords of its arcs, which are too long to be cut into pieces.
void tellOfChords(AcDbObjectId id) {
  const Opened<AcDbEntity> entity(id, AcDb::kForRead);
  if (!entity) return;
  acutPrintf(L"\nKohteen %s kaaret ovat liian pitkiä jaettaviksi: varjo seuraa niiden jänteitä.\n",
             handleText(*entity).c_str());
}

}  // namespace

ShadowDrawing::ShadowDrawing(const ShadowSettings& settings)
    : settings_(settings),
      pattern_{settings_.shadowHatchType.c_str(), settings_.shadowAngleRad, settings_.shadowScale},
      groups_(kGroupPrefix) {}

/// Without the layer the settings' colour had nowhere to go.
void ShadowDrawing::makeShadowLayer() {
  if (!isShadowLayerThere_ && findLayer(layers::kShadow).isNull()) {
    ensureLayer(layers::kShadow, settings_.shadowColor, kContinuous);
  }
  isShadowLayerThere_ = true;
}

void ShadowDrawing::hideBoundaryLayer(const ShadowKind& kind) {
  if (isBoundaryLayerHidden_) return;
  isBoundaryLayerHidden_ = true;
  ensureLayer(kind.boundaryLayer, kBoundaryLayerColor, kContinuous);
  LayerState hidden;
  hidden.off = true;
  setLayerState(kind.boundaryLayer, hidden);
}

void ShadowDrawing::draw(const std::vector<Quad>& quads, const ShadowKind& kind) {
  const Opened<AcDbGroup> group = groups_.make(kind.groupDescription);
  if (!quads.empty()) makeShadowLayer();
  if (kind.keepsBoundaries && !quads.empty()) hideBoundaryLayer(kind);
  AcDbObjectIdArray hatches;
  const OpenModelSpace modelSpace;
  for (const Quad& quad : quads) {
    const PolyLine points(Point3dArray(quad.begin(), quad.end()));
    const AcDbObjectId boundary = makeClosed3dPolyline(points, kBoundaryColor, kind.boundaryLayer);
    const AcDbObjectId hatch = makeHatch(points, kColorByLayer, layers::kShadow, pattern_);
    if (!hatch.isNull()) hatches.append(hatch);
    if (!kind.keepsBoundaries) eraseEntity(boundary);
    if (isWide(quad)) ++wideQuads_;
  }
  hatches_ += static_cast<std::size_t>(hatches.length());
  appendToGroup(group, hatches);
}

void ShadowDrawing::makeBuildingShadow(Building& building) {
  const AcAxDocLock lock;
  if (lock.lockStatus() != Acad::eOk || !canBeWrittenTo(building.entityId)) return;
  building.roofFillId = makeHatch(building.entityId, kColorByLayer, elementLayer(layers::kRoofFill), {});
  if (building.followsChords) tellOfChords(building.entityId);
  draw(buildingShadow(casterOf(building), settings_.shadowAngleRad, settings_.shadowLengthPerFloor), kBuildingShadow);
}

bool ShadowDrawing::makeFenceShadow(Opened<AcDbEntity> fence) {
  const std::optional<std::wstring> stored = readHeight(*fence);
  if (!stored) return true;
  const double height = leadingNumber(*stored);
  if (std::abs(height) < kNoHeight || !makeWritable(*fence)) return false;
  const AcDbObjectId id = fence->objectId();
  const std::optional<PolyArc> course = readPolyArc(*fence);
  fence.close();
  if (course && course->hasTooManyPieces(kFenceStep)) tellOfChords(id);
  if (course) draw(fenceShadow(*course, height, settings_.shadowAngleRad), kFenceShadow);
  return true;
}

void ShadowDrawing::tellIfNothingWasHatched() const {
  if (wideQuads_ == 0 || hatches_ > 0) return;
  acutPrintf(L"\nVarjoja ei voitu piirtää varjon viivojen skaalalla %s.\n",
             formatNumber(settings_.shadowScale).c_str());
}

}  // namespace OrvLib

#include "Tolmex/ShadowDrawing.h"

#include <cmath>

#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/DataStruct/Text.h"

namespace OrvLib {
namespace {

constexpr const ACHAR* kGroupPrefix = L"Varjo";
constexpr int kBoundaryColor = 34;
constexpr int kBoundaryLayerColor = 7;
constexpr double kSmallestArea = 1e-4;  // square drawing units; below it a quadrilateral counts as a line

bool isWide(const Quad& quad) {
  const Point3d a = quad[2] - quad[0];
  const Point3d b = quad[3] - quad[1];
  return std::abs(a.x * b.y - a.y * b.x) / 2 > kSmallestArea;
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

void ShadowDrawing::tellOfChords(AcDbObjectId id) {
  const Opened<AcDbEntity> entity(id, AcDb::kForRead);
  if (!entity) return;
  acutPrintf(L"\nKohteen %s kaaret ovat liian pitkiä jaettaviksi: varjo seuraa niiden jänteitä.\n",
             handleText(*entity).c_str());
}

void ShadowDrawing::tellIfNothingWasHatched() const {
  if (wideQuads_ == 0 || hatches_ > 0) return;
  acutPrintf(L"\nVarjoja ei voitu piirtää varjon viivojen skaalalla %s.\n",
             formatNumber(settings_.shadowScale).c_str());
}

}  // namespace OrvLib

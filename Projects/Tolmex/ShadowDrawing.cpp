#include "Tolmex/ShadowDrawing.h"

#include "OrvLib/ARX/Layers.h"
#include "Tolmex/Catalogue.h"

namespace OrvLib {
namespace {

constexpr const ACHAR* kGroupPrefix = L"Varjo";
constexpr int kBoundaryColor = 34;
constexpr int kBoundaryLayerColor = 7;

}  // namespace

ShadowDrawing::ShadowDrawing(const ShadowSettings& settings)
    : settings_(settings),
      pattern_{settings_.shadowHatchType.c_str(), settings_.shadowAngleRad, settings_.shadowScale},
      groups_(kGroupPrefix) {}

void ShadowDrawing::hideBoundaryLayer(const ShadowKind& kind) {
  if (isBoundaryLayerHidden_) return;
  isBoundaryLayerHidden_ = true;
  ensureLayer(kind.boundaryLayer, kBoundaryLayerColor, kLinetypeContinuous);
  LayerState hidden;
  hidden.off = true;
  setLayerState(kind.boundaryLayer, hidden);
}

void ShadowDrawing::draw(const std::vector<Quad>& quads, const ShadowKind& kind) {
  const Opened<AcDbGroup> group = groups_.make(kind.groupDescription);
  if (kind.keepsBoundaries && !quads.empty()) hideBoundaryLayer(kind);
  AcDbObjectIdArray hatches;
  const OpenModelSpace modelSpace;
  for (const Quad& quad : quads) {
    const PolyLine points(std::vector<Point3d>(quad.begin(), quad.end()));
    const AcDbObjectId boundary = makeClosed3dPolyline(points, kBoundaryColor, kind.boundaryLayer);
    const AcDbObjectId hatch = makeHatch(points, kColorByLayer, layers::kShadow, pattern_);
    if (!hatch.isNull()) hatches.append(hatch);
    if (!kind.keepsBoundaries) eraseEntity(boundary);
  }
  appendToGroup(group, hatches);
}

}  // namespace OrvLib

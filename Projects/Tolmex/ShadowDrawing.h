// Shadows in the drawing.
#pragma once

#include <vector>

#include "OrvLib/ARX/EntityMakers.h"
#include "OrvLib/ARX/Groups.h"
#include "Tolmex/ShadowGeometry.h"
#include "Tolmex/ShadowSettings.h"

namespace OrvLib {

/// Whose shadow it is: what its group says and what becomes of the hatches' boundaries.
struct ShadowKind {
  const ACHAR* groupDescription;
  const ACHAR* boundaryLayer;
  bool keepsBoundaries;  // on the layer, which is made and switched off; otherwise they are erased
};
inline constexpr ShadowKind kBuildingShadow{L"Rakennuksien varjon hatch", L"tmv_varjo_reunaviiva", true};
inline constexpr ShadowKind kFenceShadow{L"Aidan varjon hatch", L"POLY", false};

/// Draws shadows into the working database, all of one update with the same settings.
class ShadowDrawing {
 public:
  explicit ShadowDrawing(const ShadowSettings& settings);

  const ShadowSettings& settings() const { return settings_; }
  /// One hatch for each quadrilateral, all in a new group "Varjo<n>". Those that cannot be hatched are passed over.
  void draw(const std::vector<Quad>& quads, const ShadowKind& kind);

 private:
  void hideBoundaryLayer(const ShadowKind& kind);

  ShadowSettings settings_;
  HatchPattern pattern_;
  NumberedGroups groups_;
  bool isBoundaryLayerHidden_ = false;
};

}  // namespace OrvLib

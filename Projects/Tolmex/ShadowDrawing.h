// Shadows in the drawing.
#pragma once

#include <cstddef>
#include <vector>

#include "OrvLib/ARX/Groups.h"
#include "OrvLib/GeomStructs/EntityMakers.h"
#include "Tolmex/Names.h"
#include "Tolmex/ShadowGeometry.h"
#include "Tolmex/ShadowSettings.h"

namespace OrvLib {

/// Whose shadow it is: what its group says and what becomes of the hatches' boundaries.
struct ShadowKind {
  const ACHAR* groupDescription;
  const ACHAR* boundaryLayer;
  bool keepsBoundaries;  // on the layer, which is made and switched off; otherwise they are erased
};
inline constexpr ShadowKind kBuildingShadow{L"Rakennuksien varjon hatch", layers::kShadowBoundary, true};
inline constexpr ShadowKind kFenceShadow{L"Aidan varjon hatch", layers::kPassingBoundary, false};

/// Draws shadows into the working database, all of one update with the same settings.
class ShadowDrawing {
 public:
  explicit ShadowDrawing(const ShadowSettings& settings);

  const ShadowSettings& settings() const { return settings_; }
  /// One hatch for each quadrilateral, all in a new group "Varjo<n>". Those that cannot be hatched are passed over.
  void draw(const std::vector<Quad>& quads, const ShadowKind& kind);
  /// Tells that the shadow of an entity follows the chords of its arcs, which are too long to be cut into pieces.
  static void tellOfChords(AcDbObjectId entity);
  /// Tells when nothing could be hatched though there was something to hatch: then it is the settings' fault.
  void tellIfNothingWasHatched() const;

 private:
  void makeShadowLayer();
  void hideBoundaryLayer(const ShadowKind& kind);

  ShadowSettings settings_;
  HatchPattern pattern_;
  NumberedGroups groups_;
  bool isShadowLayerThere_ = false;
  bool isBoundaryLayerHidden_ = false;
  std::size_t wideQuads_ = 0;  // with an area
  std::size_t hatches_ = 0;
};

}  // namespace OrvLib

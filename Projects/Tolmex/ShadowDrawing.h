// Shadows in the drawing.
#pragma once

#include <cstddef>
#include <vector>

#include "OrvLib/ARX/Groups.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/GeomStructs/EntityMakers.h"
#include "Tolmex/Building.h"
#include "Tolmex/Model/ShadowGeometry.h"
#include "Tolmex/ShadowSettings.h"

namespace OrvLib {

struct ShadowKind;

/// Draws shadows into the working database, all of one update with the same settings: each as hatches in a new group
/// "Varjo<n>". What cannot be hatched is passed over.
class ShadowDrawing {
 public:
  explicit ShadowDrawing(const ShadowSettings& settings);
  ShadowDrawing(const ShadowDrawing&) = delete;
  ShadowDrawing& operator=(const ShadowDrawing&) = delete;

  /// The roof fill of a building, whose id the building keeps, and the shadow of its outline as it stands. Nothing when
  /// the document cannot be locked or the building's polyline not be written to. A ridge line that cannot be read any
  /// more counts as none.
  void makeBuildingShadow(Building& building);
  /// The shadow of an open fence, which is closed for it. False for a height of zero and for a fence that cannot be
  /// written to; a fence without a height is left alone.
  bool makeFenceShadow(Opened<AcDbEntity> fence);
  /// Tells when nothing could be hatched though there was something to hatch: then the settings are the cause.
  void tellIfNothingWasHatched() const;

 private:
  void draw(const std::vector<Quad>& quads, const ShadowKind& kind);
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

// What a reference to a block is cut to: the boundary in the SPATIAL_FILTER of its extension dictionary.
#pragma once

#include <optional>

#include "Curves/Curve.h"
#include "Database/DrawingDatabase.h"

namespace host::geometry {

struct BlockClip {
  curves::Chain ring;       // in the block's own coordinates, at least three points
  bool isInverted = false;  // what lies inside is hidden
  /// It is turned on, but has fewer than two usable points, no area or no usable matrix: nothing is cut.
  bool isDamaged = false;
};

/// Nothing for a reference without a boundary and for one whose boundary is turned off. Planes that cut in depth are
/// left out: pictures are plans.
std::optional<BlockClip> readBlockClip(const database::Slot& reference);

}  // namespace host::geometry

// The picture an application left with its entity, for hosts that do not know the entity's kind.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Geometry/EntityShapes.h"
#include "Geometry/TextLayout.h"

namespace host::geometry {

struct ProxyPiece {
  std::vector<Wire> wires;
  std::optional<TextBlock> text;
  std::optional<InfiniteLine> infinite;
  int color = -1;  // colour index 1..255, -1 the entity's
  std::int64_t trueColor = -1;
  std::optional<int> lineweight;  // hundredths of a millimetre; none: the entity's
};

/// Lines, polylines, circles, arcs, polygons, meshes, shells and texts of the metafile in tags 310 of `entity`, in the
/// coordinates of the block it stands in. Empty without one. What is cut off, damaged or of another kind is left out.
std::vector<ProxyPiece> readProxyGraphics(const database::Slot& entity, double deviation, const TextWidth& width);

}  // namespace host::geometry

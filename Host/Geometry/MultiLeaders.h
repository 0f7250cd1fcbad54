// Multileaders as their context data tells them: lines, arrowheads, text.
#pragma once

#include <optional>
#include <vector>

#include "Geometry/EntityShapes.h"
#include "Geometry/TextLayout.h"

namespace host::geometry {

struct MultiLeaderShape {
  std::vector<Wire> wires;
  std::optional<TextBlock> text;
};
MultiLeaderShape readMultiLeader(const database::Slot& entity, double deviation, const TextWidth& width);

}  // namespace host::geometry

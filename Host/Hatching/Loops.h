// Closed loops of straight pieces and arcs: which of them bound an area.
#pragma once

#include <string_view>
#include <vector>

#include "Curves/Bulges.h"

namespace host::hatching {

using curves::Loop;
using curves::LoopVertex;
using curves::Point2;
using curves::Polygon;

enum class LoopFault { None, NotFinite, NotClosed, TooFewPoints, ZeroArea, SelfCrossing };
/// "not closed": what is wrong with the shape; empty for None.
std::string_view textOf(LoopFault fault);

/// Takes a polyline's vertices as a loop: drops consecutive duplicate points, accepts a last point equal to the first
/// in place of the closed flag. `loop` is set on None only.
LoopFault makeLoop(const std::vector<LoopVertex>& vertices, bool closedFlag, Loop& loop);

}  // namespace host::hatching

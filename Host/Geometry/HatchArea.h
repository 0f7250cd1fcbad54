// What a hatch fills: its loops after its island style.
#pragma once

#include <vector>

#include "Hatching/HatchRecord.h"

namespace host::geometry {

/// The loops that bound the filled area under the even-odd rule: all of them (normal), the outermost two levels (outer),
/// or the outermost (ignore).
std::vector<hatching::Polygon> filledLoops(const hatching::HatchRecord& hatch);

}  // namespace host::geometry

// What a hatch fills: its loops after its island style.
#pragma once

#include <vector>

#include "Hatching/HatchRecord.h"

namespace host::geometry {

/// The hatch with its loops flattened; `deviation` of zero or less means one relative to the hatch's size.
hatching::HatchRecord readHatch(const database::Slot& entity, double deviation);

/// The loops that bound the filled area under the even-odd rule: all of them (normal), the outermost two levels
/// (outer), or the outermost (ignore).
std::vector<curves::Polygon> filledLoops(const hatching::HatchRecord& hatch);

}  // namespace host::geometry

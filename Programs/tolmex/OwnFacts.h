// What the window's panel of properties shows of elements beyond what drawings say of them.
#pragma once

#include <vector>

#include "Window/Desktop.h"

namespace tolmex {

/// Of buildings and fences; empty for everything else. The drawing's document must be the current one.
std::vector<host::window::OwnFact> ownFacts(const host::database::Slot& entity);

}  // namespace tolmex

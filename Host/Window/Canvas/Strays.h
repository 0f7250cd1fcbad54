// What lies far away from everything else: single points at the origin of a plan with map coordinates, and the like.
#pragma once

#include <cstddef>

#include "Window/Canvas/Scene.h"

namespace host::window {

struct Strays {
  Box extents;           // of the rest, scene coordinates
  std::size_t left = 0;  // entities left out
};

/// The extents of a scene without what would make it look like a dot: entities are left out when without these few the
/// rest is at most a tenth as wide or high.
Strays withoutStrays(const Scene& scene);

}  // namespace host::window

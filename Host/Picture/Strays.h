// What lies far away from everything else: single points at the origin of a plan with map coordinates, and the like.
#pragma once

#include <cstddef>
#include <vector>

#include "Geometry/EntityPaths.h"

namespace host::picture {

struct Strays {
  geometry::Box extents;  // of the rest
  std::size_t left = 0;   // entities left out
};

/// The extents of entities, given by their boxes, without what would make them look like a dot: entities are left out
/// when without these few the rest is at most a tenth as wide or high. Empty boxes do not count.
Strays withoutStrays(const std::vector<geometry::Box>& boxes);

}  // namespace host::picture

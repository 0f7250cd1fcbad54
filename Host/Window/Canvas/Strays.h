// What lies far away from everything else in a scene.
#pragma once

#include "Picture/Strays.h"
#include "Window/Canvas/Scene.h"

namespace host::window {

using picture::Strays;

/// The extents of a scene without what would make it look like a dot, scene coordinates.
Strays withoutStrays(const Scene& scene);

}  // namespace host::window

#include "Window/Canvas/Strays.h"

namespace host::window {

Strays withoutStrays(const Scene& scene) {
  std::vector<Box> boxes;
  for (const auto& chunk : scene.chunks)
    for (const SceneEntity& entity : chunk->entities)
      if (entity.itemCount > 0 && !entity.isEndless) boxes.push_back(entity.box);
  const Strays found = picture::withoutStrays(boxes);
  return found.left > 0 ? found : Strays{scene.extents, 0};
}

}  // namespace host::window

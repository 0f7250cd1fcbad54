// What a canvas shows of a space: its entities as the painter of pictures lays them out, kept for any zoom.
//
// A Scene never changes, so threads may paint from it while the drawing does. Its coordinates are those of the plan
// about an origin of its own, y down, as doubles: floats lose centimetres at coordinates of millions.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Geometry/EntityPaths.h"
#include "Picture/Recording.h"

namespace host::window {

using geometry::Box;
using geometry::Point;

struct SceneEntity {
  database::Slot* slot = nullptr;
  std::uint32_t firstItem = 0, itemCount = 0;
  std::uint32_t layer = 0;
  bool isPickable = false;  // on a layer that is on and thawed, and not hidden by itself
  bool isLocked = false;
  bool isEndless = false;  // shows beyond its box
  float deviation = 0;     // of its curves, drawing units; 0: nothing would look smoother when laid out more finely
  std::uint64_t fingerprint = 0;  // of its record
  Box box;
};

/// Entities that follow each other in the draw order. Chunks are shared from one scene to the next.
struct SceneChunk {
  picture::Recording recording;
  std::vector<SceneEntity> entities;
  Box box;
  double heaviestMm = 0;  // of its pens
  bool hasEndless = false;
};

struct Scene {
  Point origin;  // plan coordinates
  std::vector<std::shared_ptr<const SceneChunk>> chunks;
  Box extents;  // of what shows, without endless lines
  double heaviestMm = 0;

  Point toScene(Point plan) const { return {plan.x - origin.x, origin.y - plan.y}; }
  Point toPlan(Point scene) const { return {scene.x + origin.x, origin.y - scene.y}; }
  Box toScene(const Box& plan) const {
    return {plan.minX - origin.x, origin.y - plan.maxY, plan.maxX - origin.x, origin.y - plan.minY};
  }
  Box toPlan(const Box& scene) const {
    return {scene.minX + origin.x, origin.y - scene.maxY, scene.maxX + origin.x, origin.y - scene.minY};
  }
  std::size_t entityCount() const;
};

}  // namespace host::window

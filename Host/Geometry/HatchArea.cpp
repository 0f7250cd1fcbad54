#include "Geometry/HatchArea.h"

#include <algorithm>
#include <limits>

#include "Curves/Plane.h"

namespace host::geometry {

using curves::Box;
using curves::Polygon;

hatching::HatchRecord readHatch(const database::Slot& entity, double deviation) {
  constexpr double kRelativeDeviation = 2e-5;
  if (deviation > 0) return hatching::readHatchRecord(entity.tags(), deviation);
  hatching::HatchRecord rough = hatching::readHatchRecord(entity.tags(), std::numeric_limits<double>::max());
  Box box;
  for (const Polygon& loop : rough.loops)
    for (const curves::Point2 p : loop) box.add(p);
  const double size = box.isEmpty() ? 0 : std::max(box.maxX - box.minX, box.maxY - box.minY);
  if (!(size > 0)) return rough;
  return hatching::readHatchRecord(entity.tags(), size * kRelativeDeviation);
}

std::vector<Polygon> filledLoops(const hatching::HatchRecord& hatch) {
  constexpr std::size_t kMostNestedLoops = 2000;  // the nesting is found loop by loop
  enum Style { kNormal = 0, kOuter = 1, kIgnore = 2 };
  const std::size_t count = hatch.loops.size();
  if (hatch.style == kNormal || count < 2 || count > kMostNestedLoops) return hatch.loops;
  std::vector<Box> boxes(count);
  for (std::size_t i = 0; i < count; ++i)
    for (const curves::Point2 p : hatch.loops[i]) boxes[i].add(p);
  std::vector<Polygon> kept;
  const int deepest = hatch.style == kIgnore ? 0 : 1;
  for (std::size_t i = 0; i < count; ++i) {
    if (hatch.loops[i].empty()) continue;
    const curves::Point2 p = hatch.loops[i].front();
    int depth = 0;
    for (std::size_t j = 0; j < count && depth <= deepest; ++j)
      if (j != i && boxes[j].contains(p) && isInsideRing(hatch.loops[j], p)) ++depth;
    if (depth <= deepest) kept.push_back(hatch.loops[i]);
  }
  return kept;
}

}  // namespace host::geometry

// A hatch as its record tells it, for pictures and selections: any writer's hatch, edges of every kind.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "Database/Slot.h"
#include "Hatching/HatchContent.h"
#include "Hatching/Loops.h"
#include "Hatching/PatternFill.h"
#include "gepnt3d.h"

namespace host::hatching {

struct HatchRecord {
  bool solid = false;
  int style = 0;  // 0 normal (even-odd), 1 outer, 2 ignore inner loops
  double elevation = 0;
  AcGeVector3d normal{0, 0, 1};
  std::vector<Polygon> loops;        // in the hatch's plane, arcs, ellipses and splines flattened
  std::vector<int> loopTypes;        // tag 92 of each
  std::vector<PatternLine> pattern;  // empty for solid
  bool gradient = false;
  std::vector<std::uint32_t> gradientColors;  // 0xRRGGBB, first and last
  GradientForm gradientForm;
};

/// Reads counts with suspicion: what is missing or not finite leaves that loop out.
HatchRecord readHatchRecord(database::TagCursor tags, double deviation);

}  // namespace host::hatching

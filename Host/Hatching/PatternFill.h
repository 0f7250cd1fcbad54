// Pattern lines inside an area.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "Hatching/Loops.h"

namespace host::hatching {

/// One family of parallel lines, scaled and rotated: as hatches store it.
struct PatternLine {
  double angleRad = 0;
  double baseX = 0, baseY = 0;
  double offsetX = 0, offsetY = 0;  // from one line of the family to the next, drawing coordinates
  std::vector<double> dashes;       // positive dash, negative gap, 0 dot; empty: unbroken
  bool operator==(const PatternLine&) const = default;
};

struct PatternSegment {
  Point2 from, to;  // equal for a dot
};

enum class FillOutcome { Done, TooDense, Degenerate };

/// Gives the pieces of the pattern inside the area bounded by the polygons (even-odd rule: islands are left out),
/// family by family, line by line. Dashes begin at each line's base point. Stops with TooDense before giving more than
/// `limit` pieces in all, or when ten million stretches gave none; Degenerate when a family has no spacing, dashes
/// without length or numbers that are not finite: it is left out, the others are given. Polygons that are not finite
/// are left out. Works near the area's own origin, so coordinates in the millions keep their precision.
FillOutcome fillPattern(const std::vector<PatternLine>& families, const std::vector<Polygon>& area, std::size_t limit,
                        const std::function<void(const PatternSegment&)>& give);

/// True when `fillPattern` would surely answer Done for one polygon of straight sides: told from its size and number of
/// corners, without filling it.
bool fillsEasily(const std::vector<PatternLine>& families, const Loop& polygon, std::size_t limit);

}  // namespace host::hatching

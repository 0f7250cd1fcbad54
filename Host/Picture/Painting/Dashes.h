// Linetypes along lines.
#pragma once

#include <functional>
#include <vector>

#include "Geometry/EntityPaths.h"

namespace host::picture {

/// Dashes of a linetype along one line. `pattern`: dash lengths positive, gaps negative, 0 a dot, in the units of the
/// points. The pattern is fitted so that the line begins and ends with part of the first dash, as the host aligns
/// linetypes, or with like gaps when a dot comes first; a line shorter than one round of the pattern, or a pattern
/// without length, is drawn unbroken. `give` gets every dash as an open line; a dot as a single point. Parts outside
/// `clip` may be skipped. Gives at most `limit` dashes, then the rest unbroken.
/// `mark`, when given, is called where an element of the pattern ends inside the line: its index, the place, and the
/// direction of the line there as a unit vector.
void drawDashes(const std::vector<geometry::Point>& line, bool closed, const std::vector<double>& pattern,
                const geometry::Box& clip, std::size_t limit,
                const std::function<void(const std::vector<geometry::Point>&)>& give,
                const std::function<void(std::size_t, geometry::Point, geometry::Point)>& mark = {});

}  // namespace host::picture

// Lines and polygons cut to a box.
#pragma once

#include <vector>

#include "Geometry/EntityPaths.h"

namespace host::picture {

/// Cuts the segment to the box (Liang and Barsky); false when nothing is left. Ends inside the box stay as they are.
bool clipSegment(const geometry::Box& box, geometry::Point& a, geometry::Point& b);

/// Cuts a ring to the box (Sutherland and Hodgman) into `out`. Parts that fall apart stay joined along the border of
/// the box, which both fill rules bear. `scratch` is working memory.
void clipPolygon(const geometry::Box& box, const std::vector<geometry::Point>& ring, std::vector<geometry::Point>& out,
                 std::vector<geometry::Point>& scratch);

}  // namespace host::picture

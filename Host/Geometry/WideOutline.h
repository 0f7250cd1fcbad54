// Polylines with width.
#pragma once

#include <vector>

#include "Curves/Curve.h"

namespace host::geometry {

using curves::Chain;

/// Outline of a polyline with width, as closed rings to be filled by the nonzero rule. `widths` holds start and end
/// width of each piece, in pairs. Corners are mitred where the width goes on unchanged, square where it jumps. The
/// points lie in the plane z = const.
std::vector<Chain> wideOutline(const Chain& points, bool closed, const std::vector<double>& widths);

}  // namespace host::geometry

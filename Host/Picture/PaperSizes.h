// Sizes pictures may have.
#pragma once

#include <vector>

#include "Picture/Picture.h"

namespace host::picture {

constexpr int kLargestSidePx = 30000;
constexpr double kMostPixels = 400e6;
constexpr double kMmPerInch = 25.4;

/// Upright, small to large.
const std::vector<PaperSize>& paperSizes();

}  // namespace host::picture

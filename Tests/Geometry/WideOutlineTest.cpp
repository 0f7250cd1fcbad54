#include <gtest/gtest.h>

#include <cmath>

#include "Geometry/WideOutline.h"

namespace host::geometry {
namespace {

double area(const std::vector<Chain>& rings) {
  double twice = 0;
  for (const Chain& ring : rings)
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const AcGePoint3d &a = ring[i], &b = ring[(i + 1) % ring.size()];
      twice += a.x * b.y - a.y * b.x;
    }
  return std::abs(twice) / 2;
}

TEST(WideOutlines, HaveTheRightArea) {
  const Chain corner = {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}};
  EXPECT_NEAR(area(wideOutline(corner, false, {2, 2, 2, 2})), 2 * 20, 1e-9) << "mitred corner";
  EXPECT_NEAR(area(wideOutline({{0, 0, 0}, {10, 0, 0}}, false, {0, 4})), 20, 1e-9) << "taper";
  const Chain square = {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}};
  const auto frame = wideOutline(square, true, {1, 1, 1, 1, 1, 1, 1, 1});
  EXPECT_EQ(frame.size(), 2U);
  EXPECT_NEAR(area({frame[0]}) - area({frame[1]}), -40, 1e-9) << "inner ring first, 9 x 9; outer 11 x 11";
  // Width jumps at the corner, then runs round to the start: two runs, square ends.
  EXPECT_EQ(wideOutline(square, true, {1, 1, 3, 3, 3, 3, 3, 3}).size(), 2U);
  EXPECT_TRUE(wideOutline({{5, 5, 0}, {5, 5, 0}}, true, {1, 1, 1, 1}).empty()) << "no length, no direction";
}

}  // namespace
}  // namespace host::geometry

#include <gtest/gtest.h>

#include <numbers>

#include "Curves/Bulges.h"

namespace host::curves {
namespace {

TEST(Bulges, AreaCountsArcsWithTheirSide) {
  const auto squareWith = [](double bulge) { return area(Loop{{0, 0, bulge}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}); };
  EXPECT_NEAR(squareWith(1), 100 + std::numbers::pi * 12.5, 1e-9);  // counter-clockwise: outwards
  EXPECT_NEAR(squareWith(-1), 100 - std::numbers::pi * 12.5, 1e-9);
  // The series for flat arcs and the closed form meet.
  for (const double bulge : {1e-9, 1e-4, 3.1e-3, 3.2e-3, 1e-2}) {
    const double radius = 10 * (1 + bulge * bulge) / (4 * bulge);
    const double half = 2 * std::atan(bulge);
    const double triangle = 5 * radius * std::cos(half);
    const double expected = radius * radius * half - triangle;
    EXPECT_NEAR(squareWith(bulge) - 100, expected, 1e-9 + 1e-13 * radius * radius) << bulge;
  }
}

TEST(Bulges, FlatteningStaysWithinItsDeviation) {
  for (const double bulge : {0.05, 0.414, 1.0, 2.5, -1.7, 30.0}) {
    const Point2 far{25'500'000, 6'700'000};
    const Loop loop{{far.x, far.y, bulge}, {far.x + 7, far.y + 3, 0}, {far.x + 2, far.y + 9, 0}};
    const Arc arc = arcOf({0, 0}, {7, 3}, bulge);
    for (const double deviation : {1.0, 0.01, 1e-5}) {
      const Polygon polygon = flatten(loop, deviation);
      ASSERT_GE(polygon.size(), 3u);
      // Up to the second corner all is arc: corners on it, middles of chords within the deviation.
      for (std::size_t i = 0; i + 2 < polygon.size(); ++i) {
        const Point2 a = polygon[i] - far;
        const Point2 b = polygon[i + 1] - far;
        EXPECT_NEAR(distance(a, arc.centre), arc.radius, 1e-6);
        EXPECT_LE(arc.radius - distance((a + b) * 0.5, arc.centre), std::max(deviation, arc.radius * 3e-7) + 1e-7);
      }
    }
  }
  EXPECT_GE(flatten(Loop{{0, 0, 1}, {10, 0, 1}}, 1e9).size(), 4u);
  EXPECT_LE(flatten(Loop{{0, 0, 1}, {10, 0, 1}}, 0).size(), 4096u);
}

}  // namespace
}  // namespace host::curves

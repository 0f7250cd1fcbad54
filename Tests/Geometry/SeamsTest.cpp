// Areas with holes as single rings.
#include <gtest/gtest.h>

#include <numbers>
#include <set>

#include "Geometry/Seams.h"

namespace {

using host::curves::Point2;
using host::curves::Polygon;
using host::geometry::HoledArea;
using host::geometry::joinHoles;
using host::geometry::signedArea;
using host::geometry::splitSeams;

Polygon box(double x1, double y1, double x2, double y2) { return {{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}}; }

Point2 towards(double degrees) {
  const double angle = degrees * std::numbers::pi / 180;
  return {std::cos(angle), std::sin(angle)};
}

/// Far from the origin, as on maps: a slanted block with two courtyards, one in the way of the other's seams.
HoledArea block() {
  constexpr double kX = 25496000, kY = 6672000;
  HoledArea area{{{kX, kY}, {kX + 61, kY + 3}, {kX + 58, kY + 55}, {kX - 2, kY + 50}}, {}};
  area.holes.push_back(box(kX + 10, kY + 10, kX + 20, kY + 40));
  area.holes.push_back(box(kX + 30, kY + 12, kX + 45, kY + 30));
  return area;
}

TEST(Seams, RunInTheirDirectionAndBoundTheSameArea) {
  const HoledArea area = block();
  double expected = signedArea(area.outer);
  for (const Polygon& hole : area.holes) expected -= std::abs(signedArea(hole));
  for (int degrees = 0; degrees < 360; degrees += 15) {
    const Point2 direction = towards(degrees);
    const Polygon ring = joinHoles(area, direction);
    EXPECT_NEAR(signedArea(ring), expected, 1e-5) << degrees;
    // Edges that are walked in both directions are seams.
    std::size_t seams = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const Point2 a = ring[i], b = ring[(i + 1) % ring.size()];
      for (std::size_t j = 0; j < ring.size(); ++j) {
        const Point2 c = ring[j], d = ring[(j + 1) % ring.size()];
        if (a.x != d.x || a.y != d.y || b.x != c.x || b.y != c.y) continue;
        ++seams;
        EXPECT_NEAR(host::curves::cross(direction, b - a), 0, 1e-8) << degrees;
      }
    }
    EXPECT_EQ(seams, 4U) << degrees;
  }
}

TEST(Seams, AreTakenOutAgainWhateverTheirDirection) {
  const HoledArea area = block();
  Polygon ring = joinHoles(area, towards(225));
  for (const double degrees : {300.0, 10.0, 90.0, 225.0}) {
    const HoledArea split = splitSeams(ring);
    ASSERT_EQ(split.holes.size(), 2U) << degrees;
    EXPECT_EQ(split.outer.size(), 4U) << degrees;
    for (const Polygon& hole : split.holes) EXPECT_EQ(hole.size(), 4U) << degrees;
    EXPECT_NEAR(signedArea(split.outer), signedArea(area.outer), 1e-5);
    ring = joinHoles(split, towards(degrees));
  }
}

TEST(Seams, OfUsersBeginAtTheCornerThatTheRingBeginsWith) {
  const Polygon ring{{48, 0}, {66, 0}, {66, 16}, {48, 16}, {48, 0}, {53, 5}, {53, 11}, {61, 11}, {61, 5}, {53, 5}};
  const HoledArea area = splitSeams(ring);
  ASSERT_EQ(area.holes.size(), 1U);
  EXPECT_EQ(area.holes[0].size(), 4U);
  EXPECT_EQ(area.outer.size(), 4U);
  EXPECT_EQ(splitSeams(box(0, 0, 1, 1)).holes.size(), 0U);
  EXPECT_EQ(splitSeams({}).outer.size(), 0U);
}

TEST(Seams, EndInCornersWithoutDoublingThem) {
  const Polygon ring = joinHoles({box(0, 0, 30, 30), {box(10, 10, 20, 20)}}, {-1, -1});
  EXPECT_EQ(ring.size(), 10U);  // the corner 0,0 and that of the hole twice
  EXPECT_EQ(splitSeams(ring).outer.size(), 4U);
}

}  // namespace

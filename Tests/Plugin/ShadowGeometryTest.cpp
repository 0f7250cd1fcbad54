// Shadows of buildings and fences as geometry.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <string>

#include "Plugin/Courses.h"
#include "Tolmex/Model/ShadowGeometry.h"

namespace OrvLib {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kPerFloor = 3;

ShadowCaster building(const char* course, double floors, Point3dArray ridge = {}) {
  const PolyArc arcs = courseOf(course);
  ShadowCaster caster;
  caster.outline = arcs.approximated(5);
  caster.firstSegmentIsArc = arcs.firstSegmentIsArc();
  caster.nrFloors = floors;
  caster.floorHeight = 3;
  caster.roofHeight = 2;
  caster.ridge = std::move(ridge);
  return caster;
}

constexpr const char* kSquare = "0,0; 10,0; 10,10; 0,10 closed";
// A gable over edges that do not come before one another's place, and its ridge.
constexpr const char* kGable = "0,0; 16,0; 16,9; 0,9 closed";
const Point3dArray kGableRidge = {{16, 4.5, 0}, {0, 4.5, 0}};

double area(const Quad& quad) {
  double twice = 0;
  for (std::size_t i = 0; i < quad.size(); ++i) {
    const Point3d a = quad[i] - quad[0];
    const Point3d b = quad[(i + 1) % quad.size()] - quad[0];
    twice += a.x * b.y - a.y * b.x;
  }
  return std::abs(twice) / 2;
}

std::vector<double> areas(const std::vector<Quad>& quads) {
  std::vector<double> found;
  for (const Quad& quad : quads) found.push_back(area(quad));
  return found;
}

/// "0,0>3,0>3,10>0,10; …", numbers to the millimetre.
std::string text(const std::vector<Quad>& quads) {
  std::string all;
  for (const Quad& quad : quads) {
    if (!all.empty()) all += "; ";
    for (std::size_t i = 0; i < quad.size(); ++i) {
      char point[64];
      std::snprintf(point, sizeof point, "%s%g,%g", i > 0 ? ">" : "", std::round(quad[i].x * 1000) / 1000 + 0.0,
                    std::round(quad[i].y * 1000) / 1000 + 0.0);
      all += point;
    }
  }
  return all;
}

void expectMoved(const std::vector<Quad>& quads, const std::vector<Quad>& moved, const Point3d& by) {
  ASSERT_EQ(quads.size(), moved.size());
  for (std::size_t i = 0; i < quads.size(); ++i) {
    for (std::size_t k = 0; k < 4; ++k) EXPECT_LT(moved[i][k].distanceTo(quads[i][k] + by), 1e-6) << i << " " << k;
  }
}

TEST(BuildingShadow, EdgesAlongTheDirectionHaveNoArea) {
  EXPECT_EQ(text(buildingShadow(building(kSquare, 2), 0, kPerFloor)),
            "0,0>6,0>16,0>10,0; 10,0>16,0>16,10>10,10; 10,10>16,10>6,10>0,10; 0,10>6,10>6,0>0,0");
  EXPECT_THAT(areas(buildingShadow(building(kSquare, 2), 0, kPerFloor)), testing::ElementsAre(0, 60, 0, 60));
  EXPECT_THAT(areas(buildingShadow(building(kSquare, 0), 1, kPerFloor)), testing::Each(0));
}

TEST(BuildingShadow, EdgesOfAnyLengthCast) {
  EXPECT_EQ(buildingShadow(building("0,0; 10,0; 10,0.00005; 10,10; 0,10 closed", 2), 1, kPerFloor).size(), 5U);
  EXPECT_EQ(buildingShadow(building("0,0; 10,0; 10,0.00000005; 10,10; 0,10 closed", 2), 1, kPerFloor).size(), 4U);
  EXPECT_EQ(fenceShadow(courseOf("0,0; 10,0; 10,0.00005; 20,9"), 2, 1).size(), 3U);
}

TEST(BuildingShadow, OpenOutlinesGetNoClosingEdge) {
  EXPECT_EQ(buildingShadow(building("0,0; 10,0; 10,10", 1), 1, kPerFloor).size(), 2U);
  EXPECT_EQ(buildingShadow(building("0,0; 10,0; 10,10; 0,10; 0,0", 1), 1, kPerFloor).size(), 4U);
  EXPECT_TRUE(buildingShadow({}, 1, kPerFloor).empty());
  ShadowCaster lost;
  lost.ridge = kGableRidge;
  EXPECT_TRUE(buildingShadow(lost, 1, kPerFloor).empty());
}

TEST(BuildingShadow, RidgeEndsReachFurther) {
  // Walls cast 6, the ridge 2 / 3 of a floor more: 8.
  EXPECT_EQ(text(buildingShadow(building(kGable, 2, kGableRidge), 0, kPerFloor)),
            "0,0>6,0>22,0>16,0; 16,0>22,0>24,4.5>16,4.5; 16,4.5>24,4.5>22,9>16,9; 16,9>22,9>6,9>0,9; "
            "0,9>6,9>8,4.5>0,4.5; 0,4.5>8,4.5>6,0>0,0");
}

TEST(BuildingShadow, ALaterRidgeEndIsPutInByTheOutlinesOwnCount) {
  // Both ridge ends meet edges before the closing one: the second lands in front of its edge's first half.
  const auto quads = buildingShadow(building("0,0; 9,0; 9,16; 0,16 closed", 2, {{4.5, 0, 0}, {4.5, 16, 0}}), 0, 3);
  EXPECT_EQ(text(quads),
            "0,0>6,0>12.5,0>4.5,0; 4.5,0>12.5,0>15,0>9,0; 9,0>15,0>15,16>9,16; 9,16>15,16>12.5,16>4.5,16; "
            "4.5,16>12.5,16>15,16>9,16; 9,16>15,16>6,16>0,16; 0,16>6,16>6,0>0,0");
}

TEST(BuildingShadow, RidgeVerticesCountOnlyOnAnEdgeInSpace) {
  const auto flat = text(buildingShadow(building(kGable, 2), 1, kPerFloor));
  for (const Point3d& end : {Point3d{8, 4.5, 0}, {16.001, 4.5, 0}, {16, 4.5, 0.001}, {16, 9.5, 0}}) {
    EXPECT_EQ(text(buildingShadow(building(kGable, 2, {end}), 1, kPerFloor)), flat) << end.x << " " << end.y;
  }
  // Within the tolerance, with any vertices in between, they do.
  EXPECT_EQ(text(buildingShadow(building(kGable, 2, {{16.00009, 4.5, 0}, {8, 4.5, 0}, {0, 4.5, 0}}), 0, 3)),
            text(buildingShadow(building(kGable, 2, kGableRidge), 0, kPerFloor)));
}

TEST(BuildingShadow, WithoutFloorHeightTheRidgeReachesNoFurther) {
  ShadowCaster gable = building(kGable, 2, kGableRidge);
  gable.floorHeight = 0;
  for (const Quad& quad : buildingShadow(gable, 0, kPerFloor)) EXPECT_DOUBLE_EQ(quad[1].x - quad[0].x, 6);
  // One without floors casts its gables only.
  ShadowCaster roof = building(kGable, 0, kGableRidge);
  EXPECT_THAT(areas(buildingShadow(roof, 0, kPerFloor)), testing::ElementsAre(0, 4.5, 4.5, 0, 4.5, 4.5));
}

TEST(BuildingShadow, FollowsTheBuilding) {
  const Point3d grid{27'496'000, 6'713'000, 12};
  for (const bool isRidged : {false, true}) {
    ShadowCaster near = building(kGable, 2, isRidged ? kGableRidge : Point3dArray{});
    const auto quads = buildingShadow(near, 0.7, kPerFloor);
    ShadowCaster far = near;
    far.outline.translate(grid);
    for (Point3d& point : far.ridge) point = point + grid;
    expectMoved(quads, buildingShadow(far, 0.7, kPerFloor), grid);
  }
  const auto two = buildingShadow(building(kSquare, 2), 0.7, kPerFloor);
  for (const auto& twice : {buildingShadow(building(kSquare, 4), 0.7, kPerFloor),
                            buildingShadow(building(kSquare, 2), 0.7, 2 * kPerFloor)}) {
    ASSERT_EQ(twice.size(), two.size());
    for (std::size_t i = 0; i < two.size(); ++i) EXPECT_NEAR(area(twice[i]), 2 * area(two[i]), 1e-9);
  }
  // The other way round, and the other way with a negative length.
  EXPECT_EQ(text(buildingShadow(building(kSquare, -2), 0.7, kPerFloor)),
            text(buildingShadow(building(kSquare, 2), 0.7 + kPi, kPerFloor)));
}

TEST(BuildingShadow, DamagedNumbersCastNothing) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(buildingShadow(building(kSquare, 1e308), 0.7, 1e308).empty());
  EXPECT_TRUE(buildingShadow(building(kSquare, 1), infinity, kPerFloor).empty());
  ShadowCaster hole = building(kSquare, 1);
  hole.outline = PolyLine({{0, 0, 0}, {10, 0, 0}, {10, infinity, 0}, {0, 10, 0}, {0, 0, 0}}, true);
  EXPECT_EQ(buildingShadow(hole, 0, kPerFloor).size(), 2U);
}

TEST(FenceShadow, IsAsLongAsTheFenceIsHigh) {
  EXPECT_EQ(text(fenceShadow(courseOf("0,0; 10,0"), 2, kPi / 2)), "0,0>0,2>10,2>10,0");
  EXPECT_EQ(text(fenceShadow(courseOf("0,0; 10,0"), -2, kPi / 2)), "0,0>0,-2>10,-2>10,0");
  EXPECT_EQ(fenceShadow(courseOf("0,0; 10,0; 10,10 closed"), 2, 1).size(), 3U);
  // A quarter circle of radius 10 in steps of half a unit.
  EXPECT_EQ(fenceShadow(courseOf("10,0 b=0.41421356237309503; 0,10"), 2, 1).size(), 31U);
  EXPECT_TRUE(fenceShadow(PolyArc(), 2, 1).empty());
}

}  // namespace
}  // namespace OrvLib

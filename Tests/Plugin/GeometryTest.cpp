// Polylines, arcs and segments.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

#include "OrvLib/ARX/Contains.h"
#include "OrvLib/GeomEnts/Line.h"
#include "OrvLib/GeomStructs/PolyArc.h"
#include "OrvLib/GeomStructs/PolyLine.h"
#include "Plugin/Courses.h"

namespace OrvLib {
namespace {

constexpr double kPi = std::numbers::pi;

PolyArc randomCourse(std::mt19937& random, bool closed) {
  std::uniform_real_distribution<double> coordinate(-50, 50);
  std::uniform_real_distribution<double> bulge(-3, 3);
  PolyArc course;
  for (int i = 0; i < 6; ++i) {
    const bool isArc = random() % 3 != 0;
    course.append({{coordinate(random), coordinate(random), coordinate(random)}, isArc ? bulge(random) : 0});
  }
  course.setClosed(closed);
  return course;
}

void expectSamePoints(const PolyLine& a, const PolyLine& b, double tolerance) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) {
    EXPECT_LT(a[i].distanceTo(b[i]), tolerance) << "point " << i;
  }
}

TEST(ArcApproximation, StepsByArcLengthAndLeavesMoreThanAStepAtTheEnd) {
  // Half circles about the origin from +X to -X, counter-clockwise.
  const auto anglesOf = [](const char* text) {
    std::vector<double> angles;
    const PolyArc course = courseOf(text);
    for (const Point3d& p : course.approximated(5).points()) {
      EXPECT_NEAR(std::hypot(p.x, p.y), std::abs(course.vertices()[0].point.x), 1e-9) << text;
      angles.push_back(std::atan2(p.y, p.x));
    }
    return angles;
  };
  const std::vector<double> wide = anglesOf("10,0 b=1; -10,0");
  ASSERT_EQ(wide.size(), 7u);
  for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(wide[i], 0.5 * static_cast<double>(i), 1e-12);
  EXPECT_NEAR(std::abs(wide[6]), kPi, 1e-12);
  EXPECT_EQ(anglesOf("2.5,0 b=1; -2.5,0").size(), 2u);
}

TEST(ArcApproximation, GivesEverySegmentItsOwnEndsAndRunsHeightsAlongTheArc) {
  const PolyLine pieces = courseOf("0,0,1; 10,0,3 b=1; 10,20,5 closed").approximated(5);
  ASSERT_EQ(pieces.size(), 2u + 7u + 2u);
  EXPECT_TRUE(pieces.isClosed());
  EXPECT_EQ(pieces[1], pieces[2]);
  EXPECT_EQ(pieces[10], pieces[0]);
  EXPECT_NEAR(pieces[4].z, 3 + 2 * (1.0 / kPi), 1e-12);  // one radian of pi
  // A bulge to the right of the direction is negative, to the left of it positive seen from above.
  EXPECT_GT(pieces[5].x, 10);
}

TEST(ArcApproximation, FollowsAnyCourseBackwardsMovedAndOnItsCircles) {
  std::mt19937 random(20240);
  for (int i = 0; i < 200; ++i) {
    SCOPED_TRACE(i);
    const PolyArc course = randomCourse(random, i % 2 == 0);
    const PolyLine pieces = course.approximated(0.5);
    const PolyLine back = reversed(course).approximated(0.5);
    if (course.isClosed()) {
      // Reversed, a closed course begins with the segment before the last one.
      EXPECT_EQ(back.size(), pieces.size());
    } else {
      const PolyLine forth(Point3dArray(back.points().rbegin(), back.points().rend()));
      expectSamePoints(pieces, forth, 1e-9);
    }
    const Point3d national{25'500'000, 6'700'000, 0};
    PolyArc moved;
    for (const ArcVertex& v : course.vertices()) moved.append({v.point + national, v.bulge});
    moved.setClosed(course.isClosed());
    expectSamePoints(pieces.translated(national), moved.approximated(0.5), 1e-6);
    // A chord is shorter than its arc; only the last piece of an arc may span nearly two steps.
    for (std::size_t k = 0; k + 1 < pieces.size(); ++k) {
      const double plan = std::hypot(pieces[k + 1].x - pieces[k].x, pieces[k + 1].y - pieces[k].y);
      const bool isStraight = std::any_of(course.vertices().begin(), course.vertices().end(),
                                          [&](const ArcVertex& v) { return v.bulge == 0 && v.point == pieces[k]; });
      if (!isStraight) {
        EXPECT_LT(plan, 1.0 + 1e-9) << "piece " << k;
      }
    }
  }
}

TEST(ArcApproximation, StaysSmallWhateverTheNumbersSay) {
  // An arc of a hundred metres would have its pieces, were the others no damage.
  EXPECT_EQ(courseOf("0,0 b=1; 1e15,0 b=-2; 0,90 b=1 closed").approximated(0.5).size(), 6u);
  EXPECT_GT(courseOf("0,0 b=1; 15000,0").approximated(0.5).size(), 47000u);
  for (const char* text : {"0,0 b=1; 0,0", "0,0 b=1e300; 1,0", "0,0 b=1e-5; 1,0", "1e308,0 b=1; -1e308,0"}) {
    EXPECT_EQ(courseOf(text).approximated(0.5).size(), 2u) << text;
  }
  EXPECT_EQ(courseOf("0,0 b=1; 100,0").approximated(0).size(), 2u);
  EXPECT_TRUE(PolyArc().approximated(5).isEmpty());
  EXPECT_TRUE(courseOf("1,2 b=1 closed").approximated(5).isEmpty());
}

TEST(PolyArc, KnowsWhetherItBeginsWithAnArc) {
  EXPECT_TRUE(courseOf("0,0 b=-0.0001; 1,0").firstSegmentIsArc());
  EXPECT_FALSE(courseOf("0,0 b=0.00009; 1,0 b=1; 2,0").firstSegmentIsArc());
  EXPECT_FALSE(PolyArc().firstSegmentIsArc());
}

TEST(PolyLine, RemovesRepeatedPointsInPlanOnly) {
  PolyLine line({{0, 0, 0}, {0, 0, 9}, {5e-8, 0, 0}, {1, 0, 0}, {1, 2e-7, 0}, {0, 0, 0}}, true);
  line.removeDuplicates();
  EXPECT_EQ(line.points(), (Point3dArray{{0, 0, 0}, {1, 0, 0}, {1, 2e-7, 0}, {0, 0, 0}}));
}

TEST(PolyLine, ClosesOnceWithinTheTolerance) {
  PolyLine line({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}});
  line.close();
  line.close();
  EXPECT_EQ(line.size(), 4u);
  PolyLine almost({{0, 0, 0}, {1, 0, 0}, {0.00009, 0, 0}});
  almost.close();
  EXPECT_EQ(almost.size(), 3u);
  PolyLine lifted({{0, 0, 0}, {1, 0, 0}, {0, 0, 0.0001}});
  lifted.close();
  EXPECT_EQ(lifted.size(), 4u);
}

TEST(PolyLine, EditsAndWalksItsSegments) {
  PolyLine line({{0, 0, 0}, {2, 0, 0}});
  line.insertAt(1, {1, 0, 0});
  line.insertAt(99, {3, 0, 0});
  line.removeAt(99);
  EXPECT_EQ(line.points(), (Point3dArray{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}));
  EXPECT_EQ(line.segmentCount(), 3u);
  line.setClosed(true);
  EXPECT_EQ(line.segmentCount(), 4u);
  EXPECT_EQ(line.segment(3).end, line[0]);
}

TEST(Line, RunsFromAnAngleUpAndDown) {
  const Line north = Line::fromAngle({1, 2, 3}, kPi / 2, 5);
  EXPECT_LT(north.end.distanceTo({1, 7, 3}), 1e-12);
  const Line rising = Line::fromAngle({0, 0, 0}, kPi, 2, kPi / 6);
  EXPECT_LT(rising.end.distanceTo({-std::sqrt(3.0), 0, 1}), 1e-12);
  EXPECT_LT(Line::fromAngle({0, 0, 0}, 0, -4).end.distanceTo({-4, 0, 0}), 1e-12);
  EXPECT_NEAR(Line::fromAngle({0, 0, 0}, -2.5, 1).planAngle(), -2.5, 1e-12);
  EXPECT_NEAR((Line{{1, 1, 0}, {1, 1, 8}}.planAngle()), 2 * kPi, 1e-12);
}

TEST(Contains, PointsWithinTheToleranceOfTheSegmentOnly) {
  const Line line{{0, 0, 0}, {10, 0, 0}};
  EXPECT_TRUE(isOnSegment({5, 0.00009, 0}, line));
  EXPECT_FALSE(isOnSegment({5, 0.00011, 0}, line));
  EXPECT_TRUE(isOnSegment({10.00009, 0, 0}, line));
  EXPECT_FALSE(isOnSegment({10.001, 0, 0}, line));
  EXPECT_FALSE(isOnSegment({5, 0, 0.001}, line));
  const Line nothing{{1, 1, 0}, {1, 1, 0}};
  EXPECT_TRUE(isOnSegment({1, 1, 0}, nothing));
  EXPECT_FALSE(isOnSegment({1, 2, 0}, nothing));
}

}  // namespace
}  // namespace OrvLib

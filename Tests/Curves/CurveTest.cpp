#include <gtest/gtest.h>

#include <cmath>

#include "Curves/Curve.h"

namespace host::curves {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr Point2 kFar{25'500'000, 6'700'000};

using PlaneArc = EllipseArc<Point2>;
using PlaneSpline = Spline<Point2>;

/// The farthest that a point of one chain lies from the other.
double reach(const std::vector<Point2>& from, const std::vector<Point2>& to) {
  double farthest = 0;
  for (const Point2 p : from) {
    double nearest = INFINITY;
    for (std::size_t i = 0; i + 1 < to.size(); ++i) nearest = std::min(nearest, distanceToSegment(p, to[i], to[i + 1]));
    farthest = std::max(farthest, nearest);
  }
  return farthest;
}

PlaneSpline through(std::vector<Point2> points, bool isClosed = false) {
  PlaneSpline spline = splineThrough(std::move(points));
  spline.isClosed = isClosed;
  return spline;
}

TEST(Arcs, ChordsStayWithinTheDeviationAndTakeInTheEndsOfTheAxes) {
  for (const Point2 by : {Point2{}, kFar})
    for (const double deviation : {1.0, 0.01, 1e-5}) {
      // An ellipse 6 by 2, turned; distances are measured where it is a unit circle, which shortens none by more
      // than 6.
      const PlaneArc arc{by, {4.8, 3.6}, {-1.2, 1.6}, 0.3, 5.1};
      std::vector<Point2> points;
      flatten(arc, deviation, points);
      const auto unit = [&](Point2 p) {
        const Point2 q = p - by;
        return Point2{(q.x * 0.8 + q.y * 0.6) / 6, (q.y * 0.8 - q.x * 0.6) / 2};
      };
      for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        EXPECT_NEAR(length(unit(points[i])), 1, 1e-8);
        EXPECT_LE((1 - length(unit((points[i] + points[i + 1]) * 0.5))) * 2, deviation + 1e-7);
      }
      EXPECT_LT(distance(points.front(), arc.at(0.3)), 1e-8);
      EXPECT_LT(distance(points.back(), arc.at(5.4)), 1e-8);
      for (const Point2 end : {by + arc.minor, by - arc.major, by - arc.minor})
        EXPECT_TRUE(std::ranges::any_of(points, [&](Point2 p) { return p.x == end.x && p.y == end.y; }));
    }
}

TEST(Arcs, TheOtherWayRoundHasTheSameChords) {
  for (const double start : {-2.0, 0.4, 1e6}) {
    std::vector<Point2> there, back;
    flatten(PlaneArc{{1, 2}, {3, 0}, {0, 3}, start, 4}, 0.01, there);
    flatten(PlaneArc{{1, 2}, {3, 0}, {0, 3}, start + 4, -4}, 0.01, back);
    ASSERT_EQ(there.size(), back.size());
    for (std::size_t i = 0; i < there.size(); ++i)
      EXPECT_LT(distance(there[i], back[back.size() - 1 - i]), 1e-8) << start;
  }
  std::vector<Point2> whole;
  flatten(PlaneArc{{}, {1, 0}, {0, 1}, 0, -2 * kPi}, 1e9, whole);
  EXPECT_EQ(whole.size(), 8U) << "the first point is not repeated";
}

TEST(Arcs, WhatIsNoArcGivesNothing) {
  std::vector<Point2> points;
  flatten(PlaneArc{{}, {1, 0}, {0, 1}, 0, 0}, 0.1, points);
  flatten(PlaneArc{{}, {1, 0}, {0, 1}, NAN, 1}, 0.1, points);
  flatten(PlaneArc{{}, {INFINITY, 0}, {0, 1}, 0, 1}, 0.1, points);
  EXPECT_TRUE(points.empty());
}

TEST(Splines, RationalOnesMakeAnExactCircle) {
  // Nine control points of degree 2, weights 1 and the cosine of 45 degrees; in space, far from the origin, on a slope.
  const double w = std::numbers::sqrt2 / 2;
  Spline<AcGePoint3d> circle;
  circle.degree = 2;
  circle.knots = {0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4};
  for (const Point2 p : {Point2{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}, {1, 0}})
    circle.controls.push_back({kFar.x + p.x, kFar.y + p.y * 0.8, p.y * 0.6});
  circle.weights = {1, w, 1, w, 1, w, 1, w, 1};
  const Chain points = flatten(circle, 1e-4);
  ASSERT_GT(points.size(), 20U);
  for (const AcGePoint3d& p : points) ASSERT_NEAR(p.distanceTo({kFar.x, kFar.y, 0}), 1, 1e-7);
}

TEST(Splines, KnotsAndWeightsThatDoNotFitAreDoneWithout) {
  PlaneSpline plain;
  plain.controls = {{0, 0}, {2, 7}, {5, -3}, {9, 8}, {12, 0}};
  plain.knots = {0, 0, 0, 0, 1, 2, 2, 2, 2};
  const std::vector<Point2> expected = flatten(plain, 1e-2);
  ASSERT_GT(expected.size(), 10U);
  const auto same = [&](const std::vector<double>& knots, const std::vector<double>& weights) {
    PlaneSpline other = plain;
    other.knots = knots;
    other.weights = weights;
    const std::vector<Point2> points = flatten(other, 1e-2);
    return !points.empty() && reach(points, expected) == 0 && reach(expected, points) == 0;
  };
  for (const std::vector<double>& knots : std::vector<std::vector<double>>{
           {}, {0, 1, 2}, {0, 0, 0, 0, 3, 2, 2, 2, 2}, {0, 0, 0, 0, NAN, 2, 2, 2, 2}, std::vector<double>(9, 1)})
    EXPECT_TRUE(same(knots, {}));
  for (const std::vector<double>& weights :
       std::vector<std::vector<double>>{{1, 2}, {1, 1, NAN, 1, 1}, {1, 2, 0, 2, 1}, {1, 2, -1, 2, 1}})
    EXPECT_TRUE(same(plain.knots, weights));
  EXPECT_FALSE(same(plain.knots, {1, 2, 1, 2, 1}));
  plain.controls.resize(3);
  EXPECT_TRUE(flatten(plain, 1e-2).empty()) << "too few for the degree";
  plain.controls = {{0, 0}, {2, 7}, {NAN, -3}, {9, 8}};
  EXPECT_TRUE(flatten(plain, 1e-2).empty());
}

TEST(FitPoints, EndsWithoutTangentsAreNatural) {
  // Three points a chord apart each: the cubic is y = h (3 s - s^3) / 2 up to the middle one, s = x / 5.
  for (const Point2 by : {Point2{}, kFar})
    for (const Point2 p : flatten(through({by, by + Point2{5, 4}, by + Point2{10, 0}}), 1e-3)) {
      const double x = p.x - by.x, s = std::min(x, 10 - x) / 5;
      EXPECT_NEAR(p.y - by.y, 4 * (3 * s - s * s * s) / 2, 1e-7) << x;
    }
  // Repeated points add nothing; two points make a line.
  EXPECT_LT(reach(flatten(through({{0, 0}, {5, 4}, {5, 4}, {10, 0}}), 1e-3),
                  flatten(through({{0, 0}, {5, 4}, {10, 0}}), 1e-3)),
            1e-12);
  EXPECT_EQ(flatten(through({{0, 0}, {5, 4}}), 1e-3).size(), 2U);
  EXPECT_TRUE(flatten(through({{0, 0}}), 1e-3).empty());
  EXPECT_TRUE(flatten(through({{0, 0}, {5, NAN}, {10, 0}}), 1e-3).empty());
}

TEST(FitPoints, CurvesRunAlongTheirTangentsAtUnitSpeed) {
  // Straight up and straight down over 10: x = 10 (3 t^2 - 2 t^3), y = 10 t (1 - t).
  for (const double size : {1.0, 0.01, 300.0}) {
    PlaneSpline arch = through({{0, 0}, {10, 0}});
    arch.startTangent = {0, size};
    arch.endTangent = {0, -size};
    const std::vector<Point2> points = flatten(arch, 1e-3);
    ASSERT_GT(points.size(), 10U);
    for (const Point2 p : points) {
      const double t = p.x < 5 ? (1 - std::sqrt(std::max(1 - 0.4 * p.y, 0.0))) / 2
                               : (1 + std::sqrt(std::max(1 - 0.4 * p.y, 0.0))) / 2;
      EXPECT_NEAR(p.x, 10 * (3 * t * t - 2 * t * t * t), 1e-6) << size;
    }
  }
}

TEST(FitPoints, ClosedOnesHaveNoPlaceWhereTheyBegin) {
  std::vector<Point2> round = {{0, 0}, {7, -2}, {12, 3}, {9, 6}, {2, 8}};
  const std::vector<Point2> before = flatten(through(round, true), 1e-3);
  EXPECT_LT(distance(before.front(), before.back()), 1e-12);
  for (std::size_t i = 1; i < round.size(); ++i) {
    std::rotate(round.begin(), round.begin() + 1, round.end());
    const std::vector<Point2> after = flatten(through(round, true), 1e-3);
    EXPECT_LT(reach(before, after), 3e-3);
    EXPECT_LT(reach(after, before), 3e-3);
  }
  round.push_back(round.front());
  EXPECT_LT(reach(flatten(through(round, true), 1e-3), before), 3e-3) << "the first point given again at the end";
}

TEST(FitPoints, ClosedOnesLeaveAndArriveAsTheirTangentsSay) {
  PlaneSpline drop = through({{0, 0}, {10, 4}, {10, -4}}, true);
  drop.startTangent = {1, 1};
  drop.endTangent = {-1, 1};
  const std::vector<Point2> points = flatten(drop, 1e-6);
  const Point2 out = points[1] - points[0], in = points.back() - points[points.size() - 2];
  EXPECT_NEAR(std::atan2(out.y, out.x), kPi / 4, 0.02);
  EXPECT_NEAR(std::atan2(in.y, in.x), 3 * kPi / 4, 0.02);
  EXPECT_LT(distance(points.front(), points.back()), 1e-12);
}

}  // namespace
}  // namespace host::curves

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>

#include "Hatching/PatternFill.h"
#include "Hatching/Patterns.h"

namespace host::hatching {
namespace {

constexpr double kPi = std::numbers::pi;

using Segments = std::vector<PatternSegment>;

PatternLine family(double angle, double along, double spacing, std::vector<double> dashes = {}, Point2 base = {}) {
  // Not by way of a pattern's scaling, which leaves out what is no number.
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  return {angle, base.x, base.y, along * c - spacing * s, along * s + spacing * c, std::move(dashes)};
}

Segments filled(const std::vector<PatternLine>& families, const std::vector<Polygon>& area) {
  Segments segments;
  EXPECT_EQ(fillPattern(families, area, 2'000'000, [&](const PatternSegment& s) { segments.push_back(s); }),
            FillOutcome::Done);
  return segments;
}

double totalLength(const Segments& segments) {
  double sum = 0;
  for (const PatternSegment& s : segments) sum += distance(s.from, s.to);
  return sum;
}

double areaOf(const Polygon& polygon) {
  double twice = 0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    twice += cross(polygon[i] - polygon[0], polygon[(i + 1) % polygon.size()] - polygon[0]);
  }
  return std::abs(twice / 2);
}

Polygon moved(Polygon polygon, Point2 by) {
  for (Point2& p : polygon) p = p + by;
  return polygon;
}

/// How far a point is outside a polygon (0 inside), by the winding of its corners.
double outside(Point2 p, const Polygon& polygon) {
  bool inside = false;
  double nearest = INFINITY;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const Point2 a = polygon[i] - p;
    const Point2 b = polygon[(i + 1) % polygon.size()] - p;
    if ((a.y > 0) != (b.y > 0) && a.x + (b.x - a.x) * (-a.y / (b.y - a.y)) > 0) inside = !inside;
    const Point2 side = b - a;
    const double t = std::clamp(dot(a * -1, side) / std::max(dot(side, side), 1e-300), 0.0, 1.0);
    nearest = std::min(nearest, length(a + side * t));
  }
  return inside ? 0 : nearest;
}

/// A star-shaped outline with corners at random distances: concave, never crossing itself.
Polygon randomOutline(std::mt19937& random, int corners) {
  std::uniform_real_distribution<double> radius(2, 20);
  Polygon polygon;
  for (int i = 0; i < corners; ++i) {
    const double a = 2 * kPi * i / corners;
    const double r = radius(random);
    polygon.push_back({r * std::cos(a), r * std::sin(a)});
  }
  return polygon;
}

const Polygon kSquare{{0, 0}, {10, 0}, {10, 10}, {0, 10}};

TEST(PatternFill, LinesStayInsideAndAddUpToTheArea) {
  std::mt19937 random(7);
  for (int round = 0; round < 40; ++round) {
    const Polygon outline = moved(randomOutline(random, 5 + round), {27'496'000.25, 6'713'000.75});
    const double angle = round * 0.37 - 5;
    const double spacing = 0.05;
    const Segments segments = filled({family(angle, 0, spacing)}, {outline});
    for (const PatternSegment& s : segments) {
      EXPECT_LT(std::abs(cross(s.to - s.from, {std::cos(angle), std::sin(angle)})), 1e-7);
      for (const double t : {0.0, 0.5, 1.0}) EXPECT_LT(outside(s.from + (s.to - s.from) * t, outline), 1e-7);
    }
    EXPECT_NEAR(totalLength(segments) * spacing, areaOf(outline), 0.01 * areaOf(outline)) << "round " << round;
  }
}

TEST(PatternFill, IslandsAreLeftOutAndLakesInThemFilled) {
  const auto square = [](double half) { return Polygon{{-half, -half}, {half, -half}, {half, half}, {-half, half}}; };
  const std::vector<Polygon> area{square(10), square(6), square(2), moved(square(1), {20, 0})};
  const Segments segments = filled({family(0.3, 0, 0.01)}, area);
  EXPECT_NEAR(totalLength(segments) * 0.01, 400 - 144 + 16 + 4, 1);
  for (const PatternSegment& s : segments) {
    const Point2 middle = (s.from + s.to) * 0.5;
    EXPECT_FALSE(outside(middle, area[1]) == 0 && outside(middle, area[2]) > 0);
  }
}

TEST(PatternFill, DashesStartAtTheBasePointOfTheirLine) {
  // Line k begins 0.7 k further along; dashes of 2 with gaps of 1 from there.
  const Segments segments = filled({family(0, 0.7, 1, {2, -1}, {0.25, 0.5})}, {kSquare});
  ASSERT_FALSE(segments.empty());
  for (const PatternSegment& s : segments) {
    const double line = std::round(s.from.y - 0.5);
    EXPECT_NEAR(s.from.y, line + 0.5, 1e-12);
    const double start = std::fmod(s.from.x - 0.25 - 0.7 * line + 300, 3);
    EXPECT_LE(distance(s.from, s.to), 2 + 1e-9);
    if (s.from.x > 0) {
      EXPECT_NEAR(std::remainder(start, 3), 0, 1e-9);
    } else {
      EXPECT_LT(start, 2);
    }
  }
  EXPECT_NEAR(totalLength(segments), 100.0 * 2 / 3, 4);

  // Unlike dashes: 3 on, 1 off, dot, 1 off.
  const Segments mixed = filled({family(0, 0, 1, {3, -1, 0, -1}, {0, 0.5})}, {kSquare});
  const auto isDot = [](const PatternSegment& s) { return s.from.x == s.to.x && s.from.y == s.to.y; };
  EXPECT_EQ(std::count_if(mixed.begin(), mixed.end(), isDot), 20);  // at x 4 and 9 of ten lines
  EXPECT_NEAR(totalLength(mixed), 60, 1e-9);
}

TEST(PatternFill, LinesThroughCornersAreCountedOnce) {
  // Sides along the lines and corners on them: each row of unit squares has exactly one line.
  const Polygon stairs{{0, 0}, {6, 0}, {6, 2}, {4, 2}, {4, 4}, {7, 4}, {7, 6}, {3, 6}, {3, 3}, {1, 3}, {1, 6}, {0, 6}};
  for (const double angle : {0.0, kPi}) {
    EXPECT_NEAR(totalLength(filled({family(angle, 0, 1)}, {stairs})), areaOf(stairs), 1e-9);
  }
  const Polygon diamond{{5, 0}, {10, 5}, {5, 10}, {0, 5}};
  EXPECT_NEAR(totalLength(filled({family(0, 0, 1)}, {diamond})), areaOf(diamond), 1e-9);
}

TEST(PatternFill, OffsetBackwardsIsTheSamePattern) {
  PatternLine forward = family(0.8, 0.3, 0.7, {1, -0.4}, {3, 1});
  PatternLine backward = forward;
  backward.offsetX = -forward.offsetX;
  backward.offsetY = -forward.offsetY;
  const Segments one = filled({forward}, {kSquare});
  const Segments other = filled({backward}, {kSquare});
  ASSERT_EQ(one.size(), other.size());
  for (std::size_t i = 0; i < one.size(); ++i) EXPECT_LT(distance(one[i].from, other[i].from), 1e-9);
}

TEST(PatternFill, DotsHaveNoLengthAndTheirOwnDensity) {
  const Segments segments = filled({family(0.6, 0.5, 1, {0, -1})}, {Polygon{{0, 0}, {100, 0}, {100, 100}, {0, 100}}});
  EXPECT_EQ(totalLength(segments), 0);
  EXPECT_NEAR(static_cast<double>(segments.size()), 10'000, 300);
}

TEST(PatternFill, MovingAreaAndPatternMovesTheResult) {
  std::mt19937 random(3);
  const Polygon outline = randomOutline(random, 17);
  const std::vector<PatternLine> here{family(0.4, 0.3, 0.7, {0.5, -0.2, 0, -0.2}, {1, 2}), family(2, 0, 1)};
  const Point2 by{25'500'000, 6'700'000};
  std::vector<PatternLine> there = here;
  for (PatternLine& line : there) {
    line.baseX += by.x;
    line.baseY += by.y;
  }
  const Segments near = filled(here, {outline});
  const Segments far = filled(there, {moved(outline, by)});
  ASSERT_EQ(near.size(), far.size());
  for (std::size_t i = 0; i < near.size(); ++i) {
    EXPECT_LT(distance(near[i].from + by, far[i].from), 2e-7);
    EXPECT_LT(distance(near[i].to + by, far[i].to), 2e-7);
  }
}

TEST(PatternFill, NeighboursFarFromTheBasePointShareTheirLines) {
  // Two areas side by side, one long line of dashes through both.
  const Point2 corner{27'496'000, 6'713'000};
  const std::vector<PatternLine> lines{family(0.1, 0.2, 0.5, {0.3, -0.1})};
  const auto strip = [&](double x0, double x1) { return moved(Polygon{{x0, 0}, {x1, 0}, {x1, 10}, {x0, 10}}, corner); };
  const double split = totalLength(filled(lines, {strip(0, 7)})) + totalLength(filled(lines, {strip(7, 31)}));
  EXPECT_NEAR(split, totalLength(filled(lines, {strip(0, 31)})), 1e-4);
}

TEST(PatternFill, LimitStopsBeforeItIsPassed) {
  std::size_t given = 0;
  const auto count = [&](const PatternSegment&) { ++given; };
  const auto fill = [&](const PatternLine& line, std::size_t limit, Polygon area = kSquare) {
    given = 0;
    return fillPattern({line}, {std::move(area)}, limit, count);
  };
  EXPECT_EQ(fill(family(0, 0, 1, {}, {0, 0.5}), 10), FillOutcome::Done);
  EXPECT_EQ(given, 10u);
  EXPECT_EQ(fill(family(0, 0, 1, {}, {0, 0.5}), 9), FillOutcome::TooDense);
  EXPECT_EQ(given, 9u);
  EXPECT_EQ(fill(family(0, 0, 1, {0.001, -0.001}), 1000), FillOutcome::TooDense);
  EXPECT_LE(given, 1000u);
  for (const double tiny : {1e-6, 1e-12, 1e-300}) {
    EXPECT_EQ(fill(family(1, 0, tiny), 1'000'000), tiny < 1e-20 ? FillOutcome::Degenerate : FillOutcome::TooDense);
    EXPECT_NE(fill(family(1, 0, 1, {tiny, -tiny}), 1000), FillOutcome::Done);
    EXPECT_NE(fill(family(1, 0, 1, {0, -tiny}), 1000), FillOutcome::Done);
  }
  EXPECT_NE(fill(family(1, 0, 1), 1'000'000, {{0, 0}, {1e300, 0}, {1e300, 1e300}}), FillOutcome::Done);
}

TEST(PatternFill, FamiliesWithoutSenseAreLeftOut) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  std::vector<PatternLine> bad{family(0, 0, 0),
                               family(0.5, 3, 0),
                               family(nan, 0, 1),
                               family(0, 0, nan),
                               family(0, 0, INFINITY),
                               family(0, 0, 1, {nan, -1}),
                               family(0, 0, 1, {0}),
                               family(0, 0, 1, {0, 0}),
                               family(0, 0, 1, {1e308, -1e308}),
                               family(0, 0, 1, {}, {nan, 0}),
                               family(0, 0, 1, {}, {0, 1e300})};
  for (std::size_t i = 0; i < bad.size(); ++i) {
    Segments segments;
    EXPECT_EQ(fillPattern({bad[i], family(0, 0, 1, {}, {0, 0.5})}, {kSquare}, 1000,
                          [&](const PatternSegment& s) { segments.push_back(s); }),
              FillOutcome::Degenerate)
        << "family " << i;
    EXPECT_EQ(segments.size(), 10u) << "family " << i;
  }
  EXPECT_TRUE(filled({family(0, 0, 1, {-1, -2})}, {kSquare}).empty());
  EXPECT_TRUE(filled({family(0, 0, 1)}, {}).empty());
  EXPECT_TRUE(filled({family(0, 0, 1)}, {{{0, 0}, {5, 5}}, {{0, 0}, {nan, 5}, {5, 0}}}).empty());
}

}  // namespace
}  // namespace host::hatching

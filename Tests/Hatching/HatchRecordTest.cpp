#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "Hatching/HatchContent.h"
#include "Hatching/HatchRecord.h"

namespace host::hatching {
namespace {

constexpr double kPi = std::numbers::pi;

/// Tags as "code value" words: a short form of the two-line one.
std::string tags(const std::string& words) {
  std::string text = words;
  for (char& c : text) {
    if (c == ' ') c = '\n';
  }
  return text + '\n';
}

std::string hatchTags(const std::string& loops, const std::string& rest = "75 0 76 1 98 1 10 0 20 0") {
  return tags(
      "0 HATCH 5 1F 330 1A 100 AcDbEntity 8 0 92 7 310 AB 100 AcDbHatch 10 0.0 20 0.0 30 2.5 210 0 220 0 230 -1 "
      "2 X 70 1 71 0 91 1 " +
      loops + " " + rest);
}

HatchRecord readLoops(const std::string& loops, double deviation = 1e-4) {
  const std::string text = hatchTags(loops);
  return readHatchRecord(database::TagCursor(text), deviation);
}

double areaOf(const Polygon& polygon) {
  double twice = 0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    twice += cross(polygon[i] - polygon[0], polygon[(i + 1) % polygon.size()] - polygon[0]);
  }
  return twice / 2;
}

/// Area of the only loop, without its sign.
double onlyArea(const std::string& loops) {
  const HatchRecord record = readLoops(loops);
  EXPECT_EQ(record.loops.size(), 1u);
  return record.loops.empty() ? 0 : std::abs(areaOf(record.loops[0]));
}

TEST(HatchRecords, PolylineLoopWithArcs) {
  const HatchRecord record = readLoops("92 3 72 1 73 1 93 2 10 -5 20 0 42 1.0 10 5 20 0 42 1.0 97 0");
  ASSERT_EQ(record.loops.size(), 1u);
  EXPECT_NEAR(areaOf(record.loops[0]), kPi * 25, 0.01);
  EXPECT_EQ(record.loopTypes, std::vector<int>{3});
  EXPECT_TRUE(record.solid);
  EXPECT_EQ(record.elevation, 2.5);
  EXPECT_EQ(record.normal.z, -1);
}

TEST(HatchRecords, ClockwiseEdgesMeasureTheirAnglesClockwise) {
  const std::string lines = "72 1 10 5 20 0 11 0 21 0 72 1 10 0 20 0 11 2.5 21 4.3301270189 97 0";
  for (const char* arc :
       {"72 2 10 0 20 0 40 5 50 300 51 360 73 0 ", "72 3 10 0 20 0 11 5 21 0 40 1 50 300 51 360 73 0 "}) {
    const HatchRecord record = readLoops("92 1 93 3 " + (arc + lines));
    ASSERT_EQ(record.loops.size(), 1u);
    EXPECT_NEAR(areaOf(record.loops[0]), -kPi * 25 / 6, 0.01);
    for (const Point2 p : record.loops[0]) EXPECT_TRUE(p.x > -1e-6 && p.y > -1e-6) << p.x << ", " << p.y;
  }
}

TEST(HatchRecords, AnglesOfAnEllipseAreReadSoThatTheEdgesJoin) {
  // A quarter-and-more of an ellipse 5 x 2 from parameter 0 to 135 degrees, closed over the centre.
  const double t = kPi * 3 / 4;
  const double x = 5 * std::cos(t);
  const double y = 2 * std::sin(t);
  const std::string lines =
      "72 1 10 " + std::to_string(x) + " 20 " + std::to_string(y) + " 11 0 21 0 72 1 10 0 20 0 11 5 21 0 97 0";
  const std::string ellipse = "92 1 93 3 72 3 10 0 20 0 11 5 21 0 40 0.4 50 0 51 ";
  const double sector = 5 * 2 * t / 2;
  EXPECT_NEAR(onlyArea(ellipse + "135 73 1 " + lines), sector, 0.01);
  const double direction = std::atan2(y, x) * 180 / kPi;
  EXPECT_NEAR(onlyArea(ellipse + std::to_string(direction) + " 73 1 " + lines), sector, 0.01);
}

TEST(HatchRecords, EdgesThatRunAgainstTheirNeighboursAreTurned) {
  EXPECT_NEAR(onlyArea("92 1 93 4 72 1 10 10 20 0 11 0 21 0 72 1 10 10 20 0 11 10 21 10 72 1 10 0 20 10 11 10 21 10 "
                       "72 1 10 0 20 10 11 0 21 0 97 0"),
              100, 1e-9);
}

TEST(HatchRecords, Splines) {
  const std::string closing = "72 1 10 10 20 0 11 0 21 0 ";
  // A parabola 4 high over 10: two thirds of the rectangle. Counts of sources and fit points share a group.
  const std::string parabola =
      "72 4 94 2 73 0 74 0 95 6 96 3 40 0 40 0 40 0 40 1 40 1 40 1 10 0 20 0 10 5 20 8 10 10 20 0 ";
  EXPECT_NEAR(onlyArea("92 1 93 2 " + parabola + "97 0 " + closing + "97 0"), 80.0 / 3, 0.01);
  EXPECT_NEAR(onlyArea("92 1 93 2 " + closing + parabola + "97 1 330 8E"), 80.0 / 3, 0.01);
  EXPECT_NEAR(onlyArea("92 1 93 2 " + closing + parabola + "97 2 11 0 21 0 11 10 21 0 12 1 22 1 13 1 23 -1 97 0"),
              80.0 / 3, 0.01);
}

TEST(HatchRecords, DamagedLoopsAreLeftOutAlone) {
  const std::string good = " 92 2 72 0 73 1 93 3 10 0 20 0 10 4 20 0 10 0 20 4 97 0";
  for (const char* bad :
       {"92 2 72 0 73 1 93 4000000000 10 0 20 0 10 4 20 0 10 0 20 4 97 0",  // promises more than there is
        "92 2 72 0 73 1 93 3 10 0 20 0 10 nan 20 0 10 0 20 4 97 0",         // no number
        "92 2 72 0 73 1 93 3 10 0 20 0 10 1e999 20 0 10 0 20 4 97 0",       //
        "92 2 72 0 73 1 93 3 10 0 20 0 10 4 10 0 20 4 97 0",                // half a point
        "92 2 72 0 73 1 93 2 10 0 20 0 10 4 20 0 97 0",                     // no area
        "92 2 72 0 73 1 93 -3 97 0",                                        //
        "92 1 93 2 72 1 10 0 20 0 11 4 21 0 97 0",                          // an edge is missing
        "92 1 93 1 72 9 10 0 20 0 11 4 21 0 97 0",                          // of no kind
        "92 1 93 1 72 4 94 99999999 95 0 96 1 10 0 20 0 97 0",              //
        "92 1 93 1 72 4 94 1 73 0 40 0 40 0 40 1 40 2 40 2 10 0 20 0 10 4 20 nan 10 0 20 4 97 0"}) {
    const HatchRecord record = readLoops(bad + good);
    ASSERT_EQ(record.loops.size(), 1u) << bad;
    EXPECT_NEAR(areaOf(record.loops[0]), 8, 1e-9) << bad;
  }
}

TEST(HatchRecords, PatternAndGradient) {
  const std::string loop = "92 2 72 0 73 1 93 3 10 0 20 0 10 4 20 0 10 0 20 4 97 0";
  std::string text = hatchTags(loop,
                               "75 1 76 1 52 30 41 2 77 0 78 2 53 30 43 1 44 2 45 -1.5 46 0.5 79 2 49 3 49 -1 "
                               "53 120 43 0 44 0 45 0 46 1 79 0 47 0.1 98 1 10 7 20 8");
  text.replace(text.find("70\n1\n"), 5, "70\n0\n");
  const HatchRecord record = readHatchRecord(database::TagCursor(text), 0.1);
  EXPECT_EQ(record.style, 1);
  ASSERT_EQ(record.pattern.size(), 2u);
  EXPECT_NEAR(record.pattern[0].angleRad, kPi / 6, 1e-12);
  EXPECT_EQ(record.pattern[0].offsetX, -1.5);
  EXPECT_EQ(record.pattern[0].dashes, (std::vector<double>{3, -1}));
  EXPECT_TRUE(record.pattern[1].dashes.empty());

  const std::string gradient = hatchTags(loop,
                                         "75 0 76 1 98 1 10 0 20 0 450 1 451 0 460 0 461 0 452 0 462 0 453 2 "
                                         "463 0 63 5 421 255 463 1 63 2 421 16776960 470 LINEAR");
  const HatchRecord shaded = readHatchRecord(database::TagCursor(gradient), 0.1);
  EXPECT_TRUE(shaded.gradient);
  EXPECT_EQ(shaded.gradientColors, (std::vector<std::uint32_t>{0x0000FF, 0xFFFF00}));
}

TEST(HatchRecords, TagsOfForeignLoopsAreKeptWithoutTheirSources) {
  const std::string edges =
      "93 2 72 4 94 1 73 0 74 0 95 4 96 2 40 0 40 0 40 1 40 1 10 0 20 0 10 4 20 4 97 0 "
      "72 1 10 4 20 4 11 0 21 0";
  const std::string text = hatchTags("92 5 " + edges + " 97 2 330 8E 330 8F 92 16 " + edges + " 97 0",
                                     "75 0 76 1 98 1 10 0 20 0 450 0 451 0");
  const HatchContent content = parseHatch(database::TagCursor(text), RawLoops::Keep);
  ASSERT_EQ(content.loops.size(), 2u);
  EXPECT_EQ(content.loops[0].raw, tags(edges));
  EXPECT_EQ(content.loops[0].sources, (std::vector<std::uint64_t>{0x8E, 0x8F}));
  EXPECT_EQ(content.loops[1].raw, tags(edges));
  EXPECT_TRUE(content.loops[1].sources.empty());
  EXPECT_EQ(content.tail, tags("450 0 451 0"));
}

}  // namespace
}  // namespace host::hatching

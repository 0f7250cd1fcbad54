#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "Geometry/EntityPaths.h"
#include "Geometry/SmallDrawing.h"

namespace host::geometry {

using tests::SmallDatabase;
using tests::SmallDrawing;

void PrintTo(const Box& b, std::ostream* out) {
  *out << "(" << b.minX << ", " << b.minY << ") - (" << b.maxX << ", " << b.maxY << ")";
}

namespace {

void expectBox(const Box& box, const Box& expected, double tolerance, const std::string& what) {
  const bool isNear =
      std::abs(box.minX - expected.minX) <= tolerance && std::abs(box.minY - expected.minY) <= tolerance &&
      std::abs(box.maxX - expected.maxX) <= tolerance && std::abs(box.maxY - expected.maxY) <= tolerance;
  EXPECT_TRUE(isNear) << what << ": " << testing::PrintToString(box) << ", expected "
                      << testing::PrintToString(expected);
}

/// Blocks the entities of the table refer to: "flag" is a triangle left of its base point (1, 0); "nest" holds two of
/// it.
SmallDrawing withBlocks() {
  SmallDrawing drawing;
  drawing.block("flag", "10 1|20 0").entity("LWPOLYLINE", "90 3|70 1|10 0|20 0|10 1|20 0|10 1|20 2");
  drawing.block("nest").entity("INSERT", "2 flag|10 0|20 0").entity("INSERT", "2 flag|10 10|20 0|41 -2");
  drawing.block("*D1").entity("LINE", "10 3|20 3|11 5|21 4");
  return drawing.model();
}

struct Row {
  const char* type;
  const char* tags;
  Box box;
};

// Boxes worked out by hand.
const Row kRows[] = {
    {"LINE", "10 1|20 2|30 9|11 4|21 -3|31 0", {1, -3, 4, 2}},
    {"POINT", "10 7|20 8", {7, 8, 7, 8}},
    {"CIRCLE", "10 5|20 5|40 2", {3, 3, 7, 7}},
    {"CIRCLE", "10 5|20 5|40 2|210 0|220 0|230 -1", {-7, 3, -3, 7}},
    {"ARC", "10 0|20 0|40 2|50 -30|51 100", {2 * std::cos(100 * std::numbers::pi / 180), -1, 2, 2}},
    {"ARC",
     "10 0|20 0|40 2|50 350|51 370|210 0|220 0|230 -1",
     {-2, -2 * std::sin(std::numbers::pi / 18), -2 * std::cos(std::numbers::pi / 18),
      2 * std::sin(std::numbers::pi / 18)}},
    {"ELLIPSE", "10 1|20 1|11 0|21 4|40 0.5|41 0|42 6.283185307179586", {-1, -3, 3, 5}},
    {"ELLIPSE", "10 0|20 0|11 4|21 0|40 0.5|41 0|42 1.5707963267948966", {0, 0, 4, 2}},
    {"LWPOLYLINE", "90 2|70 0|10 0|20 0|42 1|10 4|20 0", {0, -2, 4, 0}},
    {"LWPOLYLINE", "90 2|70 1|10 0|20 0|42 1|10 4|20 0|42 1", {0, -2, 4, 2}},
    {"LWPOLYLINE", "90 2|70 0|43 2|10 0|20 0|10 4|20 0", {0, -1, 4, 1}},
    {"LWPOLYLINE", "90 3|70 0|43 2|10 0|20 0|10 4|20 0|10 4|20 4", {0, -1, 5, 4}},
    {"SPLINE", "70 8|71 2|40 0|40 0|40 0|40 1|40 1|40 1|10 0|20 0|10 2|20 4|10 4|20 0", {0, 0, 4, 2}},
    {"SPLINE", "70 8|71 3|74 3|11 0|21 0|11 1|21 0|11 2|21 0", {0, 0, 2, 0}},
    {"SOLID", "10 0|20 0|11 3|21 0|12 0|22 2|13 3|23 2", {0, 0, 3, 2}},
    {"3DFACE", "10 0|20 0|30 1|11 3|21 0|31 2|12 3|22 2|32 0|13 3|23 2|33 0", {0, 0, 3, 2}},
    {"INSERT", "2 flag|10 5|20 5", {4, 5, 5, 7}},
    {"INSERT", "2 flag|10 5|20 5|41 -1", {5, 5, 6, 7}},
    {"INSERT", "2 flag|10 5|20 5|50 90", {3, 4, 5, 5}},
    {"INSERT", "2 flag|10 5|20 5|210 0|220 0|230 -1", {-5, 5, -4, 7}},
    {"INSERT", "2 flag|10 5|20 5|70 3|71 2|44 10|45 4", {4, 5, 25, 11}},
    {"INSERT", "2 flag|10 5|20 5|50 90|70 3|44 10", {3, 4, 5, 25}},
    {"INSERT", "2 flag|10 5|20 5|70 32767|71 32767|44 1|45 1", {4, 5, 32771, 32773}},
    {"INSERT", "2 nest|10 100|20 0|41 2|42 2|43 2", {98, 0, 124, 4}},
    {"DIMENSION", "2 *D1|10 0|20 0|70 0", {3, 3, 5, 4}},
    {"RAY", "10 3|20 4|11 1|21 0", {3, 4, 3, 4}},
    {"LEADER", "71 0|72 0|76 3|10 0|20 0|10 2|20 2|10 4|20 2", {0, 0, 4, 2}},
    {"WIPEOUT", "10 10|20 20|11 4|21 0|12 0|22 2|13 1|23 1|71 1|91 2|14 -0.5|24 -0.5|14 0.5|24 0.5", {10, 20, 14, 22}},
    {"IMAGE",
     "10 10|20 20|11 0.5|21 0|12 0|22 0.5|13 8|23 4|280 0|71 1|91 2|14 -0.5|24 -0.5|14 1|24 1",
     {10, 20, 14, 22}},
    {"HATCH",
     "10 0|20 0|30 0|210 0|220 0|230 -1|2 SOLID|70 1|71 0|91 1|92 3|72 1|73 1|93 2|10 0|20 0|42 1|10 4|20 0|42 1|97 "
     "0|75 "
     "0|76 1|98 0",
     {-4, -2, 0, 2}},
    {"MLINE",
     "71 1|72 2|11 0|21 0|12 1|22 0|13 0|23 1|74 1|41 0.5|75 0|74 1|41 -0.5|75 0|11 8|21 0|12 1|22 0|13 0|23 "
     "1|74 1|41 0.5|75 0|74 1|41 -0.5|75 0",
     {0, -0.5, 8, 0.5}},
};

TEST(EntityPaths, ExtentsOfEveryKind) {
  for (const Row& row : kRows) {
    SmallDatabase db(withBlocks().entity(row.type, row.tags));
    expectBox(entityExtents(db.at(0)), row.box, 2e-4, std::string(row.type) + " " + row.tags);
  }
}

TEST(EntityPaths, MovingTheBlockMovesEverything) {
  // The same entities inside a block far from the origin, as plans in national grids are.
  constexpr double kEast = 27496000, kNorth = 6713000;
  for (const Row& row : kRows) {
    if (std::string(row.type) == "RAY") continue;
    SmallDrawing drawing = withBlocks();
    drawing.block("far").entity(row.type, row.tags).model();
    SmallDatabase db(drawing.entity("INSERT", "2 far|10 27496000|20 6713000"));
    const Box& b = row.box;
    expectBox(entityExtents(db.at(0)), {b.minX + kEast, b.minY + kNorth, b.maxX + kEast, b.maxY + kNorth}, 2e-4,
              std::string("moved ") + row.type + " " + row.tags);
  }
}

TEST(EntityPaths, OldPolylinesSkipFramePointsAndMeshesAreWires) {
  SmallDrawing drawing;
  drawing.entity("POLYLINE", "66 1|10 0|20 0|30 0|70 4")
      .entity("VERTEX", "10 0|20 0|70 8")
      .entity("VERTEX", "10 2|20 50|70 16")
      .entity("VERTEX", "10 4|20 1|70 8|42 0")
      .entity("SEQEND", "");
  drawing.entity("POLYLINE", "66 1|10 0|20 0|30 0|70 16|71 2|72 3");
  for (const char* vertex : {"10 0|20 0|70 64", "10 1|20 0|70 64", "10 2|20 0|70 64", "10 0|20 5|70 64",
                             "10 1|20 5|70 64", "10 2|20 5|70 64"})
    drawing.entity("VERTEX", vertex);
  drawing.entity("SEQEND", "");
  SmallDatabase db(drawing);
  expectBox(entityExtents(db.at(0)), {0, 0, 4, 1}, 1e-9, "spline-fit polyline");
  const auto wires = entityPaths(db.at(1), 0.01);
  EXPECT_EQ(wires.size(), 5U) << "two rows and three columns";
  expectBox(entityExtents(db.at(1)), {0, 0, 2, 5}, 1e-9, "mesh");
}

TEST(EntityPaths, CurvesStayWithinTheDeviation) {
  SmallDatabase db(SmallDrawing()
                       .entity("CIRCLE", "10 27496000|20 6713000|40 10")
                       .entity("LWPOLYLINE", "90 2|70 0|10 27496010|20 6713000|42 0.5|10 27496000|20 6713010"));
  for (const double deviation : {1.0, 0.01, 1e-6}) {
    const auto circle = entityPaths(db.at(0), deviation).at(0);
    for (std::size_t i = 0; i < circle.points.size(); ++i) {
      const Point a = circle.points[i], b = circle.points[(i + 1) % circle.points.size()];
      const double middle = std::hypot((a.x + b.x) / 2 - 27496000, (a.y + b.y) / 2 - 6713000);
      ASSERT_GE(middle, 10 - deviation * 1.001 - 1e-8);
      ASSERT_LE(std::hypot(a.x - 27496000, a.y - 6713000), 10 + 1e-8);
    }
    EXPECT_LT(circle.points.size(), 20 + 15 / std::sqrt(deviation)) << "not finer than asked";
  }
  const auto arc = entityPaths(db.at(1), 1e-6).at(0);
  const Point middle = arc.points[arc.points.size() / 2];
  // Apex: half a chord times the bulge, right of the chord's direction for a positive bulge.
  EXPECT_NEAR(middle.x, 27496005 + 2.5, 0.05);
  EXPECT_NEAR(middle.y, 6713005 + 2.5, 0.05);
}

TEST(EntityPaths, BrokenNumbersLeaveThePieceOut) {
  const char* const kBroken[][2] = {
      {"LINE", "10 nan|20 0|11 1|21 1"},
      {"LINE", "10 1e300|20 0|11 1|21 1"},
      {"CIRCLE", "10 0|20 0|40 inf"},
      {"CIRCLE", "10 0|20 0|40 -3"},
      {"ARC", "10 0|20 0|40 1|50 1e999|51 0"},
      {"LWPOLYLINE", "90 99999999|70 1|10 0|20 0|10 nan|20 1"},
      {"ELLIPSE", "10 0|20 0|11 nan|21 0|40 1|41 0|42 1"},
      {"SPLINE", "71 3|72 4|73 4|40 0|40 0|40 1|40 1|10 0|20 0|10 nan|20 0|10 1|20 1|10 2|20 2"},
      {"SPLINE", "71 2000000000|10 0|20 0|10 1|20 0"},
      {"INSERT", "2 flag|10 0|20 0|41 1e300"},
      {"INSERT", "2 no such block|10 0|20 0"},
      {"TEXT", "10 0|20 0|40 nan|1 text"},
      {"MTEXT", "10 0|20 0|40 -1|1 text"},
      {"SOLID", "10 0|20 0|11 inf|21 0|12 0|22 2"},
      {"HATCH", "91 2000000000|92 3|72 0|73 1|93 2000000000|10 0|20 0"},
      {"MLINE", "11 0|21 0|13 nan|23 0|74 1|41 1|11 5|21 0|13 nan|23 0|74 1|41 1"},
      {"VIEWPORT", "10 0|20 0|40 nan|41 1"},
      {"RAY", "10 0|20 0|11 0|21 0"},
  };
  for (const auto& [type, tags] : kBroken) {
    SmallDatabase db(withBlocks().entity(type, tags));
    EXPECT_TRUE(entityExtents(db.at(0)).isEmpty()) << type << " " << tags;
    EXPECT_TRUE(std::isinf(distanceTo(db.at(0), {0, 0}, 1))) << type << " " << tags;
  }
}

TEST(EntityPaths, CyclesAndExplodingNestsEnd) {
  SmallDrawing drawing;
  drawing.block("a").entity("LINE", "10 0|20 0|11 1|21 1").entity("INSERT", "2 b|10 2|20 0");
  drawing.block("b").entity("INSERT", "2 a|10 0|20 0").entity("LINE", "10 0|20 0|11 0|21 9");
  // Thirty levels that each hold the next one twice: a thousand million lines if all were drawn.
  drawing.block("level30").entity("LINE", "10 0|20 0|11 1|21 1");
  for (int i = 29; i >= 0; --i) {
    const std::string next = "2 level" + std::to_string(i + 1);
    drawing.block("level" + std::to_string(i))
        .entity("INSERT", next + "|10 0|20 0")
        .entity("INSERT", next + "|10 0|20 0");
  }
  drawing.model().entity("INSERT", "2 a|10 0|20 0").entity("INSERT", "2 level0|10 5|20 5");
  SmallDatabase db(drawing);
  expectBox(entityExtents(db.at(0)), {0, 0, 2, 9}, 1e-9, "cycle");
  expectBox(entityExtents(db.at(1)), {5, 5, 6, 6}, 1e-9, "exploding nest");
}

TEST(EntityPaths, ExtentsLeaveOutWhatIsNotShown) {
  SmallDrawing drawing;
  drawing.layer("0", "70 0|62 7").layer("off", "70 0|62 -1").layer("frozen", "70 1|62 1");
  drawing.block("two").entity("LINE", "10 0|20 0|11 50|21 0", "8 0").entity("LINE", "10 0|20 0|11 0|21 7", "8 shown");
  drawing.model()
      .entity("LINE", "10 0|20 0|11 1|21 1")
      .entity("LINE", "10 0|20 0|11 90|21 1", "8 off")
      .entity("LINE", "10 0|20 0|11 90|21 1", "8 frozen")
      .entity("LINE", "10 0|20 0|11 90|21 1", "8 0|60 1")
      .entity("INSERT", "2 two|10 0|20 0", "8 off")       // its layer "0" content is off with it, the rest is not
      .entity("INSERT", "2 two|10 0|20 20", "8 frozen");  // nothing of it
  SmallDatabase db(drawing);
  expectBox(blockExtents(*db, db->modelSpace()), {0, 0, 1, 7}, 1e-9, "visible");
}

TEST(Picks, DistanceKnowsFillsAndIslands) {
  SmallDrawing drawing;
  drawing.entity("LINE", "10 0|20 0|11 10|21 0");
  drawing.entity(
      "HATCH",
      "10 0|20 0|30 0|210 0|220 0|230 1|2 SOLID|70 1|71 0|91 2|92 3|72 0|73 1|93 4|10 0|20 0|10 10|20 0|10 10|20 "
      "10|10 0|20 10|97 0|92 2|72 0|73 1|93 4|10 4|20 4|10 6|20 4|10 6|20 6|10 4|20 6|97 0|75 0|76 1|98 0");
  drawing.entity("LWPOLYLINE", "90 4|70 1|43 1|10 0|20 0|10 10|20 0|10 10|20 10|10 0|20 10");
  SmallDatabase db(drawing);
  EXPECT_NEAR(distanceTo(db.at(0), {5, 3}, 1), 3, 1e-9);
  EXPECT_NEAR(distanceTo(db.at(0), {13, 4}, 1), 5, 1e-9);
  EXPECT_EQ(distanceTo(db.at(1), {2, 2}, 1), 0);
  EXPECT_NEAR(distanceTo(db.at(1), {5, 4.7}, 1), 0.7, 1e-9) << "in the island";
  EXPECT_EQ(distanceTo(db.at(2), {5, 0.4}, 1), 0) << "within the width";
  EXPECT_NEAR(distanceTo(db.at(2), {5, 2}, 1), 1.5, 1e-9) << "inside the ring of a wide polyline";
}

TEST(Picks, WindowsAndFences) {
  struct Case {
    const char* type;
    const char* tags;
    bool inside, crossing, fence;
  };
  // Window: an L of (0,0)-(10,0)-(10,4)-(4,4)-(4,10)-(0,10). Fence: (5,-5) to (5,20).
  const std::vector<Point> corner = {{0, 0}, {10, 0}, {10, 4}, {4, 4}, {4, 10}, {0, 10}};
  const std::vector<Point> fence = {{5, -5}, {5, 20}};
  const Case kCases[] = {
      {"LINE", "10 1|20 1|11 9|21 3", true, true, true},
      {"LINE", "10 0|20 0|11 10|21 0", true, true, true},  // on the border
      {"LINE", "10 9|20 3|11 3|21 9", false, true, true},  // both ends inside, the middle outside
      {"LINE", "10 -5|20 5|11 20|21 5", false, true, true},
      {"LINE", "10 6|20 6|11 9|21 9", false, false, false},
      {"CIRCLE", "10 2|20 2|40 1", true, true, false},
      {"CIRCLE", "10 5|20 5|40 50", false, false, false},  // around the window, which touches no line of it
      {"POINT", "10 5|20 2", true, true, true},
      {"POINT", "10 7|20 7", false, false, false},
      {"SOLID", "10 -50|20 -50|11 50|21 -50|12 -50|22 50|13 50|23 50", false, true,
       false},  // filled: the window is in it
  };
  for (const Case& c : kCases) {
    SmallDatabase db(SmallDrawing().entity(c.type, c.tags));
    EXPECT_EQ(isInWindow(db.at(0), corner, Window::Inside), c.inside) << c.type << " " << c.tags;
    EXPECT_EQ(isInWindow(db.at(0), corner, Window::Crossing), c.crossing) << c.type << " " << c.tags;
    EXPECT_EQ(crossesFence(db.at(0), fence), c.fence) << c.type << " " << c.tags;
  }
  SmallDatabase db(SmallDrawing().entity("LINE", "10 1|20 1|11 9|21 3"));
  EXPECT_TRUE(isInWindow(db.at(0), {{10, 0}, {0, 4}}, Window::Inside)) << "two corners, any way round";
}

}  // namespace
}  // namespace host::geometry

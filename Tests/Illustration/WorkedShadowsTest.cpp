// Figures of shadows worked out by hand, looked up in the drawing that the commands leave.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Illustration/BuildingPlan.h"

namespace {

using namespace tests;

class WorkedShadows : public BuildingPlan {
 protected:
  static std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", std::round(value * 1000) / 1000 + 0.0);
    return text;
  }
  /// "x,y>x,y>…" of every living hatch on the layer, in the order in which they were made.
  std::vector<std::string> polygons(std::wstring_view layer = L"tmv_varjo") {
    std::vector<std::string> found;
    for (const Slot* const hatch : living(DxfType::Hatch, layer)) {
      std::string all;
      for (const auto& [x, y] : corners(*hatch)) all += (all.empty() ? "" : ">") + number(x) + "," + number(y);
      found.push_back(all);
    }
    return found;
  }
  using Polygons = std::vector<std::string>;

  std::string ridgeLine(const std::string& points) {
    std::string ridge = course(points);
    run("TLM_MUOK_HARJAVIIVA\n" + pickHandle(ridge) + "\n");
    return ridge;
  }
  /// Shadows of a gable house 16 by 9 whose outline begins at the corner; floors 2, ridge 2 of 3, to the east.
  Polygons gable(std::size_t firstCorner, const std::string& ridgePoints) {
    static const std::vector<std::string> kCorners = {"0,0\n", "16,0\n", "16,9\n", "0,9\n"};
    std::string script = "PLINE\n";
    for (std::size_t i = 0; i < 4; ++i) script += kCorners[(firstCorner + i) % 4];
    run(script + "C\n");
    const std::string house = handle(*last(DxfType::LwPolyline));
    store({{house, building("2", ridgeLine(ridgePoints))}});
    if (text().find("shadowSettings") == std::string::npos) storeSettings(settings("0.0"));
    run("TLM_VARJO_PAIVITA\n");
    Polygons shadow = polygons();
    run("ERASE\n" + pickHandle(house) + "\n");
    return shadow;
  }
};

TEST_F(WorkedShadows, ASquareOfTwoFloorsSweepsFourQuadrilaterals) {
  store({{rectangle(0, 0, 10, 10), building("2")}});
  run("TLM_VARJO_PAIVITA\n");
  // 2 floors of 3 under 45 degrees: 6 / sqrt 2 = 4.243 both ways.
  EXPECT_EQ(polygons(), (Polygons{"0,0>4.243,4.243>14.243,4.243>10,0", "10,0>14.243,4.243>14.243,14.243>10,10",
                                  "10,10>14.243,14.243>4.243,14.243>0,10", "0,10>4.243,14.243>4.243,4.243>0,0"}));
  EXPECT_EQ(polygons(L"tma_katto"), (Polygons{"0,0>10,0>10,10>0,10"}));
}

TEST_F(WorkedShadows, WithoutFloorsOnlyTheRoofIsDrawn) {
  store({{rectangle(0, 0, 10, 10), building("0")}});
  run("TLM_VARJO_PAIVITA\n");
  EXPECT_EQ(polygons(), Polygons{});
  EXPECT_EQ(roofCount(), 1U);
  ASSERT_EQ(groups().size(), 1U);
  EXPECT_EQ(members(*groups().at("Varjo0")), 0U);
}

TEST_F(WorkedShadows, HalfCirclesAreSteppedFromTheirStart) {
  // Radius 10, step half a radian: 0.5 to 2.5 and the end; the square's side casts the rest.
  run("PLINE\n10,0\nA\nCE\n0,0\n-10,0\nL\n0,0\nC\n");
  const std::string large = handle(*last(DxfType::LwPolyline));
  store({{large, building("1")}});
  storeSettings(settings("-1.5707963267948966"));
  run("TLM_VARJO_PAIVITA\n");
  Polygons expected;
  const double turns[] = {0, 0.5, 1, 1.5, 2, 2.5, std::acos(-1.0)};
  for (std::size_t i = 0; i + 1 < std::size(turns); ++i) {
    const auto at = [](double turn, double down) {
      return number(10 * std::cos(turn)) + "," + number(10 * std::sin(turn) - down);
    };
    expected.push_back(at(turns[i], 0) + ">" + at(turns[i], 3) + ">" + at(turns[i + 1], 3) + ">" + at(turns[i + 1], 0));
  }
  // An outline that begins with an arc has its straight edges all the same.
  expected.emplace_back("-10,0>-10,-3>0,-3>0,0");
  expected.emplace_back("0,0>0,-3>10,-3>10,0");
  EXPECT_EQ(polygons(), expected);
}

// A strip 20 long and 10 deep whose southern edge is half a circle of radius 10 to the south, as every kind of polyline
// stores it, and without the arc where it has none; heights do not matter.
TEST_F(WorkedShadows, EveryKindOfOutlineCastsTheSame) {
  const std::string light = "0 LWPOLYLINE|5 40|100 AcDbEntity|8 0|100 AcDbPolyline|90 4|70 1|";
  const std::string down = "210 0|220 0|230 -1|";
  const std::string outlines[] = {
      tagLines(light + "38 12.5|10 -10|20 0|42 1|10 10|20 0|10 10|20 10|10 -10|20 10|"),
      tagLines(light + "38 12.5|10 10|20 0|42 -1|10 -10|20 0|10 -10|20 10|10 10|20 10|" + down),
      oldPolyline(40, {"10 -10|20 0|42 1|", "10 10|20 0|", "10 10|20 10|", "10 -10|20 10|"}),
      oldPolyline(40, {"10 10|20 0|42 -1|", "10 -10|20 0|", "10 -10|20 10|", "10 10|20 10|"}, down),
      oldPolyline(40, {"10 -10|20 0|30 7|", "10 10|20 0|30 7|", "10 10|20 10|30 7|", "10 -10|20 10|30 7|"})};
  Polygons former;
  for (const std::string& outline : outlines) {
    SCOPED_TRACE(outline);
    openText(plainDrawing(outline));
    run("TLM_MUOK_SORA\n" + pickHandle(rectangle(90, 0, 5, 5)) + "\n");  // makes the tables
    store({{"40", building("1")}});
    storeSettings(settings("-1.5707963267948966"));
    run("TLM_VARJO_PAIVITA\n");
    EXPECT_EQ(roofCount(), 1U);
    const Polygons shadow = polygons();
    const bool isStraight = &outline == std::end(outlines) - 1;
    ASSERT_EQ(shadow.size(), isStraight ? 2U : 7U);
    EXPECT_EQ(shadow.front(), isStraight ? "-10,0>-10,-3>10,-3>10,0" : "-10,0>-10,-3>-8.776,-7.794>-8.776,-4.794");
    EXPECT_EQ(shadow.back(), "10,10>10,7>-10,7>-10,10");
    EXPECT_TRUE(former.empty() || isStraight || shadow == former) << testing::PrintToString(shadow);
    former = shadow;
  }
}

TEST_F(WorkedShadows, ADamagedArcCostsNothing) {
  run("PLINE\n0,0\nA\nS\n1e9,1e9\n2e9,0\nL\n2e9,5\n2000000010,5\n\n");
  const std::string fence = handle(*last(DxfType::LwPolyline));
  run("TLM_MUOK_AITA_LAUTA\n" + pickHandle(fence) + "\nTLM_ASETA_KORKEUS\n" + pickHandle(fence) +
      "\n2\nTLM_VARJO_PAIVITA\n");
  EXPECT_EQ(shadowCount(), 2U);  // the straight edges
}

TEST_F(WorkedShadows, GablesReachFurtherByTheirRidge) {
  // Walls cast 6, the ridge 2 / 3 of a floor more: 8. The western gable closes the outline.
  const Polygons expected = {"16,0>22,0>24,4.5>16,4.5", "16,4.5>24,4.5>22,9>16,9", "0,9>6,9>8,4.5>0,4.5",
                             "0,4.5>8,4.5>6,0>0,0"};
  EXPECT_EQ(gable(0, "0,4.5\n16,4.5\n"), expected);
  EXPECT_EQ(gable(0, "16,4.5\n0,4.5\n"), expected);
  // Vertices inside the footprint and beside its edges do not count.
  EXPECT_EQ(gable(0, "0,4.5\n8,4.5\n8,9.5\n16,4.5\n"), expected);
  // Outlines that begin at the eastern gable: both ends meet edges before the last, the second one lands before the
  // end of its edge, and what lies behind it is cast by the wall only.
  EXPECT_EQ(gable(1, "0,4.5\n16,4.5\n"), (Polygons{"16,0>22,0>24,4.5>16,4.5", "16,4.5>24,4.5>22,9>16,9",
                                                   "0,9>6,9>8,4.5>0,4.5", "0,4.5>8,4.5>6,9>0,9", "0,9>6,9>6,0>0,0"}));
  // A ridge end beside the outline by more than a tenth of a millimetre has no effect.
  EXPECT_EQ(gable(0, "0,4.5\n16.001,4.5\n"),
            (Polygons{"16,0>22,0>22,9>16,9", "0,9>6,9>8,4.5>0,4.5", "0,4.5>8,4.5>6,0>0,0"}));
}

TEST_F(WorkedShadows, GroupsTakeTheLowestFreeNumbers) {
  store({{rectangle(0, 0, 10, 10), building("2")}});
  run("TLM_VARJO_PAIVITA\nTLM_VARJO_PAIVITA\nTLM_VARJO_PAIVITA\n");
  reopen();
  const auto three = groups();
  ASSERT_EQ(three.size(), 3U);
  EXPECT_EQ(members(*three.at("Varjo0")), 0U);
  EXPECT_EQ(members(*three.at("Varjo1")), 0U);
  EXPECT_EQ(members(*three.at("Varjo2")), 4U);
  // A name that became free is taken again.
  std::string all = text();
  all.replace(all.find("\nVarjo1\n"), 8, "\nMuu\n");
  openText(all);
  run("TLM_VARJO_PAIVITA\n");
  EXPECT_EQ(members(*groups().at("Varjo1")), 4U);
  // What a save leaves out comes back with the undo.
  run("TLM_VARJO_PAIVITA\n");
  text();
  run("U\n");
  reopen();
  EXPECT_EQ(members(*groups().at("Varjo1")), 4U);
  run("TLM_VARJO_PAIVITA\n");
  EXPECT_EQ(members(*groups().at("Varjo3")), 4U);
}

}  // namespace

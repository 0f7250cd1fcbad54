// The colour scheme, the catalogue and what they must agree on; the layout of parking places.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <set>
#include <string>

#include "OrvLib/ARX/Contains.h"
#include "OrvLib/DataStruct/Text.h"
#include "Tolmex/Model/Catalogue.h"
#include "Tolmex/Model/ColorScheme.h"
#include "Tolmex/Model/ParkingLayout.h"

namespace OrvLib {
namespace {

ColorScheme schemeOf(const wchar_t* text) {
  ColorScheme scheme;
  readSchemeLines(lines(text), scheme);
  return scheme;
}

TEST(ColorScheme, TakesTheFirstLineOfAKeyInAnyCase) {
  const ColorScheme scheme =
      schemeOf(L"\n# colours\n  ASFALTTI\t3 rest\nasfaltti\t4\nKattoTayttoVarjo 12\nnurmi\nnurmi 5\n");
  ColorScheme expected;
  expected.asphalt = 3;
  expected.roofFillShadow = 12;
  expected.grass = 5;  // the line without a value is passed over
  EXPECT_EQ(scheme, expected);
  EXPECT_EQ(scheme.forest, 105);
}

TEST(ColorScheme, MakesNumbersOfDamagedValues) {
  const ColorScheme scheme = schemeOf(L"sora x\npolku 31.9\nmetsa 1e300\npihalaatta -4\nasfaltti7 8");
  EXPECT_EQ(scheme.gravel, 0);
  EXPECT_EQ(scheme.path, 31);
  EXPECT_EQ(scheme.forest, std::numeric_limits<int>::max());
  EXPECT_EQ(scheme.yardPaving, -4);
  EXPECT_EQ(scheme.asphalt, 254);
}

TEST(ColorScheme, ReadsBackAsWritten) {
  ColorScheme chosen;
  int next = 1;
  for (const SchemeColor& color : kSchemeColors) chosen.*color.field = next++;
  EXPECT_EQ(schemeOf(schemeText(chosen).c_str()), chosen);
}

const LayerRow* layerNamed(const wchar_t* name) {
  for (const LayerRow& layer : kElementLayers) {
    if (std::wstring_view(name) == layer.name) return &layer;
  }
  return nullptr;
}

TEST(Catalogue, UsesOnlyLayersThatAreMade) {
  std::set<std::wstring> names;
  for (const LayerRow& layer : kElementLayers) EXPECT_TRUE(names.insert(layer.name).second) << layer.name;
  std::set<std::wstring> tags;
  for (const ElementRow& category : kCategories) {
    EXPECT_TRUE(tags.insert(category.tag).second) << category.tag;
    EXPECT_NE(layerNamed(category.outline.name), nullptr) << category.tag;
    EXPECT_TRUE(category.fill.name == nullptr || layerNamed(category.fill.name) != nullptr) << category.tag;
    EXPECT_TRUE(category.pattern.name == nullptr || category.fill.name != nullptr) << category.tag;
  }
}

TEST(Catalogue, ColorsAreaLayersByTheirOwnSchemeColor) {
  for (const SchemeColor& color : kSchemeColors) {
    if (color.areaLayer == nullptr) continue;
    const LayerRow* const layer = layerNamed(color.areaLayer);
    ASSERT_NE(layer, nullptr) << color.areaLayer;
    EXPECT_EQ(layer->schemeColor, color.field) << color.areaLayer;
  }
}

TEST(Catalogue, KnowsEveryTagExactly) {
  for (std::size_t i = 0; i < kCategories.size(); ++i) {
    EXPECT_EQ(categoryOfTag(kCategories[i].tag), static_cast<Category>(i));
  }
  for (const wchar_t* unknown : {L"", L"asfaltti", L"Metsa", L"Uimahalli"})
    EXPECT_FALSE(categoryOfTag(unknown)) << unknown;
  EXPECT_STREQ(row(Category::Building).tag, L"Rakennus");
}

ParkingRow rowOf(const Line& baseLine) {
  ParkingRow places;
  places.baseLine = baseLine;
  return places;
}

TEST(ParkingLayout, LeavesTheFarEndOfAnExactlyFilledRowOpen) {
  const std::vector<Line> stalls = stallLines(rowOf({{0, 0, 0}, {10, 0, 0}}));
  ASSERT_EQ(stalls.size(), 4u);
  for (std::size_t i = 0; i < stalls.size(); ++i) {
    const double x = 2.5 * static_cast<double>(i);
    EXPECT_LT(stalls[i].start.distanceTo({x, 0, 0}), 1e-12);
    EXPECT_LT(stalls[i].end.distanceTo({x, 5, 0}), 1e-12);
  }
  EXPECT_EQ(stallLines(rowOf({{0, 0, 0}, {11, 0, 0}})).size(), 5u);
  EXPECT_TRUE(stallLines(rowOf({{3, 3, 0}, {3, 3, 0}})).empty());
  // Distances are added up, so ten times 0.1 stays below 1 and makes an eleventh line.
  ParkingRow narrow = rowOf({{0, 0, 0}, {1, 0, 0}});
  narrow.width = 0.1;
  EXPECT_EQ(stallLines(narrow).size(), 11u);
}

TEST(ParkingLayout, TurnsWithTheRowAndKeepsToItsLeft) {
  for (const double direction : {0.0, 1.1, std::numbers::pi, -2.0}) {
    const Line baseLine = Line::fromAngle({100, 200, 7}, direction, 12);
    ParkingRow places = rowOf(baseLine);
    places.angleDegrees = 45;
    places.length = 4;
    const std::vector<Line> stalls = stallLines(places);
    ASSERT_EQ(stalls.size(), 5u) << direction;
    for (const Line& stall : stalls) {
      const Point3d along = baseLine.vector() * (1 / baseLine.length());
      const Point3d v = stall.vector();
      EXPECT_NEAR(along.x * v.y - along.y * v.x, 4 * std::sqrt(0.5), 1e-9) << direction;
      EXPECT_NEAR(along.x * v.x + along.y * v.y, 4 * std::sqrt(0.5), 1e-9) << direction;
      EXPECT_TRUE(isOnSegment(stall.start, baseLine)) << direction;
      EXPECT_EQ(stall.end.z, 7);
    }
  }
}

TEST(ParkingLayout, RefusesWidthsThatGetNowhere) {
  ParkingRow places = rowOf({{0, 0, 0}, {10, 0, 0}});
  EXPECT_TRUE(places.hasUsableWidth() && places.hasUsableCount());
  for (const double width : {0.0, -2.5, std::nan("")}) {
    places.width = width;
    EXPECT_FALSE(places.hasUsableWidth()) << width;
  }
  places.width = 1e-9;
  EXPECT_FALSE(places.hasUsableCount());
  places.width = 2.5;
  places.baseLine.end.x = std::numeric_limits<double>::infinity();
  EXPECT_FALSE(places.hasUsableCount());
}

}  // namespace
}  // namespace OrvLib

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>
#include <set>

#include "Hatching/Linetypes.h"
#include "Hatching/Patterns.h"
#include "Places.h"
#include "Text/Text.h"

namespace host::hatching {
namespace {

constexpr double kPi = std::numbers::pi;
using Problems = std::vector<Problem>;
using Numbers = std::vector<double>;

std::string shipped(const char* name) {
  const auto root = std::filesystem::path(kSourceDir);
  std::ifstream file(root / "Host/Hatching/support" / name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(PatternFiles, DamagedLinesAreNamedAndTheRestIsRead) {
  Problems problems;
  const std::vector<Pattern> patterns = parsePatternFile(
      "\xEF\xBB\xBF; heading\r\n"
      "1, 2,3, 4,5\r\n"  // 2: no pattern yet
      "*Fence , two kinds; of line\r\n"
      "  45 , 1,2 , .5,+.25 , 1e-1,-.05, 0 ,-5E-2 ; end\r\n"
      "\r\n"
      "90, 0,0, 0\r\n"         // 6: too few
      "90, 0,0, 0,1,,\r\n"     // 7: empty field
      "90, 0,0, 0,one\r\n"     // 8: not a number
      "90, 0,0, 0,nan\r\n"     // 9
      "90, 0,0, 1,0\r\n"       // 10: no spacing
      "90, 0,0, 0,1, 0,0\r\n"  // 11: dashes without length
      "90, 0,0, 0,1e999\r\n"   // 12
      "90, 0,0, 0,2,\r\n"
      "*empty\r\n"
      "*\r\n"            // 15: no name
      "0, 0,0, 0,1\r\n"  // 16
      "*last\r\n0, 0,0, 0,-3",
      problems);
  std::set<std::size_t> lines;
  for (const Problem& problem : problems) lines.insert(problem.line);
  EXPECT_EQ(lines, (std::set<std::size_t>{2, 6, 7, 8, 9, 10, 11, 12, 15, 16}));
  EXPECT_EQ(problems.size(), lines.size());
  ASSERT_EQ(patterns.size(), 2u);
  EXPECT_EQ(patterns[0].name, "FENCE");
  EXPECT_EQ(patterns[0].description, "two kinds; of line");
  ASSERT_EQ(patterns[0].families.size(), 2u);
  const PatternLine& first = patterns[0].families[0];
  EXPECT_NEAR(first.angleRad, kPi / 4, 1e-15);
  EXPECT_EQ(first.baseY, 2);
  EXPECT_EQ(first.offsetX, 0.5);
  EXPECT_EQ(first.offsetY, 0.25);
  EXPECT_EQ(first.dashes, (Numbers{0.1, -0.05, 0, -0.05}));
  EXPECT_EQ(patterns[1].families.at(0).offsetY, -3);
}

TEST(PatternFiles, ScalingTurnsAndStretchesAsHatchesStoreIt) {
  Problems problems;
  const auto pattern = parsePatternFile("*ANSI31\n45, 0,0, 0,.125\n*BASE\n30, 1,0, 0,2, 3,-1\n", problems);
  ASSERT_EQ(pattern.size(), 2u);
  const PatternLine slanting = scaledPattern(pattern[0], 0, 1).at(0);
  EXPECT_NEAR(slanting.offsetX, -0.0883883, 1e-7);
  EXPECT_NEAR(slanting.offsetY, 0.0883883, 1e-7);
  const PatternLine turned = scaledPattern(pattern[1], kPi / 2, 10).at(0);
  EXPECT_NEAR(turned.angleRad, kPi * 2 / 3, 1e-12);
  EXPECT_NEAR(turned.baseX, 0, 1e-12);  // the base turns by the hatch's angle only
  EXPECT_NEAR(turned.baseY, 10, 1e-12);
  EXPECT_NEAR(turned.offsetX, -20 * std::sin(kPi * 2 / 3), 1e-12);
  EXPECT_NEAR(turned.offsetY, 20 * std::cos(kPi * 2 / 3), 1e-12);
  EXPECT_EQ(turned.dashes, (Numbers{30, -10}));
}

TEST(PatternFiles, FamiliesThatScalingTakesTooFarAreLeftOut) {
  Problems problems;
  const auto patterns = parsePatternFile("*A\n0,0,0,0,1,1e308,-1\n0,0,0,0,1e308\n0,1e308,0,0,1\n0,0,0,0,3\n", problems);
  ASSERT_EQ(1U, patterns.size());
  const auto lines = scaledPattern(patterns.front(), 0, 2);
  ASSERT_EQ(1U, lines.size()) << "a hatch would store numbers that are none";
  EXPECT_EQ(6, lines.front().offsetY);
}

TEST(LinetypeFiles, DamagedLinesAreNamedAndComplexOnesKeepTheirLengths) {
  Problems problems;
  const std::vector<Linetype> linetypes = parseLinetypeFile(
      ";; heading\n"
      "*GAS_LINE,Gas ----GAS----, with comma\n"
      "A,.5,-.2,[\"G,A]S\",STANDARD,S=.1,R=0.0,X=-0.1,Y=-.05],-.25\n"
      "*Dots\n"
      " a , 0 , -1 \n"
      "*bad1\nB,1,-1\n"                             // 7
      "*bad2\nA,-1,1\n"                             // 9: begins with a gap
      "*bad3\nA,0\n"                                // 11: no length
      "*bad4\nA,1,-x\n"                             // 13
      "*bad5\nA,1,[no end\n"                        // 15
      "*bad6\nA,1,-1,1,-1,1,-1,1,-1,1,-1,1,-1,1\n"  // 17: more than twelve
      "*bad7\n"
      "*Twice\nA,1,-1\nA,2,-2\n",
      problems);  // 21
  std::set<std::size_t> lines;
  for (const Problem& problem : problems) lines.insert(problem.line);
  EXPECT_EQ(lines, (std::set<std::size_t>{7, 9, 11, 13, 15, 17, 21}));
  ASSERT_EQ(linetypes.size(), 3u);
  EXPECT_EQ(linetypes[0].name, "GAS_LINE");
  EXPECT_EQ(linetypes[0].description, "Gas ----GAS----, with comma");
  EXPECT_EQ(linetypes[0].dashes, (Numbers{0.5, -0.2, -0.25}));
  EXPECT_EQ(linetypes[1].dashes, (Numbers{0, -1}));
  EXPECT_EQ(linetypes[2].dashes, (Numbers{1, -1}));
}

TEST(LinetypeFiles, DashesOfARecord) {
  const auto dashes = [](std::string_view tags) { return linetypeDashes(database::TagCursor(tags)); };
  EXPECT_EQ(
      dashes("0\nLTYPE\n2\nHIDDEN2\n73\n2\n40\n0.1875\n49\n0.125\n74\n0\n49\n-0.0625\n74\n0\n1001\nX\n1040\n49\n"),
      (Numbers{0.125, -0.0625}));
  EXPECT_TRUE(dashes("0\nLTYPE\n2\nContinuous\n73\n0\n40\n0.0\n").empty());
  EXPECT_TRUE(dashes("49\n0.0\n49\n0.0\n").empty());  // would never advance
}

TEST(ShippedFiles, MetricOnesAreTheInchOnesTimes25Point4) {
  Problems problems;
  const auto inch = parsePatternFile(shipped("acad.pat"), problems);
  const auto metric = parsePatternFile(shipped("acadiso.pat"), problems);
  std::set<std::string> names;
  ASSERT_EQ(inch.size(), metric.size());
  for (std::size_t i = 0; i < inch.size(); ++i) {
    EXPECT_EQ(inch[i].name, metric[i].name);
    EXPECT_TRUE(names.insert(inch[i].name).second) << inch[i].name;
    const auto expected = scaledPattern(inch[i], 0, 25.4);
    const auto found = scaledPattern(metric[i], 0, 1);
    ASSERT_EQ(expected.size(), found.size());
    for (std::size_t k = 0; k < expected.size(); ++k) {
      EXPECT_NEAR(expected[k].baseX, found[k].baseX, 1e-6) << inch[i].name;
      EXPECT_NEAR(expected[k].offsetX, found[k].offsetX, 1e-6) << inch[i].name;
      EXPECT_NEAR(expected[k].offsetY, found[k].offsetY, 1e-6) << inch[i].name;
      ASSERT_EQ(expected[k].dashes.size(), found[k].dashes.size());
    }
  }
  for (const char* name : {"SOLID", "LINE", "NET", "DOTS"}) EXPECT_TRUE(names.contains(name)) << name;

  const auto inchTypes = parseLinetypeFile(shipped("acad.lin"), problems);
  const auto metricTypes = parseLinetypeFile(shipped("acadiso.lin"), problems);
  names.clear();
  ASSERT_EQ(inchTypes.size(), metricTypes.size());
  for (std::size_t i = 0; i < inchTypes.size(); ++i) {
    EXPECT_EQ(inchTypes[i].name, metricTypes[i].name);
    EXPECT_TRUE(names.insert(inchTypes[i].name).second) << inchTypes[i].name;
    ASSERT_EQ(inchTypes[i].dashes.size(), metricTypes[i].dashes.size());
    for (std::size_t k = 0; k < inchTypes[i].dashes.size(); ++k) {
      EXPECT_NEAR(inchTypes[i].dashes[k] * 25.4, metricTypes[i].dashes[k], 1e-6) << inchTypes[i].name;
    }
  }
  for (const char* name : {"HIDDEN", "HIDDEN2", "HIDDENX2", "DOT", "DOT2", "DOTX2", "DOTS", "DASHED", "CENTER2"}) {
    EXPECT_TRUE(names.contains(name)) << name;
  }
  EXPECT_TRUE(problems.empty()) << problems.front().sentence();
}

}  // namespace
}  // namespace host::hatching

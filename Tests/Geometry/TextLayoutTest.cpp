#include <gtest/gtest.h>

#include "Geometry/SmallDrawing.h"
#include "Geometry/TextLayout.h"

namespace host::geometry {
namespace {

double unitWidth(std::wstring_view text, Face) { return static_cast<double>(text.size()); }

TextBlock layout(const std::string& type, const std::string& tags) {
  tests::SmallDatabase db(tests::SmallDrawing().entity(type, tags));
  return layoutText(db.at(0), unitWidth).value();
}

TEST(TextLayout, SingleLinesStandWhereTheirAlignmentSays) {
  // Every character is as wide as the text is high: "abcd" at height 2 is 8 long.
  struct Case {
    const char* tags;
    double minX, minY, maxX, maxY;  // plan box
  };
  for (const Case& c :
       std::initializer_list<Case>{{"10 5|20 5", 5, 5, 13, 7},
                                   {"10 0|20 0|72 1|11 5|21 5", 1, 5, 9, 7},
                                   {"10 0|20 0|72 2|73 3|11 5|21 5", -3, 3, 5, 5},
                                   {"10 0|20 0|72 4|11 5|21 5", 1, 4, 9, 6},
                                   {"10 5|20 5|50 90", 3, 5, 5, 13},
                                   {"10 5|20 5|41 0.5", 5, 5, 9, 7},
                                   {"10 5|20 5|71 2", -3, 5, 5, 7},                  // backwards
                                   {"10 5|20 5|71 4", 5, 3, 13, 5},                  // upside down
                                   {"10 5|20 5|210 0|220 0|230 -1", -13, 5, -5, 7},  // from below
                                   {"10 5|20 5|72 5|11 9|21 5", 5, 5, 9, 7},         // fit
                                   {"10 5|20 5|72 3|11 9|21 5", 5, 5, 9, 6}}) {      // aligned: half the height as well
    const TextBlock block = layout("TEXT", std::string("40 2|1 abcd|") + c.tags);
    Box box;
    for (const auto& [x, y] : {std::pair{block.box.minX, block.box.minY}, std::pair{block.box.maxX, block.box.maxY}})
      box.add(block.frame.plan({x, y, 0}));
    EXPECT_NEAR(box.minX, c.minX, 1e-9) << c.tags;
    EXPECT_NEAR(box.minY, c.minY, 1e-9) << c.tags;
    EXPECT_NEAR(box.maxX, c.maxX, 1e-9) << c.tags;
    EXPECT_NEAR(box.maxY, c.maxY, 1e-9) << c.tags;
  }
}

std::wstring joined(const TextBlock& block) {
  std::wstring all;
  double line = block.runs.front().y;
  for (const TextRun& run : block.runs) {
    if (run.y != line) all += L'/';
    line = run.y;
    all += run.text;
  }
  return all;
}

TEST(TextLayout, FormattingCodes) {
  EXPECT_EQ(joined(layout("TEXT", "40 1|1 %%c20%%p5%%d 100%% %%065")), L"\u00D820\u00B15\u00B0 100%% A");
  EXPECT_EQ(joined(layout("MTEXT", "40 1|10 0|20 0|1 a\\Pb\\~c \\{x\\} {\\fArial\\U+007Cb1;B}\\U+00E4 %%d")),
            L"a/b\u00A0c {x} B\u00E4 \u00B0");
  const TextBlock sizes = layout("MTEXT", "40 2|10 0|20 0|1 a{\\H1.5x;\\C1;b}\\H4;c");
  ASSERT_EQ(sizes.runs.size(), 3U);
  EXPECT_EQ(sizes.runs[1].height, 3);
  EXPECT_EQ(sizes.runs[1].color, 1);
  EXPECT_EQ(sizes.runs[2].height, 4);
  EXPECT_EQ(sizes.runs[2].color, -1) << "the brace ends the colour";
  EXPECT_EQ(sizes.runs[2].x, 2 + 3) << "after characters of height 2 and 3";
  const TextBlock fraction = layout("MTEXT", "40 2|10 0|20 0|1 \\S12/345;");
  ASSERT_EQ(fraction.runs.size(), 2U);
  EXPECT_GT(fraction.runs[0].y, fraction.runs[1].y);
  EXPECT_EQ(fraction.rules.size(), 1U);
  // Codes that lack their end, braces that lack theirs: text all the same.
  EXPECT_EQ(joined(layout("MTEXT", "40 1|10 0|20 0|1 }}a{{{b\\")), L"ab\\");
}

TEST(TextLayout, WrappingAndAttachment) {
  const std::string words = "40 1|10 0|20 0|1 aa bb cc|41 5";
  EXPECT_EQ(joined(layout("MTEXT", words + "|71 1")), L"aa bb /cc");
  for (int attachment = 1; attachment <= 9; ++attachment) {
    const Box box = layout("MTEXT", words + "|71 " + std::to_string(attachment)).box;
    const int column = (attachment - 1) % 3, row = (attachment - 1) / 3;
    EXPECT_NEAR(column == 0 ? box.minX : column == 1 ? (box.minX + box.maxX) / 2 : box.maxX, 0, 1e-9) << attachment;
    EXPECT_NEAR(row == 0 ? box.maxY : row == 1 ? (box.minY + box.maxY) / 2 : box.minY, 0, 1e-9) << attachment;
    EXPECT_NEAR(box.maxY - box.minY, 1 + 5.0 / 3, 1e-9);
  }
}

}  // namespace
}  // namespace host::geometry

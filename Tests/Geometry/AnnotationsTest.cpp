// Paragraphs, columns, tolerance frames, dimensions without a block, kinds known by name only.
#include <gtest/gtest.h>

#include <numbers>

#include "Geometry/Annotations.h"
#include "Geometry/SmallDrawing.h"

namespace host::geometry {
namespace {

double unitWidth(std::wstring_view text, Face) { return static_cast<double>(text.size()); }

TextBlock layout(const std::string& tags) {
  tests::SmallDatabase db(tests::SmallDrawing().entity("MTEXT", "40 1|10 0|20 0|" + tags));
  return layoutText(db.at(0), unitWidth).value();
}

Box planBox(const AnnotationShape& shape) {
  Box box;
  for (const Wire& wire : shape.wires)
    for (const AcGePoint3d& p : wire.points) box.add(plan(p));
  return box;
}

TEST(Annotations, ParagraphsIndentAndTabsStop) {
  // First line from 3, the others from 2; the right 1 of 14 stays free.
  const TextBlock block = layout("41 14|1 \\pi1,l2,r1;aaaa bbb cccc\\P\\pi0,l0,r0,t5,8;x^Iy^Iz^Iw");
  ASSERT_EQ(block.runs.size(), 6U);
  EXPECT_EQ(block.runs[0].x, 3);
  EXPECT_EQ(block.runs[0].text, L"aaaa bbb ");
  EXPECT_EQ(block.runs[1].x, 2);
  EXPECT_EQ(block.runs[1].text, L"cccc");
  EXPECT_EQ(block.runs[3].x, 5);
  EXPECT_EQ(block.runs[4].x, 8);
  EXPECT_EQ(block.runs[5].x, 12) << "behind the last stop every four heights";
  const TextBlock right = layout("41 12|1 \\pr2,qr;ab");
  EXPECT_EQ(right.runs[0].x, 8);
  // Nonsense is passed over.
  EXPECT_EQ(layout("1 \\pi1e300,l-5,t*,q;a").runs[0].x, 0);
}

TEST(Annotations, ColumnsGoOnSideBySide) {
  const std::string text = "41 4|71 1|1 a\\Pb\\Pc\\Pd|101 Embedded Object|70 1|40 4|41 3|71 1|72 3|44 4|45 2|73 0|74 0";
  const TextBlock block = layout(text);
  ASSERT_EQ(block.runs.size(), 4U);  // two lines fit into a height of 3
  EXPECT_EQ(block.runs[1].x, 0);
  EXPECT_EQ(block.runs[2].x, 6);
  EXPECT_EQ(block.runs[2].y, block.runs[0].y);
  EXPECT_EQ(block.runs[3].y, block.runs[1].y);
}

TEST(Annotations, ToleranceFrames) {
  tests::SmallDatabase db(tests::SmallDrawing().entity(
      "TOLERANCE", "3 STANDARD|10 5|20 5|11 0|21 1|1 {\\Fgdt;j}%%v0.1{\\Fgdt;m}%%vA%%v%%v^JB"));
  const AnnotationShape shape = readTolerance(db.at(0), unitWidth);
  ASSERT_EQ(shape.wires.size(), 4U) << "empty cells at the end have no frame";
  EXPECT_EQ(shape.texts[0].runs[0].text, L"\u2316");
  EXPECT_EQ(shape.texts[1].runs[0].text + shape.texts[1].runs[1].text, L"0.1\u24C2");
  const double h = 0.18;
  const Box box = planBox(shape);
  // Upwards: one, four and one letter with half a height on both sides; the second row to the right.
  EXPECT_NEAR(box.minY, 5, 1e-9);
  EXPECT_NEAR(box.maxY, 5 + h * (2 + 5 + 2), 1e-9);
  EXPECT_NEAR(box.minX, 5 - h, 1e-9);
  EXPECT_NEAR(box.maxX, 5 + 3 * h, 1e-9);
}

TEST(Annotations, DimensionsWithoutABlock) {
  struct Case {
    const char* tags;
    Box box;  // of the line work
    const wchar_t* text;
  };
  const double r = std::numbers::sqrt2 * 5;
  for (const Case& c : {Case{"70 0|10 0|20 3|13 1|23 0|14 7|24 1", {1, 0, 7, 3}, L"6.00"},
                        Case{"70 1|10 0|20 3|13 0|23 0|14 4|24 0|1 <> m", {0, 0, 4, 3}, L"4.00 m"},
                        Case{"70 4|10 5|20 5|15 10|25 5|42 5", {5, 5, 10, 5}, L"R5.00"},
                        Case{"70 3|10 5|20 5|15 10|25 5", {5, 5, 10, 5}, L"\u00D85.00"},
                        Case{"70 37|10 5|20 5|13 9|23 0|14 0|24 9|15 0|25 0", {0, 0, 9, 9}, L"90.00\u00B0"},
                        Case{"70 2|10 0|20 8|13 1|23 0|14 4|24 0|15 0|25 2|16 5|26 5", {0, 0, r, 8}, L"90.00\u00B0"}}) {
    tests::SmallDatabase db(tests::SmallDrawing().entity("DIMENSION", c.tags));
    const AnnotationShape shape = readDimension(db.at(0), 0, unitWidth);
    const Box box = planBox(shape);
    EXPECT_NEAR(box.minX, c.box.minX, 0.05) << c.tags;
    EXPECT_NEAR(box.minY, c.box.minY, 0.05) << c.tags;
    EXPECT_NEAR(box.maxX, c.box.maxX, 0.05) << c.tags;
    EXPECT_NEAR(box.maxY, c.box.maxY, 0.05) << c.tags;
    ASSERT_EQ(shape.texts.size(), 1U);
    EXPECT_EQ(shape.texts[0].runs[0].text, c.text);
  }
}

TEST(Annotations, KindsKnownByName) {
  tests::SmallDrawing drawing;
  drawing
      .entity("HELIX",
              "70 8|71 1|10 0|20 0|10 4|20 0|10 4|20 3|100 AcDbHelix|90 29|10 99|20 99|11 99|21 99|12 0|22 0|40 99")
      .entity("OLE2FRAME", "70 2|3 Document|10 2|20 9|11 8|21 4|71 1|90 0");
  tests::SmallDatabase db(drawing);
  for (const auto& [index, expected] : {std::pair{0, Box{0, 0, 4, 3}}, std::pair{1, Box{2, 4, 8, 9}}}) {
    EXPECT_TRUE(hasShape(db.at(static_cast<std::size_t>(index))));
    const Box box = entityExtents(db.at(static_cast<std::size_t>(index)));
    EXPECT_NEAR(box.minX, expected.minX, 1e-9);
    EXPECT_NEAR(box.maxX, expected.maxX, 1e-9);
    EXPECT_NEAR(box.maxY, expected.maxY, 1e-9);
  }
}

}  // namespace
}  // namespace host::geometry

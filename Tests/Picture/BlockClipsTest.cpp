// References cut to a boundary.
#include "Picture/Rendered.h"

namespace tests {
namespace {

/// Twelve numbers of a map as tags of a filter.
std::string matrix(const std::string& a, const std::string& b, const std::string& x, const std::string& c,
                   const std::string& d, const std::string& y) {
  return "|40 " + a + "|40 " + b + "|40 0|40 " + x + "|40 " + c + "|40 " + d + "|40 0|40 " + y + "|40 0|40 0|40 1|40 0";
}
const std::string kUnmoved = matrix("1", "0", "0", "0", "1", "0");

/// A block of a red square from 0, 0 to 10, 10, with its base point at 5, 5, referred to as `insert` says and cut.
SmallDrawing clipped(const std::string& points, const std::string& insert = "2 b|10 5|20 5",
                     const std::string& matrices = kUnmoved + kUnmoved, const std::string& on = "1",
                     const std::string& inverse = "") {
  SmallDrawing drawing;
  drawing.block("b", "10 5|20 5").entity("HATCH", solidBox(0, 0, 10, 10), "8 0|62 1");
  drawing.model().entity("INSERT", insert, "102 {ACAD_XDICTIONARY|360 90|102 }|8 0");
  drawing.objects("0 DICTIONARY|5 90|330 100|100 AcDbDictionary|3 ACAD_FILTER|360 91")
      .objects("0 DICTIONARY|5 91|330 90|100 AcDbDictionary|3 SPATIAL|360 92")
      .objects("0 SPATIAL_FILTER|5 92|102 {ACAD_XDICTIONARY|360 93|102 }|330 91|100 AcDbFilter|100 AcDbSpatialFilter|" +
               points + "|210 0|220 0|230 1|11 0|21 0|31 0|71 " + on + "|72 0|73 0" + matrices)
      .objects("0 DICTIONARY|5 93|330 92|100 AcDbDictionary|3 ACAD_XREC_ROUNDTRIP|360 94")
      .objects("0 XRECORD|5 94|330 93|100 AcDbXrecord|280 1" + inverse);
  return drawing;
}

/// Of a PNG; the reader of SVG in these tests knows no clips.
void expectPng(const SmallDrawing& drawing, const std::vector<std::pair<std::string, int>>& samples) {
  SmallDatabase db(drawing);
  const Rendered picture(db, twentyByTwenty(), PictureFormat::Png);
  for (const auto& [place, color] : samples) {
    double x = 0, y = 0;
    ASSERT_EQ(std::sscanf(place.c_str(), "%lf %lf", &x, &y), 2);
    EXPECT_EQ(picture.at(x, y), color) << place;
  }
}
constexpr int kRed = 0xFF0000, kWhite = 0xFFFFFF;

TEST(BlockClips, ShowTheInsideWhereTheReferenceIsNow) {
  const std::string triangle = "70 3|10 0|20 0|10 10|20 0|10 0|20 10";
  expectPng(clipped(triangle), {{"2 2", kRed}, {"7 7", kWhite}});
  expectPng(clipped(triangle, "2 b|10 5|20 5", kUnmoved + kUnmoved, "0"), {{"7 7", kRed}});
  // Two points are the corners of a rectangle.
  expectPng(clipped("70 2|10 4|20 6|10 1|20 1"), {{"2 2", kRed}, {"3.8 5.8", kRed}, {"5 2", kWhite}, {"2 7", kWhite}});
  // Moved, turned and made twice as large after it was cut.
  expectPng(clipped("70 2|10 0|20 0|10 2|20 10", "2 b|10 10|20 10|41 2|42 2|50 90"),
            {{"10 2", kRed}, {"2 3", kRed}, {"18 3.8", kRed}, {"10 5", kWhite}, {"10 17", kWhite}});
  // Cut where it stood 100 further right, in a plane turned by 90 degrees.
  expectPng(clipped("70 2|10 0|20 -105|10 3|20 -95", "2 b|10 5|20 5",
                    matrix("1", "0", "-95", "0", "1", "0") + matrix("0", "1", "0", "-1", "0", "0")),
            {{"5 1", kRed}, {"9 2", kRed}, {"5 4", kWhite}});
}

TEST(BlockClips, InvertedOnesHideTheInside) {
  const std::string inner =
      "|102 ACAD_INVERTEDCLIP_ROUNDTRIP|10 2|20 2|30 0|10 8|20 2|30 0|10 8|20 8|30 0|10 2|20 8|30 "
      "0|102 ACAD_INVERTEDCLIP_ROUNDTRIP_COMPARE|10 0|20 0|10 1|20 1|10 0|20 1";
  const SmallDrawing drawing =
      clipped("70 2|10 -1|20 -1|10 11|20 11", "2 b|10 5|20 5", kUnmoved + kUnmoved, "1", inner);
  expectPng(drawing, {{"1 1", kRed}, {"9 5", kRed}, {"5 9", kRed}, {"5 5", kWhite}, {"15 15", kWhite}});
  SmallDatabase db(drawing);
  const std::string svg = drawPicture(*db, twentyByTwenty(), PictureFormat::Svg)->bytes;
  EXPECT_NE(svg.find("<clipPath id=\"c0\">"), std::string::npos);
  EXPECT_NE(svg.find("clip-rule=\"evenodd\""), std::string::npos);
}

TEST(BlockClips, CutTheExtentsToo) {
  SmallDatabase db(clipped("70 2|10 0|20 0|10 2|20 4"));
  PictureOptions options;
  const auto made = drawPicture(*db, options, PictureFormat::Svg);
  ASSERT_TRUE(made.ok());
  EXPECT_LT(made->drawn.maxX - made->drawn.minX, 3);
  EXPECT_LT(made->drawn.maxY - made->drawn.minY, 5);
}

TEST(BlockClips, OnesThatCannotBeUsedAreToldAndCutNothing) {
  const std::string flat = matrix("0", "0", "0", "0", "0", "0");
  for (const SmallDrawing& drawing :
       {clipped("70 1|10 3|20 3"), clipped("70 0"), clipped("70 2|10 3|20 3|10 3|20 9"),
        clipped("70 3|10 0|20 0|10 5|20 5|10 9|20 9"), clipped("70 2|10 nan|20 1|10 4|20 1e300"),
        clipped("70 2|10 1|20 1|10 2|20 2", "2 b|10 5|20 5", flat + flat)}) {
    expectPng(drawing, {{"1 9", kRed}, {"9 1", kRed}});
    SmallDatabase db(drawing);
    EXPECT_EQ(toldOf(drawPicture(*db, twentyByTwenty(), PictureFormat::Svg)),
              "Blocks whose boundaries cannot be used are shown whole: 1.");
  }
}

TEST(BlockClips, WipeoutsShowFramesWhereTheDrawingPlotsThem) {
  for (const std::string flag : {"0", "1", "2"}) {
    SmallDrawing drawing;
    drawing.layer("0", "70 0|62 7")
        .entity("HATCH", solidBox(0, 0, 20, 20), "8 0|62 2")
        .entity("WIPEOUT", "10 5|20 5|11 10|21 0|12 0|22 10|13 1|23 1|71 1|91 2|14 -0.5|24 -0.5|14 0.5|24 0.5",
                "8 0|62 1|370 100")
        .objects("0 WIPEOUTVARIABLES|5 70|330 C|100 AcDbWipeoutVariables|70 " + flag);
    expectPng(drawing, {{"10 10", kWhite}, {"5 10", flag == "1" ? kRed : kWhite}, {"4 4", 0xFFFF00}});
  }
}

}  // namespace
}  // namespace tests

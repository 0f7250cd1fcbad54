#include <gtest/gtest.h>

#include "Picture/Painting/Dashes.h"
#include "Picture/Rendered.h"

namespace tests {
namespace {

TEST(Painting, FillsIslandsAndDrawOrder) {
  SmallDrawing drawing;
  drawing.entity(
      "HATCH",
      "10 0|20 0|30 0|210 0|220 0|230 1|2 SOLID|70 1|71 0|91 2|92 3|72 0|73 1|93 4|10 0|20 0|10 10|20 0|10 10|20 "
      "10|10 0|20 10|97 0|92 2|72 0|73 1|93 4|10 4|20 4|10 6|20 4|10 6|20 6|10 4|20 6|97 0|75 0|76 1|98 0",
      "8 0|62 1");
  drawing.entity("SOLID", "10 12|20 0|11 20|21 0|12 12|22 8|13 20|23 8", "8 0|62 3");
  drawing.entity("SOLID", "10 12|20 12|11 20|21 12|12 20|22 20", "8 0|420 1193046");  // a triangle
  drawing.entity("HATCH", solidBox(1, 1, 3, 3), "8 0|62 5");
  expectPixels(drawing, "8 8 ff0000|5 5 ffffff|16 4 00ff00|12.5 7.5 00ff00|18 13 123456|13 18 ffffff|2 2 0000ff");
  // The sort table gives the blue box the handle of the first entity: it moves to the bottom.
  drawing.modelRecord("102 {ACAD_XDICTIONARY|360 60|102 }")
      .objects("0 DICTIONARY|5 60|330 1F|100 AcDbDictionary|280 1|281 1|3 ACAD_SORTENTS|360 61")
      .objects("0 SORTENTSTABLE|5 61|330 60|100 AcDbSortentsTable|330 1F|331 103|5 100|331 100|5 103");
  expectPixels(drawing, "2 2 ff0000");
}

TEST(Painting, IslandStyles) {
  // Three squares in each other: normal fills rings one and three, outer the first, ignore everything.
  const auto nested = [](const char* style) {
    std::string tags = "10 0|20 0|30 0|210 0|220 0|230 1|2 SOLID|70 1|71 0|91 3";
    for (const auto& [a, b] : {std::pair{0, 20}, std::pair{4, 16}, std::pair{8, 12}}) {
      const std::string s = std::to_string(a), t = std::to_string(b);
      tags += "|92 3|72 0|73 1|93 4";
      for (const auto& [x, y] : {std::pair{&s, &s}, {&t, &s}, {&t, &t}, {&s, &t}})
        tags.append("|10 ").append(*x).append("|20 ").append(*y);
      tags += "|97 0";
    }
    return SmallDrawing().entity("HATCH", tags + "|75 " + style + "|76 1|98 0", "8 0|62 1");
  };
  expectPixels(nested("0"), "2 10 ff0000|6 10 ffffff|10 10 ff0000");
  expectPixels(nested("1"), "2 10 ff0000|6 10 ffffff|10 10 ffffff");
  expectPixels(nested("2"), "2 10 ff0000|6 10 ff0000|10 10 ff0000");
}

TEST(Painting, DeeplyNestedBlocksAreShownOrTold) {
  for (const int depth : {200, 300}) {
    SmallDrawing drawing;
    for (int i = 0; i < depth; ++i) {
      drawing.block("b" + std::to_string(i))
          .entity("INSERT", "2 b" + std::to_string(i + 1) + "|10 0|20 0")
          .entity("HATCH", solidBox(i == 100 ? 4 : 0, 0, i == 100 ? 6 : 2, 2), "8 0|62 1");
    }
    drawing.block("b" + std::to_string(depth)).entity("HATCH", solidBox(8, 0, 10, 2), "8 0|62 3");
    drawing.model().entity("INSERT", "2 b0|10 0|20 0");
    const bool isShown = depth == 200;
    expectPixels(drawing, std::string("1 1 ff0000|5 1 ff0000|9 1 ") + (isShown ? "00ff00" : "ffffff"));
    SmallDatabase db(drawing);
    EXPECT_EQ(toldOf(drawPicture(*db, twentyByTwenty(), PictureFormat::Svg)),
              isShown ? "" : "Blocks that are nested more than 256 deep are not shown.");
  }
}

TEST(Painting, ArraysWithoutEndAreCutShortAndTold) {
  SmallDrawing drawing;
  drawing.entity("HATCH", solidBox(0, 0, 2, 2), "8 0|62 1");
  drawing.block("nothing").block("many").entity("INSERT", "2 nothing|10 0|20 0|70 30000|71 30000|44 1|45 1");
  drawing.model().entity("INSERT", "2 many|10 0|20 0|70 30000|71 30000|44 1|45 1");
  drawing.entity("HATCH", solidBox(8, 8, 10, 10), "8 0|62 3");
  expectPixels(drawing, "1 1 ff0000|9 9 00ff00|5 5 ffffff");  // what stands in the model itself is all there
  SmallDatabase db(drawing);
  EXPECT_EQ(toldOf(drawPicture(*db, twentyByTwenty(), PictureFormat::Svg)),
            "The drawing repeats blocks so often that part of it was left out.");
}

TEST(Painting, ManyReferencesToLargeBlocksAreAllDrawn) {
  SmallDrawing drawing;
  drawing.block("*Paper_Space");
  drawing.block("nothing").block("large").entity("INSERT", "2 nothing|10 0|20 0|70 30|71 30|44 1|45 1");
  drawing.block("last").entity("HATCH", solidBox(8, 8, 10, 10), "8 0|62 3");
  drawing.model();
  for (int i = 0; i < 2500; ++i) drawing.entity("INSERT", "2 large|10 0|20 0");
  drawing.entity("INSERT", "2 last|10 0|20 0");
  // A sheet has all of the model, though only two entities of its own.
  drawing.entity("VIEWPORT", "10 10|20 10|40 30|41 20|68 1|69 1|12 10|22 10|16 0|26 0|36 1|45 20", "67 1|8 0");
  drawing.entity("VIEWPORT", "10 10|20 10|40 20|41 20|68 2|69 2|12 20|22 20|16 0|26 0|36 1|17 0|27 0|45 40|51 0",
                 "67 1|8 0");
  drawing.objects("0 DICTIONARY|5 1A|330 C|100 AcDbDictionary|281 1|3 Model|350 22|3 Sheet|350 59")
      .objects("0 LAYOUT|5 59|330 1A|100 AcDbPlotSettings|1 |100 AcDbLayout|1 Sheet|70 1|71 1|330 40000");
  expectPixels(drawing, "9 9 00ff00");
  PictureOptions options = twentyByTwenty();
  options.layout = "Sheet";
  expectPixels(drawing, "4.5 4.5 00ff00", options);
}

TEST(Painting, LayersAndBlocksGiveTheirColours) {
  SmallDrawing drawing;
  drawing.layer("0", "70 0|62 7")
      .layer("red", "70 0|62 1")
      .layer("own", "70 0|62 4|420 16711935")
      .layer("off", "70 0|62 -1")
      .layer("frozen", "70 1|62 1");
  drawing.block("squares")
      .entity("HATCH", solidBox(0, 0, 2, 2), "8 0")       // takes the layer of the reference
      .entity("HATCH", solidBox(2, 0, 4, 2), "8 0|62 0")  // takes its colour
      .entity("HATCH", solidBox(4, 0, 6, 2), "8 own")     // true colour of its own layer
      .entity("HATCH", solidBox(6, 0, 8, 2), "8 off")
      .entity("HATCH", solidBox(8, 0, 10, 2), "8 0|60 1");
  drawing.block("deep").entity("INSERT", "2 squares|10 0|20 0", "8 0|62 0");
  drawing.model()
      .entity("INSERT", "2 squares|10 0|20 0", "8 red|62 5")
      .entity("INSERT", "2 squares|10 0|20 4", "8 off|62 5")
      .entity("INSERT", "2 squares|10 0|20 8", "8 frozen|62 5")
      .entity("INSERT", "2 deep|10 0|20 12", "8 red|62 3")
      .entity("HATCH", solidBox(0, 16, 2, 18), "8 0");
  expectPixels(drawing,
               "1 1 ff0000|3 1 0000ff|5 1 ff00ff|7 1 ffffff|9 1 ffffff"  // layer 0, by block, own, off, invisible
               "|1 5 ffffff|3 5 ffffff|5 5 ff00ff"                       // reference on a layer that is off
               "|1 9 ffffff|3 9 ffffff|5 9 ffffff"                       // on a frozen one
               "|1 13 ff0000|3 13 00ff00|1 17 000000");                  // through two levels; colour 7 on white
  PictureOptions dark = twentyByTwenty();
  ASSERT_TRUE(setBackground(dark, "#102030"));
  expectPixels(drawing, "1 17 ffffff|15 15 102030|1 1 ff0000", dark);
  PictureOptions filtered = twentyByTwenty();
  filtered.layers = "r*,own";
  expectPixels(drawing, "1 17 ffffff|1 1 ff0000|5 1 ff00ff|5 9 ffffff", filtered);
  PictureOptions grey = twentyByTwenty();
  grey.colors = host::picture::ColorMode::Grayscale;
  expectPixels(drawing, "1 1 4c4c4c|3 13 969696", grey);
  PictureOptions mono = twentyByTwenty();
  mono.colors = host::picture::ColorMode::Monochrome;
  expectPixels(drawing, "1 1 c4c4c4|5 1 cdcdcd|1 17 000000|19 19 ffffff", mono);
}

TEST(Painting, ReferencesTurnMirrorAndRepeat) {
  SmallDrawing drawing;
  drawing.block("L", "10 1|20 0")
      .entity("SOLID", "10 1|20 0|11 4|21 0|12 1|22 1|13 4|23 1", "8 0|62 1")
      .entity("ATTDEF", "10 0|20 0|40 3|1 x|3 x|2 NEVER|70 0");
  drawing.model()
      .entity("INSERT", "2 L|10 5|20 2")
      .entity("INSERT", "2 L|10 5|20 6|41 -1")
      .entity("INSERT", "2 L|10 15|20 5|50 90")
      .entity("INSERT", "2 L|10 -10|20 10|210 0|220 0|230 -1")
      .entity("INSERT", "2 L|10 2|20 14|41 0.5|70 3|71 2|44 4|45 3");
  expectPixels(drawing,
               "6.5 2.5 ff0000|3.5 2.5 ffffff|3.5 6.5 ff0000|6.5 6.5 ffffff|14.5 6.5 ff0000|15.5 6.5 ffffff"
               "|8.5 10.5 ff0000|11.5 10.5 ffffff|2.5 14.5 ff0000|6.5 14.5 ff0000|10.5 17.5 ff0000|14.5 14.5 ffffff"
               "|8.5 14.5 ffffff");
}

TEST(Painting, WidthsLinetypesAndWipeouts) {
  SmallDrawing drawing;
  drawing.linetype("DASH2", "3 x|72 65|73 2|40 4|49 2|74 0|49 -2|74 0").layer("0", "70 0|62 7|6 Continuous");
  drawing.entity("LWPOLYLINE", "90 2|70 0|43 2|10 1|20 2|10 9|20 2", "8 0|62 1")
      .entity("LWPOLYLINE", "90 2|70 0|10 11|20 2|40 0|41 4|10 19|20 2", "8 0|62 1")
      // 18 long: end dashes of 2, so gaps at 3..5, 7..9 and so on.
      .entity("LINE", "10 1|20 6|11 19|21 6", "8 0|62 5|6 DASH2|370 200")
      // The same along three pieces: run through, and anew on every piece.
      .entity("LWPOLYLINE", "90 4|70 128|10 1|20 9|10 4|20 9|10 4|20 12|10 16|20 12", "8 0|62 3|6 DASH2|370 200")
      .entity("LWPOLYLINE", "90 3|70 0|10 1|20 14|10 4|20 14|10 19|20 14", "8 0|62 3|6 DASH2|370 200")
      .entity("HATCH", solidBox(1, 16, 19, 19), "8 0|62 2")
      .entity("WIPEOUT", "10 5|20 15|11 4|21 0|12 0|22 5|13 1|23 1|71 1|91 2|14 -0.5|24 -0.5|14 0.5|24 0.5");
  expectPixels(drawing,
               "5 2.8 ff0000|5 3.3 ffffff|5 1.2 ff0000|18.5 3.6 ff0000|12 3.6 ffffff|12 2.1 ff0000"
               "|2 6 0000ff|4 6 ffffff|6 6 0000ff|8 6 ffffff|18 6 0000ff"
               "|2 9 00ff00|3.9 9.1 ffffff|2 14 00ff00|3.5 14 00ff00|4.5 14 00ff00"
               "|3 18 ffff00|7 18 ffffff|11 18 ffff00");
}

TEST(Painting, DottedLinesEndAlike) {
  using host::geometry::Point;
  std::vector<double> dots;
  const auto take = [&](const std::vector<Point>& dot) {
    EXPECT_EQ(dot.size(), 1U);
    dots.push_back(dot.front().x);
  };
  host::picture::drawDashes({{0, 0}, {10, 0}}, false, {0, -3}, {-1, -1, 11, 1}, 100, take);
  EXPECT_EQ(dots, (std::vector<double>{0.5, 3.5, 6.5, 9.5}));
}

TEST(Painting, TransparencyMixesOnce) {
  // Half-transparent red over white and over blue; 0x0200007F is 127 of 255.
  SmallDrawing drawing;
  drawing.entity("HATCH", solidBox(0, 0, 10, 20), "8 0|62 5")
      .entity("HATCH", solidBox(5, 0, 15, 20), "8 0|62 1|440 33554559");
  SmallDatabase db(drawing);
  for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg}) {
    const Rendered picture(db, twentyByTwenty(), format);
    const auto near = [&](double x, int red, int green, int blue) {
      const int c = picture.at(x, 10);
      EXPECT_NEAR(c >> 16 & 255, red, 2);
      EXPECT_NEAR(c >> 8 & 255, green, 2);
      EXPECT_NEAR(c & 255, blue, 2);
    };
    near(12, 255, 128, 128);
    near(7, 127, 0, 128);
  }
}

TEST(Painting, DenseHatchesBecomeATint) {
  const auto lines = [](const char* step) {
    return SmallDrawing().entity(
        "HATCH", std::string("10 0|20 0|30 0|210 0|220 0|230 1|2 LINE|70 0|71 0|91 1|92 3|72 0|73 1|93 4|10 2|20 "
                             "2|10 18|20 2|10 18|20 18|10 2|20 18|97 0|75 0|76 1|52 0|41 1|77 0|78 1|53 0|43 "
                             "0|44 0|45 0|46 ") +
                     step + "|79 0|98 0");
  };
  for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg}) {
    SmallDatabase sparse(lines("4")), dense(lines("0.01")), endless(lines("0.000000001"));
    const Rendered four(sparse, twentyByTwenty(), format);
    EXPECT_NE(four.at(10, 12), 0xFFFFFF);
    EXPECT_EQ(four.at(10, 10), 0xFFFFFF);
    EXPECT_EQ(four.at(1, 12), 0xFFFFFF);
    for (SmallDatabase* db : {&dense, &endless}) {
      const Rendered tint(*db, twentyByTwenty(), format);
      EXPECT_NE(tint.at(10, 10), 0xFFFFFF);
      EXPECT_NE(tint.at(10, 10), 0x000000) << "light enough for what lies on it";
      EXPECT_EQ(tint.at(10, 10), tint.at(11, 13)) << "even";
      EXPECT_EQ(tint.at(1, 1), 0xFFFFFF);
    }
  }
}

TEST(Painting, TextsStandWhereTheyShould) {
  SmallDrawing drawing;
  drawing.entity("TEXT", "10 1|20 1|40 4|1 HHHH|41 1")
      .entity("TEXT", "10 19|20 7|40 4|1 F|71 2")
      .entity("MTEXT", "10 10|20 19|40 2|41 10|71 2|1 {\\C1;III} IIIII IIIII");
  SmallDatabase db(drawing);
  for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg}) {
    const Rendered picture(db, twentyByTwenty(), format);
    EXPECT_GT(picture.shareUnlike(0xFFFFFF, 1, 1, 14, 5), 0.2) << "letters";
    EXPECT_EQ(picture.shareUnlike(0xFFFFFF, 1, 5.1, 14, 6.5), 0) << "capitals are as high as the text";
    EXPECT_EQ(picture.shareUnlike(0xFFFFFF, 1, 0, 14, 0.9), 0);
    // A mirrored F: its stem stands right of its bars.
    EXPECT_GT(picture.shareUnlike(0xFFFFFF, 18, 7, 19, 11), picture.shareUnlike(0xFFFFFF, 16.5, 7, 17.5, 11));
    EXPECT_GT(picture.shareUnlike(0xFFFFFF, 5, 17, 15, 19), 0.1) << "first line";
    EXPECT_GT(picture.shareUnlike(0xFFFFFF, 5, 13.6, 15, 15.7), 0.05) << "wrapped line";
    EXPECT_EQ(picture.shareUnlike(0xFFFFFF, 0, 12.5, 4.5, 20), 0) << "within its width";
  }
}

TEST(Painting, MovingTheDrawingFarAwayChangesNothing) {
  const auto drawing = [](double east, double north) {
    const auto at = [&](double x, double y) {
      return "10 " + std::to_string(east + x) + "|20 " + std::to_string(north + y);
    };
    SmallDrawing d;
    d.entity("LWPOLYLINE", "90 3|70 1|43 0.5|" + at(1, 1) + "|42 0.4|" + at(19, 3) + "|" + at(9, 18), "8 0|62 1")
        .entity("CIRCLE", at(10, 8) + "|40 3", "8 0|62 5")
        .entity("TEXT", at(3, 3) + "|40 2|1 Kotka|50 20")
        .entity("INSERT", "2 B|" + at(12, 12) + "|41 -1|50 30");
    d.block("B").entity("HATCH", solidBox(0, 0, 3, 2), "8 0|62 3");
    return d;
  };
  SmallDatabase here(drawing(0, 0)), far(drawing(27496000, 6713000));
  PictureOptions there = twentyByTwenty();
  ASSERT_TRUE(setWindow(there, "27496000,6713000,27496020,6713020"));
  const Rendered a(here, twentyByTwenty(), PictureFormat::Png), b(far, there, PictureFormat::Png);
  int different = 0;
  for (int y = 0; y < 400; ++y)
    for (int x = 0; x < 400; ++x)
      if (std::abs(qRed(a.image().pixel(x, y)) - qRed(b.image().pixel(x, y))) > 8) ++different;
  EXPECT_EQ(different, 0);
}

TEST(Painting, ViewportsShowTheModel) {
  SmallDrawing drawing;
  drawing.layer("0", "70 0|62 7").layer("hidden", "70 0|62 7");
  drawing.entity("HATCH", solidBox(1000, 1000, 1010, 1010), "8 0|62 1")
      .entity("HATCH", solidBox(1020, 1000, 1030, 1010), "8 hidden|62 5");
  drawing.entity("HATCH", solidBox(930, 1000, 940, 1010), "8 0|62 3");  // outside the view
  drawing.block("*Paper_Space").model();
  // The sheet's own view, then a window 10 x 10 on paper that shows 100 x 100 around (1005, 1005) without layer
  // "hidden".
  drawing.entity("VIEWPORT", "10 10|20 10|40 30|41 20|68 1|69 1|12 10|22 10|16 0|26 0|36 1|45 20", "67 1|8 0");
  drawing.entity("VIEWPORT",
                 "10 10|20 10|40 10|41 8|68 2|69 2|12 1005|22 1005|16 0|26 0|36 1|17 0|27 0|45 80|51 0|331 101",
                 "67 1|8 0");
  drawing.objects("0 DICTIONARY|5 1A|330 C|100 AcDbDictionary|281 1|3 Model|350 22|3 Sheet|350 59")
      .objects("0 LAYOUT|5 59|330 1A|100 AcDbPlotSettings|1 |100 AcDbLayout|1 Sheet|70 1|71 1|330 40000");
  PictureOptions options = twentyByTwenty();
  options.layout = "Sheet";
  SmallDatabase db(drawing);
  ASSERT_GE(db->layouts().size(), 2U);
  expectPixels(drawing, "10 10 ff0000|12.2 10 ffffff|3 10 ffffff", options);
}

}  // namespace
}  // namespace tests

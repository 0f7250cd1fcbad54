// Looks that depend on more than one entity: gradients, dashes in blocks.
#include "Picture/Rendered.h"

namespace tests {
namespace {

std::string gradientBox(const std::string& form, const std::string& angle,
                        const std::string& rest = "461 0|452 0|462 1|453 2") {
  return "10 0|20 0|30 0|210 0|220 0|230 1|2 SOLID|70 1|71 0|91 1|92 3|72 0|73 1|93 4|10 0|20 0|10 20|20 0|10 20|20 "
         "20|10 0|20 20|97 0|75 0|76 1|98 0|450 1|451 0|460 " +
         angle + "|" + rest + "|463 0|63 1|421 16711680|463 1|63 5|421 255|470 " + form;
}

TEST(Fidelity, GradientsRunTheirWay) {
  const auto expectNear = [](const Rendered& picture, double x, double y, int red, int blue) {
    const int c = picture.at(x, y);
    EXPECT_NEAR(c >> 16 & 255, red, 12) << x << ", " << y;
    EXPECT_NEAR(c & 255, blue, 12) << x << ", " << y;
  };
  struct Case {
    const char* form;
    const char* angle;
    double x, y;
    int red, blue;  // there
    int middleRed;  // at 10, 10
  };
  for (const Case& c :
       {Case{"LINEAR", "0", 19.8, 3, 0, 255, 128}, Case{"LINEAR", "1.5707963267949", 3, 19.8, 0, 255, 128},
        Case{"LINEAR", "3.14159265358979", 0.2, 3, 0, 255, 128}, Case{"cylinder", "0", 19.8, 3, 255, 0, 0},
        Case{"INVCYLINDER", "0", 19.8, 3, 0, 255, 255}, Case{"SPHERICAL", "0", 0.2, 0.2, 255, 0, 0},
        Case{"INVSPHERICAL", "0.5", 10, 10, 255, 0, 255}, Case{"HEMISPHERICAL", "0", 10, 0.2, 0, 255, 114}}) {
    SmallDrawing drawing;
    drawing.entity("HATCH", gradientBox(c.form, c.angle), "8 0");
    SmallDatabase db(drawing);
    for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg}) {
      SCOPED_TRACE(std::string(c.form) + " " + c.angle);
      const Rendered picture(db, twentyByTwenty(), format);
      expectNear(picture, c.x, c.y, c.red, c.blue);
      expectNear(picture, 10, 10, c.middleRed, 255 - c.middleRed);
    }
  }
  // In grey and in one colour, and through a mirrored block.
  SmallDrawing drawing;
  drawing.block("b").entity("HATCH", gradientBox("LINEAR", "0"), "8 0");
  drawing.model().entity("INSERT", "2 b|10 20|20 0|41 -1", "8 0");
  SmallDatabase db(drawing);
  expectNear(Rendered(db, twentyByTwenty(), PictureFormat::Png), 19.8, 5, 255, 0);
  PictureOptions options = twentyByTwenty();
  options.colors = host::picture::ColorMode::Monochrome;
  expectNear(Rendered(db, options, PictureFormat::Png), 0.2, 15, 180, 180);
  expectNear(Rendered(db, options, PictureFormat::Png), 19.8, 15, 196, 196);
}

TEST(Fidelity, DashesGrowWithTheirBlocks) {
  SmallDrawing drawing;
  drawing.linetype("DASH", "3 x|72 65|73 2|40 2|49 1|74 0|49 -1|74 0").layer("0", "70 0|62 7|6 Continuous");
  drawing.block("b").entity("LINE", "10 0|20 0|11 9|21 0", "8 0|6 DASH|370 100");
  drawing.model()
      .entity("LINE", "10 1|20 2|11 19|21 2", "8 0|6 DASH|370 100")
      .entity("INSERT", "2 b|10 1|20 6|41 2|42 2|43 2", "8 0")
      .entity("INSERT", "2 b|10 1|20 10|41 -2|42 2|43 2|50 180", "8 0");
  // 18 long: dashes of 1, one and a half at the ends; 9 long in the block: dashes of 1, twice as large.
  expectPixels(
      drawing,
      "2 2 000000|3 2 ffffff|4 2 000000|2.5 6 000000|4 6 ffffff|6 6 000000|8 6 ffffff|2.5 10 000000|4 10 ffffff");
}

TEST(Fidelity, TextsAndShapesInLinetypes) {
  // Dash 2, a mark at the end of a gap of 1, a gap of 1: along 18 from 1 on, gaps at 3..5, 7..9 and so on.
  const std::string head = "3 x|72 65|73 3|40 4|49 2|74 0|49 -1|74 ", tail = "|46 0.6|50 0|44 -0.6|45 0|9 ";
  const auto marked = [&](const std::string& mark) {
    SmallDrawing drawing;
    drawing.linetype("MARK", head + mark + "|49 -1|74 0").layer("0", "70 0|62 7|6 Continuous");
    drawing.entity("LINE", "10 1|20 5|11 19|21 5", "8 0|6 MARK|370 0")
        .entity("LINE", "10 15|20 19|11 15|21 1", "8 0|6 MARK|370 0");
    return drawing;
  };
  SmallDatabase plain(marked("0")), boxes(marked("4|75 132|340 0|46 0.6|50 0|44 -0.6|45 0")),
      texts(marked("2|75 0|340 0" + tail + "I"));
  const Rendered none(plain, twentyByTwenty(), PictureFormat::Png), box(boxes, twentyByTwenty(), PictureFormat::Png),
      text(texts, twentyByTwenty(), PictureFormat::Svg);
  // The gap's middle is at 4: the box reaches from there by 0.6 both ways, a letter stands on the line.
  EXPECT_EQ(none.shareUnlike(0xFFFFFF, 3.2, 5.2, 4.8, 6), 0);
  EXPECT_GT(box.shareUnlike(0xFFFFFF, 3.5, 5.5, 4.5, 5.7), 0.3);
  EXPECT_GT(box.shareUnlike(0xFFFFFF, 3.5, 4.3, 4.5, 4.5), 0.3);
  EXPECT_GT(text.shareUnlike(0xFFFFFF, 3.2, 5.1, 4.2, 5.5), 0.02);
  EXPECT_EQ(text.shareUnlike(0xFFFFFF, 3.2, 4, 4.8, 4.9), 0);
}

TEST(Fidelity, ViewportsAreCutOutExactly) {
  SmallDrawing drawing;
  drawing.block("*Paper_Space").model();
  drawing.entity("CIRCLE", "10 10|20 10|40 5", "67 1|8 0|62 3")
      .entity("VIEWPORT", "10 10|20 10|40 10|41 10|68 2|69 2|12 5|22 5|16 0|26 0|36 1|45 20|90 65536|340 100",
              "67 1|8 0|62 1")
      .entity("HATCH", solidBox(-90, -90, 90, 90), "8 0|62 5");
  drawing.objects("0 DICTIONARY|5 1A|330 C|100 AcDbDictionary|281 1|3 Model|350 22|3 Sheet|350 59")
      .objects("0 LAYOUT|5 59|330 1A|100 AcDbPlotSettings|1 |72 1|100 AcDbLayout|1 Sheet|70 1|71 1|330 40000");
  SmallDatabase db(drawing);
  PictureOptions options = twentyByTwenty();
  options.layout = "Sheet";
  const Rendered picture(db, options, PictureFormat::Png);
  EXPECT_EQ(picture.at(10, 10), 0x0000FF);
  EXPECT_EQ(picture.at(14, 11), 0x0000FF);
  EXPECT_EQ(picture.at(14, 14), 0xFFFFFF) << "outside the circle";
  EXPECT_EQ(picture.at(15, 14.9), 0xFFFFFF) << "no frame";
  const std::string svg = drawPicture(*db, options, PictureFormat::Svg)->bytes;
  EXPECT_NE(svg.find("<clipPath id=\"c0\">"), std::string::npos);
  // Sheets measure millimetres whatever the model measures.
  options.window.reset();
  options.metresPerUnit = 1;
  options.scale = 1;
  const std::string pdf = drawPicture(*db, options, PictureFormat::Pdf)->bytes;
  double bottom = 0, right = 0, top = 0;
  ASSERT_EQ(std::sscanf(pdf.c_str() + pdf.find("/MediaBox"), "/MediaBox [0 %lf %lf %lf]", &bottom, &right, &top), 3);
  EXPECT_NEAR(right / 72 * 25.4, 10, 2);
  EXPECT_NEAR(top - bottom, right, 0.001);
}

}  // namespace
}  // namespace tests

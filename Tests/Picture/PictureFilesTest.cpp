#include <gtest/gtest.h>

#include "Picture/Rendered.h"

namespace tests {
namespace {

using host::picture::formatOfFile;

SmallDrawing oneOfMuch() {
  SmallDrawing drawing;
  drawing.layer("0", "70 0|62 7");
  drawing.entity("LINE", "10 0|20 0|11 10|21 0")
      .entity("CIRCLE", "10 5|20 5|40 4", "8 0|62 1")
      .entity("TEXT", "10 1|20 1|40 2|1 Teksti \\U+00E4")
      .entity("HATCH", solidBox(6, 6, 8, 8), "8 0|62 3|440 33554559");
  return drawing;
}

TEST(PictureFiles, SameInputGivesSameBytesWithoutDates) {
  for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg, PictureFormat::Pdf}) {
    SmallDatabase a(oneOfMuch()), b(oneOfMuch());
    PictureOptions options;
    ASSERT_TRUE(setPaper(options, "A4"));
    const host::Result<Picture> first = drawPicture(*a, options, format), second = drawPicture(*b, options, format);
    ASSERT_TRUE(first.ok()) << first.message();
    EXPECT_EQ(first->bytes, second->bytes);
    for (const char* word : {"CreationDate", "ModDate", "tIME", "/ID"})
      EXPECT_EQ(first->bytes.find(word), std::string::npos) << word;
  }
}

TEST(PictureFiles, PdfObjectTableIsRight) {
  SmallDatabase db(oneOfMuch());
  PictureOptions options;
  ASSERT_TRUE(setPaper(options, "A4-landscape"));
  const std::string pdf = drawPicture(*db, options, PictureFormat::Pdf)->bytes;
  const std::size_t table = std::stoul(pdf.substr(pdf.rfind("startxref\n") + 10));
  ASSERT_EQ(pdf.substr(table, 5), "xref\n");
  const std::size_t count = std::stoul(pdf.substr(table + 7));
  ASSERT_GT(count, 5U);
  std::size_t entry = pdf.find('\n', table + 5) + 1 + 20;  // the first entry is of no object
  for (std::size_t number = 1; number < count; ++number, entry += 20) {
    const std::size_t offset = std::stoul(pdf.substr(entry, 10));
    const std::string head = std::to_string(number) + " 0 obj";
    EXPECT_EQ(pdf.substr(offset, head.size()), head);
  }
  double bottom = 0, right = 0, top = 0;
  ASSERT_EQ(std::sscanf(pdf.c_str() + pdf.find("/MediaBox"), "/MediaBox [0 %lf %lf %lf]", &bottom, &right, &top), 3);
  EXPECT_NEAR(right, 297 * 72 / 25.4, 1e-3);
  EXPECT_NEAR(top - bottom, 210 * 72 / 25.4, 1e-3);
}

TEST(PictureFiles, PaperAndScaleAreTrueToSize) {
  // 100 m at 1:500 are 200 mm.
  SmallDatabase db(SmallDrawing().entity("LINE", "10 27496000|20 6713000|11 27496100|21 6713000", "8 0|62 1"));
  PictureOptions options;
  ASSERT_TRUE(setPaper(options, "A4"));
  ASSERT_TRUE(setScale(options, "1:500"));
  options.widthPx = 2970;
  const host::Result<Picture> svg = drawPicture(*db, options, PictureFormat::Svg);
  ASSERT_TRUE(svg.ok()) << svg.message();
  EXPECT_EQ(toldOf(svg), "");
  EXPECT_NE(svg->bytes.find("width=\"297mm\" height=\"210mm\""), std::string::npos) << svg->bytes.substr(0, 200);
  EXPECT_NEAR(svg->drawn.maxX - svg->drawn.minX, 297 * 0.5, 1e-6);
  for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg}) {
    const QImage image = Rendered(db, options, format).image();  // ten pixels for a millimetre
    int left = image.width(), right = 0;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x)
        if (qGreen(image.pixel(x, y)) < 128 && qAlpha(image.pixel(x, y)) > 0) {
          left = std::min(left, x);
          right = std::max(right, x);
        }
    EXPECT_NEAR(right - left, 2000, 6) << "width of the line's own ends included";
  }
}

TEST(PictureFiles, WhatDoesNotFitIsSaidWithThePaperThatWouldDo) {
  struct Case {
    const char *paper, *scale, *said;
  };
  SmallDatabase db(SmallDrawing().entity("LWPOLYLINE", "90 2|70 0|10 0|20 0|10 200|20 150"));
  for (const Case& c : {Case{"A4", "1:500",
                             "At 1:500 the drawing is 400 x 300 mm and does not fit on A4 landscape: 103 mm too "
                             "wide and 90 mm too high; A2 portrait would do."},
                        Case{"A4-portrait", "1:1000", ""},
                        Case{"A0", "1:100", "no paper up to A0 would do at this scale, A0 would at 1:179."}}) {
    PictureOptions options;
    ASSERT_TRUE(setPaper(options, c.paper));
    ASSERT_TRUE(setScale(options, c.scale));
    const host::Result<Picture> result = drawPicture(*db, options, PictureFormat::Svg);
    EXPECT_TRUE(result.ok());
    EXPECT_EQ(toldOf(result).empty(), std::string(c.said).empty());
    EXPECT_NE(toldOf(result).find(c.said), std::string::npos) << toldOf(result);
  }
}

TEST(PictureFiles, NeverBlankByAccident) {
  SmallDatabase db(SmallDrawing().layer("0", "70 0|62 7").entity("LINE", "10 0|20 0|11 10|21 5"));
  PictureOptions options;
  ASSERT_TRUE(setWindow(options, "100,100,200,150"));
  host::Result<Picture> result = drawPicture(*db, options, PictureFormat::Png);
  EXPECT_FALSE(result.ok());
  EXPECT_EQ(result.message(),
            "Nothing visible lies in the window (100, 100) - (200, 150); the drawing covers (0, 0) - (10, 5).");
  ASSERT_TRUE(setWindow(options, "0,4,1,5"));  // within the extents, but the line passes elsewhere
  EXPECT_FALSE(drawPicture(*db, options, PictureFormat::Pdf).ok());

  options = {};
  options.layers = "road*";
  EXPECT_EQ(drawPicture(*db, options, PictureFormat::Png).message(),
            "Layout \"Model\" has nothing visible on layers \"road*\" to draw.");
  options = {};
  options.layout = "A3";
  EXPECT_EQ(drawPicture(*db, options, PictureFormat::Png).message().find("There is no layout \"A3\""), 0U);
  SmallDatabase empty{SmallDrawing()};
  EXPECT_FALSE(drawPicture(*empty, {}, PictureFormat::Svg).ok());
}

/// Rows of a picture's middle column that are not white.
double darkShare(const QImage& image) {
  int dark = 0;
  for (int y = 0; y < image.height(); ++y) dark += qGreen(image.pixel(image.width() / 2, y)) < 128 ? 1 : 0;
  return static_cast<double>(dark) / image.height();
}

TEST(PictureFiles, WidthsOfLinesBelongToTheDrawing) {
  SmallDatabase db(SmallDrawing()
                       .entity("LINE", "10 0|20 5|11 20|21 5", "8 0|370 211")
                       .entity("LINE", "10 0|20 0|11 20|21 0")
                       .entity("LINE", "10 0|20 10|11 20|21 10"));
  PictureOptions options;
  ASSERT_TRUE(setWindow(options, "0,1,20,9"));
  std::vector<double> shares;
  for (const int width : {500, 1600, 4000}) {
    options.widthPx = width;
    for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg})
      shares.push_back(darkShare(Rendered(db, options, format).image()));
  }
  // The rendering of the vectors is a square.
  const double onSheet = 2.11 / 25.4 * 96 / 640;
  for (const double share : shares) EXPECT_NEAR(share, onSheet, 0.003);
}

TEST(PictureFiles, ResolutionOnPaperIsThatOfItsPixels) {
  SmallDatabase db(oneOfMuch());
  PictureOptions options;
  ASSERT_TRUE(setDpi(options, "200"));
  EXPECT_EQ(checkOptions(options).message(), "--dpi goes with --paper, --scale, --sheet or --layout");
  ASSERT_TRUE(setPaper(options, "A4-landscape"));
  EXPECT_TRUE(checkOptions(options));
  QImage image = Rendered(db, options, PictureFormat::Png).image();
  EXPECT_EQ(image.size(), QSize(2339, 1654));
  EXPECT_NEAR(image.dotsPerMeterX(), 200 / 0.0254, 1);
  options.paper.reset();
  ASSERT_TRUE(setScale(options, "1:100"));
  image = Rendered(db, options, PictureFormat::Png).image();
  EXPECT_NEAR(image.dotsPerMeterX(), 200 / 0.0254, 30);
  ASSERT_TRUE(setPaper(options, "A0"));
  ASSERT_TRUE(setDpi(options, "2400"));
  EXPECT_EQ(checkOptions(options).message(), "--dpi: at most 508 pixels per inch go on this paper");
  ASSERT_TRUE(setDpi(options, "508"));
  EXPECT_TRUE(checkOptions(options));
  options.widthPx = 500;
  EXPECT_EQ(checkOptions(options).message(), "--dpi excludes --width");
}

TEST(PictureFiles, StraysFarAwayDoNotShrinkThePlan) {
  SmallDrawing drawing;
  for (int i = 0; i < 60; ++i) drawing.entity("LINE", "10 1000|20 100" + std::to_string(i % 10) + "|11 1020|21 1000");
  drawing.entity("POINT", "10 0|20 0");
  SmallDatabase db(drawing);
  PictureOptions options;
  host::Result<Picture> result = drawPicture(*db, options, PictureFormat::Svg);
  EXPECT_GT(result->drawn.minX, 990);
  EXPECT_EQ(
      toldOf(result),
      "Far from the rest and left out: 1 of 61 entities. The picture shows (1000, 1000) - (1020, 1009), everything "
      "covers (0, 0) - (1020, 1009); --all takes them in.");
  options.showsAll = true;
  result = drawPicture(*db, options, PictureFormat::Svg);
  EXPECT_LT(result->drawn.minX, 0);
  EXPECT_EQ(toldOf(result), "");
}

TEST(PictureFiles, LayersThatAreNotPlottedAreLeftOutWithAndWithoutPaper) {
  SmallDrawing drawing;
  drawing.layer("0", "70 0|62 7").layer("help", "70 0|62 1|290 0").layer("Defpoints", "70 0|62 7");
  drawing.entity("LINE", "10 0|20 0|11 10|21 0")
      .entity("LINE", "10 0|20 0|11 10|21 50", "8 help")
      .entity("POINT", "10 50|20 0", "8 Defpoints");
  SmallDatabase db(drawing);
  for (const char* const paper : {"", "A4"}) {
    PictureOptions options;
    if (*paper != 0) {
      ASSERT_TRUE(setPaper(options, paper));
    }
    const host::Result<Picture> result = drawPicture(*db, options, PictureFormat::Svg);
    EXPECT_EQ(result->bytes.find("#ff0000"), std::string::npos);
    EXPECT_LT(result->drawn.maxX, 20);
    EXPECT_EQ(toldOf(result), "Left out, on layers that are not plotted (help): 1 entity.");
  }
}

TEST(PictureFiles, LayersAreOfAnyPatternGiven) {
  SmallDatabase db(SmallDrawing()
                       .entity("LINE", "10 0|20 0|11 10|21 0", "8 road|62 1")
                       .entity("LINE", "10 0|20 1|11 10|21 1", "8 yard|62 2")
                       .entity("LINE", "10 0|20 2|11 10|21 2", "8 wall|62 3"));
  PictureOptions options;
  ASSERT_TRUE(addLayers(options, "road"));
  ASSERT_TRUE(addLayers(options, "w*"));
  const std::string svg = drawPicture(*db, options, PictureFormat::Svg)->bytes;
  EXPECT_NE(svg.find("#ff0000"), std::string::npos);
  EXPECT_EQ(svg.find("#ffff00"), std::string::npos);
  EXPECT_NE(svg.find("#00ff00"), std::string::npos);
}

TEST(PictureFiles, HostileDrawingsEnd) {
  SmallDrawing drawing;
  drawing.linetype("FINE", "3 x|72 65|73 2|40 1e-9|49 5e-10|74 0|49 -5e-10|74 0");
  drawing.block("loop").entity("INSERT", "2 loop|10 1|20 1").entity("LINE", "10 0|20 0|11 1|21 1");
  drawing.block("many").entity("POINT", "10 0|20 0");
  drawing.model()
      .entity("INSERT", "2 loop|10 0|20 0")
      .entity("INSERT", "2 many|10 0|20 0|70 32767|71 32767|44 0.001|45 0.001")
      .entity("LINE", "10 -1e14|20 0|11 1e14|21 10", "8 0|6 FINE")
      .entity("CIRCLE", "10 0|20 0|40 1e14")
      .entity("XLINE", "10 5|20 5|11 1|21 1")
      .entity("MTEXT", "10 1e300|20 0|40 1|1 x")
      .entity("TEXT", "10 0|20 0|40 1e14|1 huge")
      .entity("LINE", "10 0|20 nan|11 1|21 inf");
  SmallDatabase db(drawing);
  // One that is drawn piece by piece takes days.
  const host::Result<Picture> result = drawPicture(*db, twentyByTwenty(), PictureFormat::Svg);
  EXPECT_TRUE(result.ok());
  EXPECT_NE(toldOf(result).find("part of it was left out"), std::string::npos) << toldOf(result);
}

TEST(PictureFiles, MoreTextThanVectorsCanHoldBecomesBars) {
  SmallDrawing drawing;
  drawing.model()
      .entity("TEXT", "10 0|20 0|40 1|1 first")
      .entity("TEXT", "10 0|20 5|40 1e-4|1 " + std::string(500'000, 'o'));
  SmallDatabase db(drawing);
  const host::Result<Picture> result = drawPicture(*db, {}, PictureFormat::Svg);
  EXPECT_TRUE(result.ok());
  EXPECT_NE(toldOf(result).find("shown as bars"), std::string::npos) << toldOf(result);
  EXPECT_LT(result->bytes.size(), 20'000U);
}

TEST(PictureOptions, TextsOfOptions) {
  struct Case {
    host::Result<> (*set)(PictureOptions&, std::string_view);
    std::vector<const char*> good, bad;
  };
  const Case cases[] = {
      {host::picture::setPaper, {"a3", "A3-Landscape", "594x420"}, {"A7", "A3-sideways", "0x100", ""}},
      {host::picture::setScale, {"1:500", "2:1"}, {"500", "1:0", "1:-5", "1:2:3", "1:5x"}},
      {host::picture::setWindow, {"0,0,1,1", "1,1,0,0"}, {"0,0,1", "0,0,0,1", "0,0,nan,1"}},
      {host::picture::setWidth, {"1600"}, {"0", "1e9", "12.5"}},
      {host::picture::setDpi, {"300", "72.5"}, {"0", "9999", "fine"}},
      {host::picture::setBackground, {"white", "#A0b0C0", "transparent"}, {"#12", "nocolour"}},
      {host::picture::setLineweights, {"off", "2.5"}, {"-1", "thick"}},
  };
  for (const Case& c : cases) {
    PictureOptions options;
    for (const char* const text : c.good) EXPECT_EQ(c.set(options, text).message(), "") << text;
    for (const char* const text : c.bad)
      EXPECT_NE(c.set(options, text).message().find("\"" + std::string(text) + "\""), std::string::npos) << text;
  }
  EXPECT_EQ(formatOfFile("plan.PNG"), PictureFormat::Png);
  EXPECT_EQ(formatOfFile("a.b/plan.svg"), PictureFormat::Svg);
  EXPECT_EQ(formatOfFile("plan.pdf"), PictureFormat::Pdf);
  EXPECT_FALSE(formatOfFile("png"));
}

}  // namespace
}  // namespace tests

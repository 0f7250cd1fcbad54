#include <gtest/gtest.h>

#include <QImageWriter>
#include <filesystem>

#include "Picture/Rendered.h"

namespace tests {
namespace {

/// Images of four quarters: red and green above, blue and yellow below.
class Images : public testing::Test {
 protected:
  Images() {
    QImage image(40, 20, QImage::Format_RGB32);
    for (int y = 0; y < 20; ++y)
      for (int x = 0; x < 40; ++x)
        image.setPixel(x, y, y < 10 ? (x < 20 ? 0xFFFF0000 : 0xFF00FF00) : (x < 20 ? 0xFF0000FF : 0xFFFFFF00));
    for (const char* const name : {"a.png", "a.jpg", "a.tif"}) {
      QImageWriter writer(QString::fromStdString((folder / name).string()));
      writer.setQuality(100);
      EXPECT_TRUE(writer.write(image)) << name;
    }
  }
  ~Images() override { std::filesystem::remove_all(folder); }

  /// The image with its lower left corner at 2, 2 and sides as given; more tags behind.
  static SmallDrawing drawing(const std::string& file, const std::string& sides, const std::string& more = "") {
    SmallDrawing made;
    made.layer("0", "70 0|62 7");
    made.entity("IMAGE", "90 0|10 2|20 2|30 0|" + sides + "|13 40|23 20|340 9F|70 7" + more)
        .objects("0 IMAGEDEF|5 9F|330 0|100 AcDbRasterImageDef|90 0|1 " + file + "|10 40|20 20|280 1|281 0");
    return made;
  }
  std::filesystem::path folder = [] {
    std::string name = (std::filesystem::temp_directory_path() / "tolmex-images-XXXXXX").string();
    return std::filesystem::path(::mkdtemp(name.data()));
  }();
  PictureOptions options = [this] {
    PictureOptions made = twentyByTwenty();
    made.drawingFolder = folder.string();
    return made;
  }();
  static constexpr const char* kUpright = "11 0.4|21 0|31 0|12 0|22 0.4|32 0";  // 16 by 8
};

bool isAbout(int color, int expected) {
  for (const int shift : {0, 8, 16})
    if (std::abs((color >> shift & 0xFF) - (expected >> shift & 0xFF)) > 12) return false;
  return color >= 0;
}

TEST_F(Images, EveryKindOfFileIsShownInEveryFormat) {
  for (const char* const file : {"a.png", ".\\a.jpg", "C:\\maps\\a.tif"})
    for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg}) {
      SmallDatabase db(drawing(file, kUpright));
      const Rendered picture(db, options, format);
      EXPECT_TRUE(isAbout(picture.at(4, 8), 0xFF0000)) << file << " " << std::hex << picture.at(4, 8);
      EXPECT_TRUE(isAbout(picture.at(16, 8), 0x00FF00)) << file;
      EXPECT_TRUE(isAbout(picture.at(4, 4), 0x0000FF)) << file;
      EXPECT_TRUE(isAbout(picture.at(16, 4), 0xFFFF00)) << file;
      EXPECT_TRUE(isAbout(picture.at(19, 8), 0xFFFFFF)) << file;
    }
  SmallDatabase db(drawing("a.jpg", kUpright));
  const host::Result<Picture> pdf = drawPicture(*db, options, PictureFormat::Pdf);
  EXPECT_NE(pdf->bytes.find("/Subtype /Image"), std::string::npos);
  EXPECT_EQ(toldOf(pdf), "");
}

TEST_F(Images, AreTurnedCutAndFaded) {
  for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg}) {
    // Turned by 90 degrees its upper side is at the left.
    SmallDatabase turned(drawing("a.png", "11 0|21 0.4|31 0|12 -0.4|22 0|32 0"));
    PictureOptions moved = options;
    ASSERT_TRUE(setWindow(moved, "-10,0,10,20"));
    const Rendered picture(turned, moved, format);
    EXPECT_TRUE(isAbout(picture.at(-4, 4), 0xFF0000));
    EXPECT_TRUE(isAbout(picture.at(-4, 16), 0x00FF00));
    EXPECT_TRUE(isAbout(picture.at(0, 4), 0x0000FF));
  }
  // The clip counts pixels from the upper left corner: only the lower left quarter is left. (The SVG reader of the
  // tests knows no clips.)
  SmallDatabase cut(drawing("a.png", kUpright, "|280 1|283 50|71 1|91 2|14 -0.5|24 9.5|14 19.5|24 19.5"));
  const Rendered part(cut, options, PictureFormat::Png);
  EXPECT_TRUE(isAbout(part.at(4, 4), 0x7F7FFF)) << std::hex << part.at(4, 4);
  EXPECT_TRUE(isAbout(part.at(4, 8), 0xFFFFFF));
  EXPECT_TRUE(isAbout(part.at(16, 4), 0xFFFFFF));
  const std::string svg = drawPicture(*cut, options, PictureFormat::Svg)->bytes;
  EXPECT_NE(svg.find("<g clip-path=\"url(#i0)\"><image"), std::string::npos);
  EXPECT_NE(svg.find("<clipPath id=\"i0\">"), std::string::npos);
  EXPECT_NE(svg.find("opacity=\"0.502\""), std::string::npos);
}

TEST_F(Images, WhatIsNotThereShowsItsFrameAndIsNamed) {
  SmallDatabase db(drawing("maps/none.jpg", kUpright));
  const host::Result<Picture> made = drawPicture(*db, options, PictureFormat::Png);
  EXPECT_EQ(toldOf(made), "Images that could not be read are shown as frames: maps/none.jpg.");
  const Rendered picture(db, options, PictureFormat::Png);
  EXPECT_NE(picture.at(10, 2.02), 0xFFFFFF);
  EXPECT_EQ(picture.at(10, 6), 0xFFFFFF);
}

TEST_F(Images, WorldFileSaysWhereThePixelsLie) {
  SmallDatabase db(drawing("a.png", kUpright));

  const host::Result<Picture> made = drawPicture(*db, options, PictureFormat::Png);
  EXPECT_EQ(worldFile(*made), "0.05\n0.0\n0.0\n-0.05\n0.025\n19.975\n");
}

}  // namespace
}  // namespace tests

#include <fstream>

#include "OwnFolder.h"
#include "Picture/Rendered.h"
#include "Picture/Sheets/PlotStyles.h"

namespace tests {
namespace {

/// The file around a text.
std::string ctb(const std::string& text, std::size_t cut = 0) {
  const QByteArray packed = qCompress(QByteArray::fromStdString(text)).mid(4);
  std::string file = "PIAFILEVERSION_2.0,CTBVER1,compress\r\npmzlibcodec";
  file.append(60 - file.size(), '\0');
  return file + std::string(packed.constData(), static_cast<std::size_t>(packed.size()) - cut);
}
std::string pen(int color, const std::string& values) {
  return " " + std::to_string(color - 1) + "{\n  name=\"Color_" + std::to_string(color) + "\n  " + values + " }\n";
}

class Plotting : public testing::Test {
 protected:
  void write(const std::string& name, const std::string& bytes) const {
    std::ofstream(folder.path / name, std::ios::binary) << bytes;
  }
  /// Boxes of the palette's colours 1 to 3, one of colour 1 by its layer, one of a true colour; lines below.
  static SmallDrawing drawing(const std::string& sheet, const std::string& flags = "32") {
    SmallDrawing made;
    made.layer("0", "70 0|62 7").layer("red", "70 0|62 1");
    made.block("b").entity("HATCH", solidBox(0, 16, 4, 20), "8 0|62 0");
    made.model();
    for (int i = 0; i < 3; ++i)
      made.entity("HATCH", solidBox(4 * i, 12, 4 * i + 4, 16), "8 0|62 " + std::to_string(i + 1));
    made.entity("HATCH", solidBox(12, 12, 16, 16), "8 red")
        .entity("HATCH", solidBox(16, 12, 20, 16), "8 0|62 1|420 16711680")
        .entity("INSERT", "2 b|10 0|20 0", "8 0|62 1")
        .entity("LINE", "10 1|20 5|11 19|21 5", "8 0|62 1|370 100")
        .entity("LINE", "10 1|20 2|11 19|21 2", "8 0|62 2|370 5");
    made.objects("0 DICTIONARY|5 1A|330 C|100 AcDbDictionary|281 1|3 Model|350 59")
        .objects("0 LAYOUT|5 59|330 1A|100 AcDbPlotSettings|1 |7 " + sheet + "|70 " + flags +
                 "|72 1|100 AcDbLayout|1 Model|70 1|71 0|330 1F");
    return made;
  }
  PictureOptions options() const {
    PictureOptions made = twentyByTwenty();
    made.drawingFolder = folder.path.string();
    return made;
  }
  std::string told(const SmallDrawing& of) const {
    SmallDatabase db(of);
    return toldOf(drawPicture(*db, options(), PictureFormat::Svg));
  }
  OwnFolder folder;
};

const std::string kTable = "description=\"pens\naci_table{\n 0=\"Color_1\n}\nplot_style{\n" +
                           // Blue by its true colour, wide; half of the yellow; grey, dashed.
                           pen(1, "color=-1006632706\n  mode_color=-1023409921\n  lineweight=3\n") +
                           pen(2, "color=-1\n  screen=50\n  color_policy=1\n  linetype=1\n") +
                           pen(3, "color=-1\n  color_policy=3\n  linetype=31\n  lineweight=0\n") +
                           "}\ncustom_lineweight_table{\n 0=0.05\n 1=0.1\n 2=2\n}\n";

TEST_F(Plotting, PensGiveColourScreenWidthAndDashes) {
  write("Pens.CTB", ctb(kTable));
  const SmallDrawing plan = drawing("C:\\plot styles\\pens.ctb");
  EXPECT_EQ(told(plan), "");
  expectPixels(plan,
               "2 14 0000ff|6 14 ffff7f|10 14 969696|14 14 0000ff|18 14 ff0000|2 18 0000ff"
               // Two millimetres wide on a picture that shows four as one.
               "|10 5.15 0000ff",
               options());
  SmallDatabase db(plan);
  const Rendered picture(db, options(), PictureFormat::Png);
  // Dashes of three millimetres on 400 pixels that are 420 wide.
  const double share =
      picture.shareUnlike(0xFFFFFF, 1, 1.98, 19, 2.07) + picture.shareUnlike(0xFFFFFF, 1, 1.93, 19, 2.02);
  EXPECT_GT(share, 0.4);
  EXPECT_LT(share, 1.8);
  EXPECT_EQ(told(drawing("pens.ctb", "0")), "");
  expectPixels(drawing("pens.ctb", "0"), "2 14 ff0000|6 14 ffff00", options());
}

TEST_F(Plotting, TablesThatCannotBeUsedAreToldOnce) {
  write("cut.ctb", ctb(kTable, 40));
  write("bomb.ctb", ctb(std::string(64U << 20U, 'x')));
  write("text.ctb", "plot_style{}");
  write("noise.ctb", ctb("").substr(0, 60) + "not compressed at all");
  write("empty.ctb", ctb("\n"));
  write("wild.ctb", ctb("}}}\nplot_style{\n" + pen(0, "screen=50\n") + pen(300, "screen=5\n") +
                        pen(1, "screen=-4000\n lineweight=99999999999\n linetype=-5\n color=\n") +
                        "custom_lineweight_table{\n -1=1\n 7=1e300\n 9999999=1\n" + std::string(100, '{') + "\n"));
  const auto refused = [&](const std::string& name, const std::string& why) {
    return "The plot styles of " + (folder.path / name).string() + " are not used: " + why + ".";
  };
  EXPECT_EQ(told(drawing("cut.ctb")), refused("cut.ctb", "it is cut off, or its content is larger than 4 megabytes"));
  EXPECT_EQ(told(drawing("bomb.ctb")), refused("bomb.ctb", "it is cut off, or its content is larger than 4 megabytes"));
  EXPECT_EQ(told(drawing("text.ctb")), refused("text.ctb", "it is no table of colour-dependent plot styles"));
  EXPECT_EQ(told(drawing("noise.ctb")), refused("noise.ctb", "it is damaged"));
  EXPECT_EQ(told(drawing("empty.ctb")), "");
  EXPECT_EQ(told(drawing("wild.ctb")), "");
  expectPixels(drawing("wild.ctb"), "2 14 ffffff|6 14 ffff00", options());
  EXPECT_EQ(told(drawing("../pens.ctb")),
            "The plot styles pens.ctb were not found; colours and lineweights are the drawing's own.");
  EXPECT_EQ(told(drawing("acad.ctb")), "");
  EXPECT_EQ(told(drawing("acad.stb")), "Named plot styles are not used: acad.stb.");
}

TEST_F(Plotting, OneColourLeavesAreasLight) {
  PictureOptions one = options();
  one.colors = host::picture::ColorMode::Monochrome;
  SmallDrawing plan = drawing("");
  plan.entity("SOLID", "10 6|20 6|11 10|21 6|12 6|22 10|13 10|23 10", "8 0|62 1")
      .entity("HATCH", solidBox(12, 6, 16, 10), "8 0|62 7")
      .entity("LWPOLYLINE", "90 2|70 0|43 1|10 17|20 8|10 20|20 8", "8 0|62 1");
  expectPixels(plan, "2 14 c4c4c4|6 14 f6f6f6|10 14 dcdcdc|8 8 c4c4c4|14 8 000000|18 8 000000|10 5 000000", one);
  ASSERT_TRUE(setBackground(one, "black"));
  expectPixels(plan, "2 14 191919|14 8 ffffff", one);
}

}  // namespace
}  // namespace tests

// Layouts on their own paper, and what pictures tell beside what they show: layers, titles, bookmarks, notes.
#include <gmock/gmock.h>

#include <QXmlStreamReader>
#include <array>
#include <map>
#include <regex>

#include "Picture/PdfFile.h"
#include "Picture/Rendered.h"

namespace tests {
namespace {

using host::picture::PlanFacts;
using testing::HasSubstr;

constexpr double kPixelsPerMm = 96 / 25.4;

/// Two layouts: "Sheet" with a line on its paper and a viewport that shows the model, "Empty" with nothing.
SmallDrawing twoLayouts(const std::string& plotSettings, const std::string& viewport = "") {
  SmallDrawing drawing;
  drawing.layer("0", "70 0|62 7").layer("road", "70 0|62 1").layer("grass", "70 0|62 3");
  drawing.block("*Paper_Space")
      .entity("LINE", "10 0|20 0|11 100|21 0", "67 1|8 0")
      .entity("VIEWPORT", viewport.empty() ? "10 10|20 20|40 0|41 0|68 0|69 2" : viewport, "67 1|8 0");
  drawing.block("*Paper_Space0").model();
  drawing.entity("LINE", "10 27496000|20 6713000|11 27496100|21 6713000", "8 road")
      .entity("LINE", "10 27496000|20 6713010|11 27496100|21 6713010", "8 grass");
  drawing.objects("0 DICTIONARY|5 1A|330 C|100 AcDbDictionary|281 1|3 Model|350 22|3 Sheet|350 59|3 Empty|350 5A")
      .objects("0 LAYOUT|5 59|330 1A|100 AcDbPlotSettings|1 |" + plotSettings +
               "|100 AcDbLayout|1 Sheet|70 1|71 1|330 40000")
      .objects("0 LAYOUT|5 5A|330 1A|100 AcDbPlotSettings|1 |72 1|100 AcDbLayout|1 Empty|70 1|71 2|330 40003");
  return drawing;
}

std::string drawn(SmallDatabase& db, const PictureOptions& options, PictureFormat format) {
  const host::Result<Picture> made = drawPicture(*db, options, format);
  EXPECT_TRUE(made.ok()) << made.message();
  return made.ok() ? made->bytes : std::string();
}

/// Where the lines of an SVG begin and how far they go to the right, millimetres of the paper from its upper left
/// corner.
std::vector<std::array<double, 3>> linesOf(const std::string& svg) {
  std::vector<std::array<double, 3>> lines;
  static const std::regex form("M([0-9.-]+) ([0-9.-]+)l([0-9.]+) 0(?=[M\"])");
  for (std::sregex_iterator at(svg.begin(), svg.end(), form), end; at != end; ++at)
    lines.push_back(
        {std::stod((*at)[1]) / kPixelsPerMm, std::stod((*at)[2]) / kPixelsPerMm, std::stod((*at)[3]) / kPixelsPerMm});
  return lines;
}

PictureOptions sheetOptions() {
  PictureOptions options;
  options.layout = "sheet";
  return options;
}

TEST(Layouts, LieOnTheirOwnPaperAsTheirPlotSettingsSay) {
  struct Case {
    const char* settings;
    double widthMm, heightMm, left, fromTop, length;  // of the line from (0, 0) to (100, 0)
  };
  // Margins: left 1, bottom 2, right 3, top 4.
  const std::string margins = "40 1|41 2|42 3|43 4|44 210|45 297|46 5|47 6|142 1|143 1|70 688|75 16";
  for (const Case& c : {Case{"72 1|73 0|74 5", 210, 297, 1 + 5, 297 - 2 - 6, 100},
                        Case{"72 1|73 1|74 5", 297, 210, 4 + 5, 210 - 1 - 6, 100},
                        Case{"72 1|73 2|74 5", 210, 297, 3 + 5, 297 - 4 - 6, 100},
                        Case{"72 1|73 3|74 5", 297, 210, 2 + 5, 210 - 3 - 6, 100},
                        // Inches and another scale; paper and margins stay millimetres.
                        Case{"72 0|73 0|74 5|142 1|143 2", 210, 297, 1 + 5, 297 - 2 - 6, 1270},
                        // A window comes to lie on the corner of the printable area.
                        Case{"72 1|73 0|74 4|48 -10|49 -20|140 90|141 30", 210, 297, 1 + 5 + 10, 297 - 2 - 6 - 20, 90},
                        // The same as large as it may be, in the middle.
                        Case{"72 1|73 0|74 4|70 20|75 0|48 -10|49 -20|140 93|141 30", 210, 297, 1 + 20,
                             297 - 2 - (291 - 100) / 2.0 - 40, 186}}) {
    SmallDatabase db(twoLayouts(margins + "|" + c.settings));
    const std::string svg = drawn(db, sheetOptions(), PictureFormat::Svg);
    EXPECT_THAT(svg, HasSubstr("width=\"" + std::to_string(static_cast<int>(c.widthMm)) + "mm\" height=\"" +
                               std::to_string(static_cast<int>(c.heightMm)) + "mm\""))
        << c.settings;
    const auto lines = linesOf(svg);
    ASSERT_EQ(lines.size(), 1U) << c.settings << svg;
    EXPECT_NEAR(lines[0][0], c.left, 0.01) << c.settings;
    EXPECT_NEAR(lines[0][1], c.fromTop, 0.01) << c.settings;
    // Lines end a rim behind the page's edge.
    EXPECT_NEAR(lines[0][2], std::min(c.length, c.widthMm - c.left), 1) << c.settings;
  }
}

TEST(Layouts, ViewportsShowTheModelAtTheirScale) {
  // 1:500, 120 x 100 mm of paper around the middle of the lines: 100 m are 200 mm, 60 m of them show.
  const std::string a3 = "40 0|41 0|42 0|43 0|44 297|45 420|72 1|73 1|74 5|142 1|143 1|70 688|75 16";
  SmallDatabase db(
      twoLayouts(a3, "10 200|20 150|40 120|41 100|68 2|69 2|12 50|22 0|17 27496000|27 6713000|16 0|26 0|36 1|45 50"));
  const std::string svg = drawn(db, sheetOptions(), PictureFormat::Svg);
  EXPECT_THAT(svg, HasSubstr("width=\"420mm\" height=\"297mm\""));
  const auto lines = linesOf(svg);
  ASSERT_EQ(lines.size(), 3U) << svg;
  EXPECT_NEAR(lines[1][0], 140, 0.5);
  EXPECT_NEAR(lines[1][1], 297 - 150, 0.01);
  EXPECT_NEAR(lines[1][2], 120, 1);
  EXPECT_NEAR(lines[1][1] - lines[2][1], 20, 0.01) << "10 m are 20 mm";
  // Layers of the model can be told apart in a viewport, too.
  for (const char* const layer : {"inkscape:label=\"road\"", "inkscape:label=\"grass\""})
    EXPECT_THAT(svg, HasSubstr(layer));
  // Switched off by its flags: the paper alone.
  SmallDatabase off(twoLayouts(
      a3, "10 200|20 150|40 120|41 100|68 2|69 2|12 50|22 0|17 27496000|27 6713000|16 0|26 0|36 1|45 50|90 131072"));
  EXPECT_EQ(linesOf(drawn(off, sheetOptions(), PictureFormat::Svg)).size(), 1U);
}

TEST(Layouts, AllOfThemAreThePagesOfOnePdf) {
  SmallDatabase db(twoLayouts("44 420|45 297|72 1|73 0|74 5|142 1|143 1"));
  PictureOptions options;
  options.layout = "*";
  const host::Result<Picture> made = drawPicture(*db, options, PictureFormat::Pdf);
  ASSERT_TRUE(made.ok()) << made.message();
  EXPECT_THAT(made->bytes, HasSubstr("/Count 1"));
  EXPECT_THAT(made->bytes, HasSubstr("/MediaBox [0 0 1190.5512 841.8898]"));
  EXPECT_EQ(toldOf(made), "Empty: Layout \"Empty\" has nothing visible to draw.");
  EXPECT_THAT(drawPicture(*db, options, PictureFormat::Png).message(), HasSubstr("goes with PDF only"));
  options.layout = "Plan";
  const host::Result<Picture> none = drawPicture(*db, options, PictureFormat::Pdf);
  EXPECT_EQ(none.message(), "There is no layout \"Plan\"; the drawing has Model, Sheet, Empty.");
  EXPECT_EQ(none.problem().status(), host::RunStatus::WrongUsage);
  // Without plot settings worth the name it is drawn as large as it is.
  SmallDatabase plain(twoLayouts("72 1"));
  EXPECT_THAT(drawn(plain, sheetOptions(), PictureFormat::Svg), HasSubstr("viewBox=\"0 0 1600 "));
}

std::string hexadecimal(const std::string& ascii) {
  std::string out = "<FEFF";
  char digits[8];
  for (const char c : ascii) {
    std::snprintf(digits, sizeof digits, "%04X", static_cast<unsigned char>(c));
    out += digits;
  }
  return out + ">";
}

std::size_t countOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST(PictureNotes, PdfHasTitleBookmarksAndASwitchForEachLayer) {
  SmallDrawing drawing;
  drawing.layer("road", "70 0|62 1").layer("grass", "70 0|62 3").layer("unused", "70 0|62 3");
  drawing.block("Tree").entity("CIRCLE", "10 0|20 0|40 1", "8 grass").model();
  drawing.entity("LINE", "10 0|20 0|11 10|21 0", "8 road")
      .entity("INSERT", "2 Tree|10 5|20 5", "8 road")
      .entity("LINE", "10 0|20 5|11 10|21 5", "8 road");
  SmallDatabase db(drawing);
  PictureOptions options;
  setDrawingFile(options, "plans/Koivukuja.dxf");
  const std::string pdf = drawn(db, options, PictureFormat::Pdf);
  EXPECT_EQ(countOf(pdf, "/Title " + hexadecimal("Koivukuja")), 2U) << "of the document and of the page's bookmark";
  EXPECT_EQ(countOf(pdf, "/Type /OCG"), 2U) << "of layers that show";
  EXPECT_THAT(pdf, HasSubstr("/Name " + hexadecimal("grass")));
  const std::string content = contentOf(pdf);
  EXPECT_EQ(countOf(content, "/OC "), 3U) << "road, the tree of grass, road";
  EXPECT_EQ(countOf(content, "EMC"), 3U);
  db->setHeaderText("$TITLE", 1, L"Koivukujan kaava");
  EXPECT_THAT(drawn(db, options, PictureFormat::Pdf), HasSubstr("/Title " + hexadecimal("Koivukujan kaava")));
}

/// Every text ends up where it says what it is, and nowhere else, whatever it consists of.
TEST(PictureNotes, TextsStayTexts) {
  const std::string wicked = "</script><b>\"&'@PLAN@ <!--";
  SmallDrawing drawing;
  drawing.layer("0", "70 0|62 7").layer(wicked, "70 0|62 1");
  drawing.entity("LINE", "10 0|20 0|11 10|21 0", "8 " + wicked)
      .entity("HATCH", solidBox(0, 2, 8, 8), "8 " + wicked)
      .entity("TEXT", "10 1|20 1|40 1|1 " + wicked, "8 0");
  SmallDatabase db(drawing);
  PlanFacts facts;
  facts.entities[db.at(0).handle] = {wicked + " \x01\xFF", wicked, true};
  facts.legend.push_back({L"</li><script>", L"]]>", db.at(1).handle});
  PictureOptions options;
  options.facts = &facts;
  options.title = "</title><i>";
  const std::string page = drawn(db, options, PictureFormat::Html), svg = drawn(db, options, PictureFormat::Svg);
  const std::string escaped = "&lt;/script&gt;&lt;b&gt;&quot;&amp;'@PLAN@ &lt;!--";
  EXPECT_THAT(page, HasSubstr("<title>&lt;/title&gt;&lt;i&gt;</title>"));
  EXPECT_THAT(page, HasSubstr("<g data-layer=\"" + escaped + "\">"));
  EXPECT_THAT(page, HasSubstr("<span>&lt;/li&gt;&lt;script&gt;</span>"));
  EXPECT_EQ(countOf(page, "<svg xmlns"), 2U) << "the plan and one row of the legend";
  EXPECT_EQ(countOf(page, "<script>"), 1U);
  EXPECT_EQ(countOf(page, "</script>"), 1U);
  const std::size_t begin = page.find("<svg xmlns");
  for (const std::string& xml : {svg, page.substr(begin, page.find("</svg>", begin) + 6 - begin)}) {
    QXmlStreamReader reader(QByteArray::fromStdString(xml));
    bool hasTitle = false;
    while (!reader.atEnd()) {
      reader.readNext();
      if (!reader.isStartElement() || reader.name() != u"title") continue;
      EXPECT_EQ(reader.readElementText().toStdString(), wicked + " \uFFFD");
      hasTitle = true;
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    EXPECT_TRUE(hasTitle);
  }
}

/// Names inside of the parts of a page are of one family: the parts must not use one another's gradients.
TEST(PictureNotes, PartsOfAPageShareNoNames) {
  SmallDrawing drawing;
  const std::string gradient =
      solidBox(0, 0, 8, 8) +
      "|450 1|451 0|460 0|461 0|452 0|462 0|453 2|463 0|63 5|421 255|463 1|63 2|421 16776960|470 LINEAR";
  drawing.entity("HATCH", gradient, "8 0").entity("HATCH", gradient, "8 0");
  SmallDatabase db(drawing);
  PlanFacts facts;
  facts.legend.push_back({L"Taivas", L"", db.at(0).handle});
  PictureOptions options;
  options.facts = &facts;
  const std::string page = drawn(db, options, PictureFormat::Html);
  std::map<std::string, int> names;
  static const std::regex form("<(?:linearGradient|clipPath)[^>]* id=\"([^\"]*)\"");
  for (std::sregex_iterator at(page.begin(), page.end(), form), end; at != end; ++at) ++names[(*at)[1]];
  EXPECT_EQ(names.size(), 3U);
  for (const auto& [name, count] : names) EXPECT_EQ(count, 1) << name;
}

}  // namespace
}  // namespace tests

// What a PDF says: texts that readers find over the outlines of letters.
#include <gmock/gmock.h>

#include <map>
#include <numbers>
#include <sstream>

#include "Picture/PdfFile.h"
#include "Picture/Rendered.h"
#include "Text/Text.h"

namespace tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// A text as a reader finds it: what it says, and where, in pixels of the picture.
struct Found {
  std::string text;
  double xx = 0, xy = 0, yx = 0, yy = 0, x = 0, y = 0, stretch = 1;
  std::string layer;  // the name by which the page calls it
  double length = 0;
};

std::map<unsigned, std::string> lettersOf(const std::string& pdf) {
  std::map<unsigned, std::string> letters;
  std::istringstream map(streamAt(pdf, "/ToUnicode"));
  for (std::string line; std::getline(map, line);) {
    unsigned code = 0, first = 0, second = 0;
    if (std::sscanf(line.c_str(), "<%4x> <%4x%4x>", &code, &first, &second) < 2 || line.find("FFFF") == 8) continue;
    const char32_t letter = second == 0 ? first : 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
    letters[code] = host::text::toUtf8(std::wstring(1, static_cast<wchar_t>(letter)));
  }
  return letters;
}

std::map<unsigned, double> widthsOf(const std::string& pdf) {
  std::map<unsigned, double> widths;
  const std::size_t at = pdf.find("/W [1 [");
  if (at == std::string::npos) return widths;
  std::istringstream figures(pdf.substr(at + 7, pdf.find(']', at) - at - 7));
  unsigned code = 0;
  for (double width = 0; figures >> width;) widths[++code] = width / 1000;
  return widths;
}

std::vector<Found> textsIn(const std::string& pdf, std::size_t from = 0) {
  const auto letters = lettersOf(pdf);
  const auto widths = widthsOf(pdf);
  std::vector<Found> texts;
  std::vector<double> saved;
  Found next;
  std::istringstream content(streamAt(pdf, "/Contents", from));
  for (std::string line; std::getline(content, line);) {
    if (line == "q") saved.push_back(next.stretch);
    if (line == "Q") {
      next.stretch = saved.back();
      saved.pop_back();
    }
    if (line.starts_with("/OC ")) next.layer = line.substr(4, line.find(" BDC") - 4);
    if (line == "EMC") next.layer.clear();
    if (line.ends_with(" Tz")) next.stretch = std::stod(line) / 100;
    if (line.ends_with(" Tm")) {
      const int read = std::sscanf(line.c_str(), "%lf %lf %lf %lf %lf %lf", &next.xx, &next.xy, &next.yx, &next.yy,
                                   &next.x, &next.y);
      EXPECT_EQ(read, 6) << line;
    }
    if (!line.ends_with(" Tj")) continue;
    next.text.clear();
    next.length = 0;
    for (std::size_t at = 1; line[at] != '>'; at += 4) {
      const auto code = static_cast<unsigned>(std::stoul(line.substr(at, 4), nullptr, 16));
      next.text += letters.at(code);
      next.length += widths.at(code) * next.stretch * std::hypot(next.xx, next.xy);
    }
    texts.push_back(next);
  }
  return texts;
}

std::string pdfOf(const SmallDrawing& drawing, const PictureOptions& options = twentyByTwenty()) {
  SmallDatabase db(drawing);
  const auto made = drawPicture(*db, options, PictureFormat::Pdf);
  EXPECT_TRUE(made.ok()) << made.message();
  return made.ok() ? made->bytes : std::string();
}

std::vector<std::string> wordsIn(const std::string& pdf, std::size_t from = 0) {
  std::vector<std::string> words;
  for (const Found& found : textsIn(pdf, from)) words.push_back(found.text);
  return words;
}

TEST(PdfText, SaysWhatIsWrittenInEveryScript) {
  SmallDrawing drawing;
  int y = 18;
  for (const char* const text : {"Leikkipuisto ÄÖå", "Красная", "\\U+5317\\U+4EAC", "a \xF0\x9F\x98\x80 b", "7%%d",
                                 "ab \\U+05D0\\U+05D1 12", "Leikki"})
    drawing.entity("TEXT", "10 1|20 " + std::to_string(y -= 2) + "|40 1|1 " + text);
  const std::string pdf = pdfOf(drawing);
  // Of what runs from the right readers expect the letters as they stand.
  EXPECT_THAT(wordsIn(pdf),
              ElementsAre("Leikkipuisto ÄÖå", "Красная", "北京", "a \xF0\x9F\x98\x80 b", "7°", "ab 12 בא", "Leikki"));
  std::size_t letters = 0;
  for (const auto& [code, letter] : lettersOf(pdf)) {
    EXPECT_EQ(code, ++letters);
    EXPECT_EQ(letter.find('z'), std::string::npos) << "used nowhere";
  }
}

TEST(PdfText, StandsOverItsLetters) {
  constexpr double kEm = 1 / 0.7;  // of capitals
  SmallDrawing drawing;
  drawing.entity("TEXT", "10 1|20 15|40 2|1 HELLO|41 2")
      .entity("TEXT", "10 5|20 2|40 1|1 UP|50 90")
      .entity("TEXT", "10 19|20 10|40 1|1 MIRROR|71 2")
      .entity("TEXT", "10 1|20 5|40 1|1 OVER|71 4")
      .entity("TEXT", "10 10|20 5|40 1|1 LEAN|51 45");
  const std::vector<Found> found = textsIn(pdfOf(drawing));
  ASSERT_EQ(found.size(), 5U);
  const auto expect = [](const Found& text, double x, double y, double angleRad, double size) {
    EXPECT_NEAR(text.x, x, 0.01) << text.text;
    EXPECT_NEAR(text.y, y, 0.01) << text.text;
    EXPECT_NEAR(std::atan2(-text.xy, text.xx), angleRad, 1e-3) << text.text;
    EXPECT_NEAR(-text.yy * std::cos(angleRad) - text.yx * std::sin(angleRad), size, 0.01) << text.text;
  };
  expect(found[0], 20, 100, 0, 40 * kEm);
  expect(found[1], 100, 360, std::numbers::pi / 2, 20 * kEm);
  // Mirrored either way it reads along its letters, and is no mirror image.
  EXPECT_NEAR(found[2].x + found[2].length, 380, 0.1);
  expect(found[2], found[2].x, 200, 0, 20 * kEm);
  EXPECT_NEAR(found[3].x - found[3].length, 20, 0.1);
  EXPECT_NEAR(found[3].xx, -20 * kEm, 0.01);
  EXPECT_NEAR(found[3].yy, 20 * kEm, 0.01);
  EXPECT_NEAR(found[4].yx, 20 * kEm, 0.01);
  // As wide as they are drawn.
  SmallDatabase db(drawing);
  const Rendered picture(db, twentyByTwenty(), PictureFormat::Png);
  const double end = (found[0].x + found[0].length) / 20;
  EXPECT_GT(picture.shareUnlike(0xFFFFFF, end - 1, 15, end, 17), 0);
  EXPECT_EQ(picture.shareUnlike(0xFFFFFF, end, 15, 20, 17), 0);
}

TEST(PdfText, StandsInItsLayerAndShowsNothing) {
  SmallDrawing drawing;
  drawing.layer("streets", "70 0|62 1").layer("lots", "70 0|62 3");
  drawing.entity("TEXT", "10 1|20 15|40 1|1 road", "8 streets")
      .entity("TEXT", "10 1|20 10|40 1|1 house", "8 lots")
      .entity("MTEXT", "10 1|20 8|40 1|41 9|71 1|1 one\\Ptwo", "8 streets");
  const std::string pdf = pdfOf(drawing);
  const std::vector<Found> found = textsIn(pdf);
  EXPECT_THAT(wordsIn(pdf), ElementsAre("road", "house", "one", "two"));
  EXPECT_NE(found[0].layer, "");
  EXPECT_NE(found[1].layer, found[0].layer);
  EXPECT_EQ(found[2].layer, found[0].layer);
  const std::string content = contentOf(pdf);
  EXPECT_LT(content.find(" 3 Tr\n"), content.find("BT\n"));
  EXPECT_EQ(content.rfind(" Tr\n"), content.find(" 3 Tr\n") + 2);
}

TEST(PdfText, IsThereOnlyWhereLettersShow) {
  SmallDrawing drawing;
  // Cut to a triangle: one text in it, one in its box alone; a third one beside the picture.
  drawing.block("b")
      .entity("TEXT", "10 1|20 1|40 1|1 in")
      .entity("TEXT", "10 8|20 8|40 1|1 behind")
      .entity("TEXT", "10 30|20 1|40 1|1 beside");
  drawing.model()
      .entity("INSERT", "2 b|10 0|20 0", "102 {ACAD_XDICTIONARY|360 90|102 }|8 0")
      .entity("TEXT", "10 1|20 15|40 1|1 after")
      .entity("TEXT", "10 30|20 15|40 1|1 outside");
  drawing.objects("0 DICTIONARY|5 90|330 100|100 AcDbDictionary|3 ACAD_FILTER|360 91")
      .objects("0 DICTIONARY|5 91|330 90|100 AcDbDictionary|3 SPATIAL|360 92")
      .objects(
          "0 SPATIAL_FILTER|5 92|330 91|100 AcDbFilter|100 AcDbSpatialFilter|70 3|10 0|20 0|10 12|20 0|10 0|20 12"
          "|210 0|220 0|230 1|11 0|21 0|31 0|71 1|72 0|73 0|40 1|40 0|40 0|40 0|40 0|40 1|40 0|40 0|40 0|40 0|40 1"
          "|40 0|40 1|40 0|40 0|40 0|40 0|40 1|40 0|40 0|40 0|40 0|40 1|40 0");
  EXPECT_THAT(wordsIn(pdfOf(drawing)), UnorderedElementsAre("in", "after"));
  SmallDrawing mute;
  mute.entity("LINE", "10 0|20 0|11 10|21 0").entity("TEXT", "10 30|20 15|40 1|1 outside");
  const std::string pdf = pdfOf(mute);
  EXPECT_THAT(wordsIn(pdf), IsEmpty());
  EXPECT_EQ(pdf.find("/Font"), std::string::npos);
}

TEST(PdfText, PagesShareOneFont) {
  SmallDrawing drawing;
  drawing.block("*Paper_Space").entity("TEXT", "10 10|20 20|40 5|1 alpha", "67 1|8 0");
  drawing.block("*Paper_Space0").entity("TEXT", "10 10|20 20|40 5|1 halpa", "67 1|8 0").model();
  drawing.objects("0 DICTIONARY|5 1A|330 C|100 AcDbDictionary|281 1|3 Model|350 22|3 A|350 59|3 B|350 5A")
      .objects("0 LAYOUT|5 59|330 1A|100 AcDbPlotSettings|1 |72 1|100 AcDbLayout|1 A|70 1|71 1|330 40000")
      .objects("0 LAYOUT|5 5A|330 1A|100 AcDbPlotSettings|1 |72 1|100 AcDbLayout|1 B|70 1|71 2|330 40003");
  PictureOptions options;
  options.layout = "*";
  const std::string pdf = pdfOf(drawing, options);
  const std::size_t second = pdf.find("/Contents ") + 1;
  EXPECT_THAT(wordsIn(pdf), ElementsAre("alpha"));
  EXPECT_THAT(wordsIn(pdf, second), ElementsAre("halpa"));
  EXPECT_EQ(pdf.find("/Type0"), pdf.rfind("/Type0"));
  EXPECT_EQ(lettersOf(pdf).size(), 4U);
}

/// Readers that check fonts find nothing wrong with this one (OpenType, "Font file" and the tables' chapters).
TEST(PdfText, FontIsWhole) {
  const std::string pdf = pdfOf(SmallDrawing().entity("TEXT", "10 1|20 15|40 1|1 abc"));
  const std::string font = streamAt(pdf, "/FontFile2");
  const auto number = [&font](std::size_t at, int bytes) {
    std::uint32_t value = 0;
    for (int i = 0; i < bytes; ++i) value = value << 8 | static_cast<unsigned char>(font.at(at++));
    return value;
  };
  std::uint32_t sum = 0;
  ASSERT_EQ(font.size() % 4, 0U);
  for (std::size_t at = 0; at < font.size(); at += 4) sum += number(at, 4);
  EXPECT_EQ(sum, 0xB1B0AFBAU);
  std::map<std::string, std::pair<std::uint32_t, std::uint32_t>> tables;  // place, length
  for (std::size_t i = 0; i < number(4, 2); ++i)
    tables[font.substr(12 + 16 * i, 4)] = {number(20 + 16 * i, 4), number(24 + 16 * i, 4)};
  ASSERT_EQ(tables.size(), 6U);
  for (const auto& [name, table] : tables) EXPECT_LE(table.first + table.second, font.size()) << name;
  constexpr std::uint32_t kGlyphs = 4;  // three letters, and the sign of a missing one
  EXPECT_EQ(number(tables["maxp"].first + 4, 2), kGlyphs);
  EXPECT_EQ(number(tables["hhea"].first + 34, 2), kGlyphs);
  EXPECT_EQ(tables["head"].second, 54U);
  EXPECT_EQ(tables["hmtx"].second, 4 * kGlyphs);
  EXPECT_EQ(tables["loca"].second, 2 * (kGlyphs + 1));
  EXPECT_EQ(number(tables["loca"].first + 2 * kGlyphs, 2) * 2, tables["glyf"].second);
  // The document says the same as the font.
  EXPECT_THAT(pdf, testing::HasSubstr("/Ascent 900 /Descent -220 /CapHeight 700 "));
  EXPECT_EQ(number(tables["hhea"].first + 4, 2), 900U);
  for (const auto& [code, width] : widthsOf(pdf)) EXPECT_EQ(number(tables["hmtx"].first + 4 * code, 2), width * 1000);
}

}  // namespace
}  // namespace tests

// Fonts that drawings name, letters that join, letters that no font has. fonts-liberation and librecad-data are there
// wherever tests run.
#include <thread>

#include "Geometry/TextLayout.h"
#include "Picture/Fonts/FontTable.h"
#include "Picture/Fonts/StrokeFont.h"
#include "Picture/FontsUsed.h"
#include "Picture/Glyphs.h"
#include "Picture/Rendered.h"

namespace tests {
namespace {

using host::geometry::fontFileNumber;
using host::geometry::fontName;
using host::geometry::fontNumber;
using host::picture::GlyphSource;
using host::picture::PlacedGlyph;

/// One text in a style of that font file and typeface.
SmallDrawing written(const std::string& text, const std::string& file, const std::string& typeface = "",
                     const std::string& flags = "0", const std::string& more = "") {
  SmallDrawing drawing;
  drawing.layer("0", "70 0|62 7");
  drawing.style("S", "70 0|40 0|41 1|50 0|3 " + file +
                         (typeface.empty() ? "" : "|1001 ACAD|1000 " + typeface + "|1071 " + flags));
  drawing.entity("TEXT", "10 1|20 8|40 4|1 " + text + "|7 S" + more);
  return drawing;
}
std::string svgOf(const SmallDrawing& drawing, std::string* told = nullptr) {
  SmallDatabase db(drawing);
  const auto made = drawPicture(*db, twentyByTwenty(), PictureFormat::Svg);
  EXPECT_TRUE(made.ok());
  if (told != nullptr) *told = toldOf(made);
  return made.ok() ? made->bytes : std::string();
}
std::size_t strokesIn(const std::string& svg) {
  std::size_t count = 0;
  for (std::size_t at = svg.find("<path d=\"M"); at != std::string::npos; at = svg.find('M', at + 1)) ++count;
  return svg.find("stroke=") == std::string::npos ? 0 : count;
}
std::string drawnWith(const std::string& file, const std::string& typeface = "") {
  SmallDatabase db(written("abc", file, typeface));
  const auto used = host::picture::fontsUsed(*db);
  return used.size() == 1 ? used[0].drawnWith : "not one font";
}

TEST(Fonts, StandInsHaveTheFormOfThoseThatAreNamed) {
  EXPECT_EQ(drawnWith("arial.ttf"), drawnWith("whatever", "Arial"));
  EXPECT_NE(drawnWith("arial.ttf"), "DejaVu Sans");
  EXPECT_NE(drawnWith("times.ttf"), drawnWith("arial.ttf"));
  EXPECT_EQ(drawnWith("C:\\Windows\\Fonts\\ARIAL.TTF"), drawnWith("arial.ttf"));
  EXPECT_EQ(drawnWith("txt"), "standard.lff");
  EXPECT_EQ(drawnWith("simplex.shx"), "simplex.lff");
  EXPECT_EQ(drawnWith("unheard-of.shx"), "standard.lff");
  for (const char* const odd : {"", "no such face.ttf", "../../etc/passwd.ttf", "a\"b'c.ttf", "<x>", "\x01\x02"})
    EXPECT_EQ(drawnWith(odd[0] == 0 ? "" : std::string(odd) + ".ttf"), "DejaVu Sans") << odd;
  SmallDatabase usual(SmallDrawing().style("STANDARD", "70 0|3 txt").entity("TEXT", "10 1|20 8|40 4|1 a"));
  EXPECT_EQ(host::picture::fontsUsed(*usual).at(0).drawnWith, "standard.lff") << "texts need not name it";
  // Widths of the stand-in are those of the font: an H of Arial is 1479 units wide, its capitals 1466 tall.
  GlyphSource glyphs;
  EXPECT_NEAR(glyphs.width(L"HH", {fontNumber(L"Arial")}), 2 * 1479.0 / 1466, 0.01);
  EXPECT_GT(glyphs.width(L"Hallo", {fontNumber(L"Arial"), true}), glyphs.width(L"Hallo", {fontNumber(L"Arial")}));
}

TEST(Fonts, NamesAreNumberedWithoutCaseAndFolder) {
  EXPECT_EQ(fontNumber(L"Arial"), fontNumber(L" @ARIAL "));
  EXPECT_EQ(fontName(fontFileNumber(L"X:/a\\b/Txt")), L"txt.shx");
  EXPECT_EQ(fontNumber(std::wstring(1000, L'x')), 0);
  EXPECT_EQ(fontNumber(L""), 0);
  EXPECT_EQ(fontName(65535), L"");
}

TEST(Fonts, BoldItalicAndStrokes) {
  constexpr const char *kBold = "33554432", *kItalic = "16777216";
  const std::string plain = svgOf(written("HIL", "arial.ttf", "Arial")),
                    bold = svgOf(written("HIL", "arial.ttf", "Arial", kBold)),
                    italic = svgOf(written("HIL", "arial.ttf", "Arial", kItalic));
  EXPECT_NE(plain, bold);
  EXPECT_NE(plain, italic);
  EXPECT_EQ(plain, svgOf(written("HIL", "arial.ttf", "Arial"))) << "the same bytes";
  EXPECT_EQ(strokesIn(plain), 0U);
  // H is three strokes, I one, L one line.
  EXPECT_GE(strokesIn(svgOf(written("HIL", "simplex.shx"))), 5U);
  // Leaning, as the name of the file says.
  EXPECT_NE(svgOf(written("HIL", "isocpeur.ttf")), svgOf(written("HIL", "isocpeui.ttf")));
  // The weight of the text is that of the strokes.
  SmallDatabase db(written("L", "simplex.shx", "", "0"));
  const Rendered picture(db, twentyByTwenty(), PictureFormat::Png);
  EXPECT_GT(picture.shareUnlike(0xFFFFFF, 0.5, 7.5, 5, 12.5), 0.01);
  EXPECT_EQ(picture.shareUnlike(0xFFFFFF, 1.5, 8.5, 5, 12), 0) << "an L is open there";
}

TEST(Fonts, StrokeFilesAreReadWithSuspicion) {
  const host::picture::StrokeFont font(
      "# LetterSpacing: 1.8\n[0041] A\n0,0;4.5,9;9,0\nnonsense\n1,2;x,y\n\n[zz]\n1,1;2,2\n[0042] B\nC0041\n0,0;0,9,A1\n"
      "[0043]\n0,0;1e300,5\n[00e4]\n0,0;1,1\n[00e5]\n0,0;1,1\n[00e6]\n0,0;1,1\n[00f6]\n0,0;2,2\n[FFFFFFFF]\n0,0;1,"
      "1\n[");
  const auto* const a = font.glyph(L'A');
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->strokes.size(), 1U);
  EXPECT_NEAR(a->advance, 1.2, 1e-12);
  const auto* const b = font.glyph(L'B');
  ASSERT_NE(b, nullptr);
  ASSERT_EQ(b->strokes.size(), 2U);
  double right = 0;
  for (const auto& p : b->strokes[1]) right = std::max(right, p.x);
  EXPECT_NEAR(right, 0.5, 1e-9) << "half a circle, to the right of a line that goes up";
  EXPECT_TRUE(font.glyph(L'C') == nullptr || font.glyph(L'C')->strokes.empty());
  EXPECT_EQ(font.glyph(L'\u00E4'), nullptr) << "one sign for several letters";
  EXPECT_NE(font.glyph(L'\u00F6'), nullptr);
}

TEST(Fonts, LettersJoinAndRunFromTheRight) {
  GlyphSource glyphs;
  std::vector<PlacedGlyph> placed, alone;
  // Beh three times: its first, middle and last form are three glyphs, and none is the one that stands alone.
  glyphs.layOut(L"\u0628\u0628\u0628", {}, placed);
  glyphs.layOut(L"\u0628", {}, alone);
  ASSERT_EQ(placed.size(), 3U);
  ASSERT_EQ(alone.size(), 1U);
  EXPECT_NE(placed[0].glyph, placed[2].glyph);
  EXPECT_NE(placed[1].glyph, placed[2].glyph);
  EXPECT_NE(placed[1].glyph, alone[0].glyph);
  // Hebrew in Latin text: aleph, the first of its word, stands at the right of it; the figures behind it
  // stand at its left and keep their direction.
  std::vector<PlacedGlyph> mixed, aleph, bet, one;
  glyphs.layOut(L"ab \u05D0\u05D1 12", {}, mixed);
  glyphs.layOut(L"\u05D0", {}, aleph);
  glyphs.layOut(L"\u05D1", {}, bet);
  glyphs.layOut(L"1", {}, one);
  ASSERT_EQ(mixed.size(), 8U);
  EXPECT_EQ(mixed[7].glyph, aleph[0].glyph);
  EXPECT_EQ(mixed[6].glyph, bet[0].glyph);
  EXPECT_EQ(mixed[3].glyph, one[0].glyph);
  EXPECT_FALSE(glyphs.leftUnshaped());
  // An accent that the font puts on the letter takes no room of its own.
  EXPECT_NEAR(glyphs.width(L"e\u0301", {}), glyphs.width(L"e", {}), 1e-9);
  EXPECT_NEAR(glyphs.width(L"a\u200Bb", {}), glyphs.width(L"ab", {}), 1e-9);
}

TEST(Fonts, MissingLettersAreNamed) {
  std::string told;
  svgOf(written("a\\U+0378b", "arial.ttf"), &told);
  EXPECT_EQ(told, "Letters that no font here has are shown as boxes: U+0378.");
  svgOf(written("\\U+0416\\U+03A9", "arial.ttf"), &told);
  EXPECT_EQ(told, "") << "Cyrillic and Greek";
  svgOf(written("\\U+0416\\U+00C5", "simplex.shx"), &told);
  EXPECT_EQ(told, "");
}

TEST(Fonts, VeryLongTextsEnd) {
  std::string text;
  for (int i = 0; i < 9'000; ++i) text += i % 3 == 0 ? "%%u" : i % 3 == 1 ? "\\U+05D0" : "b ";
  const std::string svg = svgOf(written(text, "arial.ttf"));
  EXPECT_NE(svg.find("<path"), std::string::npos);
}

TEST(Fonts, ThreadsShareThem) {
  std::vector<std::thread> threads;
  std::vector<double> widths(4);
  for (std::size_t i = 0; i < widths.size(); ++i)
    threads.emplace_back([&widths, i] {
      GlyphSource glyphs;
      for (const wchar_t* const name : {L"Arial", L"Times New Roman", L"romans.shx"})
        widths[i] += glyphs.width(L"Kerrosala \u0628\u0628 \u05D0 250 m\u00B2", {fontNumber(name), i % 2 == 0});
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(widths[0], widths[2]);
  EXPECT_EQ(widths[1], widths[3]);
}

}  // namespace
}  // namespace tests

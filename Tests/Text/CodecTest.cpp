#include <gtest/gtest.h>

#include <random>

#include "Text/Codec.h"
#include "Text/Text.h"

namespace host::text {
namespace {

const char* const kCodePages[] = {
    "ANSI_1250", "ANSI_1251", "ANSI_1252", "ANSI_1253", "ANSI_1254", "ANSI_1255", "ANSI_1256", "ANSI_1257", "ANSI_1258",
    "ANSI_874",  "ANSI_932",  "ANSI_936",  "ANSI_949",  "ANSI_950",  "ANSI_1361", "DOS437",    "DOS850",    "DOS852",
    "DOS855",    "DOS857",    "DOS860",    "DOS861",    "DOS862",    "DOS863",    "DOS864",    "DOS865",    "DOS866",
    "DOS869",    "DOS932",    "MACINTOSH", "BIG5",      "KSC5601",   "JOHAB",     "GB2312",    "ISO8859-1", "ISO8859-2",
    "ISO8859-3", "ISO8859-4", "ISO8859-5", "ISO8859-6", "ISO8859-7", "ISO8859-8", "ISO8859-9", "ASCII"};

bool isPlainText(const std::wstring& text) {
  return text.find(L'\xFFFD') == std::wstring::npos && text.find_first_of(L"\\^") == std::wstring::npos;
}

TEST(Codec, EveryCharacterOfEveryCodePageComesBack) {
  for (const char* name : kCodePages) {
    SCOPED_TRACE(name);
    const Codec codec = Codec::forCodePage(name);
    int characters = 0;
    const auto check = [&](const std::string& bytes) {
      const std::wstring text = codec.decode(bytes);
      if (!isPlainText(text)) return;
      ++characters;
      const std::string encoded = codec.encode(text);
      ASSERT_EQ(encoded.find("\\U+"), std::string::npos) << "encoded as " << encoded;
      ASSERT_EQ(codec.decode(encoded), text);
    };
    for (int lead = 0x80; lead < 0x100; ++lead) {
      check({static_cast<char>(lead)});
      for (int trail = 0x40; trail < 0x100; ++trail) check({static_cast<char>(lead), static_cast<char>(trail)});
    }
    EXPECT_GT(characters, 64);
  }
}

TEST(Codec, KnownCharactersOfCodePages) {
  const struct {
    const char* page;
    const char* bytes;
    const wchar_t* text;
  } kCases[] = {{"ANSI_1252", "Mets\xE4 \x80", L"Metsä €"},
                {"ansi_1252", "\xC5", L"Å"},
                {"no such page", "\xE4", L"ä"},
                {"", "\xE4", L"ä"},
                {"ANSI_1251", "\xCF\xEB\xE0\xED", L"План"},
                {"ANSI_1253", "\xC1", L"Α"},
                {"ANSI_874", "\xA1", L"ก"},
                {"DOS437", "\x8E", L"Ä"},
                {"dos850", "\x84", L"ä"},
                {"DOS866", "\x8F", L"П"},
                {"MACINTOSH", "\x8A", L"ä"},
                {"ISO8859-9", "\xFE", L"ş"},
                {"ANSI_932", "\x82\xA0\x95\x5C", L"あ表"},  // second byte of the last one is a backslash
                {"DOS932", "\xB1", L"ｱ"},
                {"ANSI_936", "\xB0\xA1", L"啊"},
                {"ANSI_949", "\xB0\xA1", L"가"},
                {"ANSI_950", "\xA4\x40\xA5\x5C", L"一功"},
                {"JOHAB", "\x88\x61\\P", L"가\\P"}};  // backslash stays one
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.page);
    const Codec codec = Codec::forCodePage(c.page);
    EXPECT_FALSE(codec.isUtf8());
    EXPECT_EQ(codec.decode(c.bytes), c.text);
    EXPECT_EQ(codec.encode(c.text), c.bytes);
  }
}

TEST(Codec, BrokenBytesLoseNothingElse) {
  EXPECT_EQ(Codec().decode("a\xE4"
                           "b\xC3\xA4 \xE2\x82"),
            L"a\xFFFD"
            L"bä \xFFFD");
  EXPECT_EQ(Codec().decode("\xC0\xAF\xED\xA0\x80\xF5z"), L"\xFFFD\xFFFD\xFFFD\xFFFD\xFFFD\xFFFDz");
  EXPECT_EQ(Codec::forCodePage("ANSI_932").decode("\x82!x\x82"), L"\xFFFD!x\xFFFD");
  // Windows keeps bytes without a meaning; so do they survive here.
  const Codec windows = Codec::forCodePage("ANSI_1252");
  EXPECT_EQ(windows.encode(windows.decode("\x81\x8D")), "\x81\x8D");
}

TEST(Codec, Escapes) {
  const struct {
    const char* bytes;
    const wchar_t* text;
  } kCases[] = {{"Mets\\U+00E4", L"Metsä"},
                {"\\u+20ac\\U+4E00", L"€一"},
                {"\\U+D83C\\U+DF33", L"🌳"},
                {"\\U+12", L"\\U+12"},
                {"\\U+00G4", L"\\U+00G4"},
                {"\\U+", L"\\U+"},
                {"\\P\\A1;", L"\\P\\A1;"},
                {"\\M+182A0", L"あ"},
                {"\\M+2A440", L"一"},
                {"\\M+3B0A1", L"가"},
                {"\\M+48861", L"가"},
                {"\\M+5B0A1", L"啊"},
                {"\\M+6B0A1", L"\\M+6B0A1"},
                {"\\M+1FFFF", L"\\M+1FFFF"},
                {"\\M+182A", L"\\M+182A"},
                {"a^Jb^M^Ic", L"a\nb\r\tc"},
                {"2^ 3^^ ", L"2^3\x1E "},
                {"x^", L"x^"},
                {"^a", L"^a"}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.bytes);
    for (const Codec& codec : {Codec(), Codec::forCodePage("ANSI_1252")}) {
      EXPECT_EQ(codec.decode(c.bytes), c.text);
      EXPECT_EQ(codec.decode(codec.encode(c.text)), c.text);
    }
  }
  EXPECT_EQ(Codec().encode(L"a\nb^"), "a^Jb^ ");
  EXPECT_EQ(Codec::forCodePage("ANSI_1252").encode(L"ä一🌳"), "\xE4\\U+4E00\\U+D83C\\U+DF33");
  const std::wstring nul(1, L'\0');
  EXPECT_EQ(Codec().decode(Codec().encode(nul)), nul);
  // Half a pair has no UTF-8 form, yet it must survive a round trip.
  const std::wstring half = Codec().decode("\\U+D83C");
  EXPECT_EQ(Codec().encode(half), "\\U+D83C");
}

TEST(Codec, RandomTextComesBack) {
  std::mt19937 random(20240607);
  const Codec codecs[] = {Codec(), Codec::forCodePage("ANSI_1252"), Codec::forCodePage("ANSI_949")};
  for (int round = 0; round < 2000; ++round) {
    std::wstring text;
    for (unsigned i = random() % 20; i > 0; --i) {
      const unsigned limit = random() % 3 == 0 ? 0x110000 : random() % 2 == 0 ? 0x80 : 0x800;
      const auto c = static_cast<wchar_t>(random() % limit);
      text += c >= 0xD800 && c <= 0xDFFF ? L'^' : c;
    }
    for (const Codec& codec : codecs) ASSERT_EQ(codec.decode(codec.encode(text)), text);
    ASSERT_EQ(fromUtf8(toUtf8(text)), text);
  }
}

}  // namespace
}  // namespace host::text

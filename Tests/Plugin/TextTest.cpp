// Words, numbers, decoding.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "OrvLib/DataStruct/Ordering.h"
#include "OrvLib/DataStruct/Text.h"

namespace OrvLib {
namespace {

using namespace std::string_literals;

TEST(Text, SplitsLinesAndWords) {
  EXPECT_EQ(lines(L"a\r\nb\n\nc\rd\n"), (std::vector<std::wstring>{L"a", L"b", L"", L"c", L"d"}));
  EXPECT_EQ(words(L" \t asfaltti\t 3 \u00a0x\r"), (std::vector<std::wstring_view>{L"asfaltti", L"3", L"x"}));
  EXPECT_TRUE(words(L" \t").empty());
}

TEST(Text, ReadsNumbersAsTheHostDoes) {
  EXPECT_EQ(leadingNumber(L" +2.5 m"), 2.5);
  EXPECT_EQ(leadingNumber(L"2,5"), 2);
  EXPECT_EQ(leadingNumber(L"-1e3x"), -1000);
  EXPECT_EQ(leadingNumber(L"3e"), 3);
  for (const wchar_t* text : {L"", L"x", L".", L"-", L"nan", L"inf", L"1e999"})
    EXPECT_EQ(leadingNumber(text), 0) << text;
  EXPECT_EQ(toInt(1e300), INT_MAX);
  EXPECT_EQ(toInt(-2.9), -2);
  EXPECT_EQ(toInt(std::nan("")), 0);
}

TEST(Ordering, PassesOverTheCaseOfFinnishLetters) {
  EXPECT_TRUE(equalsIgnoringCase(L"RÄYSTÄS-Ö_Å1", L"räystäs-ö_å1"));
  for (const wchar_t* other : {L"kaav", L"kaavaa", L"kaavä", L""}) EXPECT_FALSE(equalsIgnoringCase(L"KAAVA", other));
  // Of any two in this row, the first one comes before the other one.
  const std::wstring_view row[] = {L"", L"Kaava", L"kaavaa", L"kaavb", L"KAAW", L"kiva", L"Z", L"ä", L"Ö"};
  for (std::size_t i = 0; i < std::size(row); ++i) {
    for (std::size_t k = 0; k < std::size(row); ++k) {
      EXPECT_EQ(compareIgnoringCase(row[i], lowerCase(row[k])), std::weak_ordering(i <=> k)) << i << " " << k;
    }
  }
}

TEST(Text, WritesNumbersWithSixDigits) {
  EXPECT_EQ(formatNumber(2), L"2");
  EXPECT_EQ(formatNumber(0.1 + 0.2), L"0.3");
  EXPECT_EQ(formatNumber(1234567), L"1.23457e+06");
  EXPECT_EQ(formatNumber(-0.00001), L"-1e-05");
}

TEST(Text, DecodesEveryFormOfFile) {
  EXPECT_EQ(decodeText("Mets\xC3\xA4"), L"Metsä");
  EXPECT_EQ(decodeText("\xEF\xBB\xBFMets\xC3\xA4"), L"Metsä");
  EXPECT_EQ(decodeText("Mets\xE4"), L"Metsä");
  EXPECT_EQ(decodeText("\xFF\xFEM\0\xE4\0"s), L"Mä");
  EXPECT_EQ(decodeText("\xFE\xFF\0M\0\xE4"s), L"Mä");
  EXPECT_EQ(decodeText("\xF0\x9F\x8C\xB2"), L"\U0001F332");
  EXPECT_EQ(decodeText("\xFF\xFE\x3C\xD8\x32\xDF"s), L"\U0001F332");
  EXPECT_EQ(decodeText("\xEF\xBB\xBF\xC0\xAF\xED\xA0\x80"), L"\uFFFD\uFFFD");  // overlong, lone surrogate
  EXPECT_EQ(decodeText("\xFF\xFE\x3C\xD8"s), L"\uFFFD");
  const std::wstring all = L"a\u00e4\u20ac\U0001F332\t";
  EXPECT_EQ(decodeText(encodeUtf8(all)), all);
}

}  // namespace
}  // namespace OrvLib

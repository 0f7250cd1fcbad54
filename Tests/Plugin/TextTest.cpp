// Words, numbers, decoding, and the keys and values of extended data.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <deque>

#include "OrvLib/ARX/XData.h"
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

/// A chain whose items and texts live as long as it does.
class Chain {
 public:
  Chain& text(short code, const wchar_t* value) {
    texts_.emplace_back(value);
    item(code).resval.rstring = texts_.back().data();
    return *this;
  }
  Chain& real(double value) {
    item(1040).resval.rreal = value;
    return *this;
  }
  Chain& integer(short value) {
    item(1070).resval.rint = value;
    return *this;
  }
  const resbuf* get() const { return items_.empty() ? nullptr : &items_.front(); }

 private:
  resbuf& item(short code) {
    items_.push_back({nullptr, code, {}});
    if (items_.size() > 1) items_[items_.size() - 2].rbnext = &items_.back();
    return items_.back();
  }
  std::deque<resbuf> items_;
  std::deque<std::wstring> texts_;
};

std::optional<std::wstring> lookUp(const Chain& chain, const wchar_t* key) {
  return valueInChain(chain.get(), L"app", key);
}

TEST(ExtendedData, FindsTheItemAfterTheKeyWhateverItsCode) {
  Chain chain;
  chain.text(1001, L"app").text(1000, L"A").text(1000, L"B").text(1000, L"C").text(1005, L"2F");
  chain.text(1000, L"R").real(2.50).text(1000, L"I").integer(-7).text(1000, L"B").text(1000, L"second");
  EXPECT_EQ(lookUp(chain, L"A"), L"B");
  EXPECT_EQ(lookUp(chain, L"C"), L"2F");
  EXPECT_EQ(lookUp(chain, L"R"), L"2.5");
  EXPECT_EQ(lookUp(chain, L"I"), L"-7");
  EXPECT_EQ(lookUp(chain, L"B"), L"C");  // a value is a key as well: items are walked one by one, the first match wins
  EXPECT_EQ(lookUp(chain, L"a"), std::nullopt);
  EXPECT_EQ(lookUp(chain, L"second"), std::nullopt);
  EXPECT_EQ(valueInChain(chain.get(), L"other", L"A"), std::nullopt);
  EXPECT_EQ(valueInChain(nullptr, L"app", L"A"), std::nullopt);
}

TEST(ExtendedData, TakesBracesForNeitherKeysNorValues) {
  Chain chain;
  chain.text(1001, L"app").text(1002, L"{").text(1000, L"A").text(1002, L"}").text(1000, L"x");
  chain.text(1000, L"B").text(1002, L"{").text(1002, L"}");
  EXPECT_EQ(lookUp(chain, L"A"), L"x");
  EXPECT_EQ(lookUp(chain, L"B"), std::nullopt);
  EXPECT_EQ(lookUp(chain, L"{"), std::nullopt);
}

}  // namespace
}  // namespace OrvLib

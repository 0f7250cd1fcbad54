#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>

#include "Text/Text.h"

namespace host::text {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(Numbers, RealsAsDrawingsSpellThem) {
  const struct {
    const char* text;
    double value;
  } kCases[] = {{".5", 0.5},
                {"-0.000", -0.0},
                {"  \t12.5\r", 12.5},
                {"+1.0E+02", 100.0},
                {"5.", 5.0},
                {"1D3", 1000.0},
                {"-2.5d-1x", -0.25},
                {"1e", 1.0},
                {"2,5", 2.0},
                {"0x1F", 0.0},
                {"1e999", kInfinity},
                {"-1e999", -kInfinity},
                {"1e99999999999999999999", kInfinity},
                {"1e-99999999999999999999", 0.0},
                {"0.00000000000000000000000000001e-320", 0.0},
                {"4.9406564584124654e-324", 4.9406564584124654e-324},
                {"2.2250738585072011e-308", 2.2250738585072011e-308},
                {"1.7976931348623157e308", std::numeric_limits<double>::max()},
                {"25496000.123456789", 25496000.123456789},
                {"1.#INF", kInfinity}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.text);
    const auto value = parseReal(c.text);
    ASSERT_TRUE(value);
    EXPECT_EQ(*value, c.value);
    EXPECT_EQ(std::signbit(*value), std::signbit(c.value));
  }
  for (const char* none : {"", "   ", "x", "+", "-", "+-5", "--5", ".", "e5", "D3"})
    EXPECT_FALSE(parseReal(none)) << none;
  for (const char* nan : {"nan", "-nan", "1.#QNAN", "-1.#IND"})
    EXPECT_TRUE(std::isnan(parseReal(nan).value_or(0.0))) << nan;
  EXPECT_EQ(parseReal(std::string(400, '9')), kInfinity);
  EXPECT_EQ(parseReal("0." + std::string(400, '0') + "1"), 0.0);
}

TEST(Numbers, PlainRealsAreRoundedOnce) {
  std::mt19937_64 random(27);
  for (int i = 0; i < 20000; ++i) {
    std::string digits = std::to_string(random() >> (random() % 60));
    digits.insert(random() % (digits.size() + 1), ".");
    if (random() % 3 == 0) digits.insert(0, "-");
    ASSERT_EQ(parseReal(digits), std::strtod(digits.c_str(), nullptr)) << digits;
  }
  EXPECT_EQ(parseReal("9007199254740993"), 9007199254740992.0);
  EXPECT_EQ(parseReal("0.000000000000000001"), 1e-18);
}

TEST(Numbers, IntegersAndHandles) {
  constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
  constexpr auto kMin = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(parseInteger("   +70\r"), 70);
  EXPECT_EQ(parseInteger("-1.9"), -1);
  EXPECT_EQ(parseInteger("9223372036854775807"), kMax);
  EXPECT_EQ(parseInteger("99999999999999999999"), kMax);
  EXPECT_EQ(parseInteger("-99999999999999999999"), kMin);
  for (const char* none : {"", " ", "A", "+-3", "- 3"}) EXPECT_FALSE(parseInteger(none)) << none;

  EXPECT_EQ(parseHandle(" 2f"), 0x2FU);
  EXPECT_EQ(parseHandle("FFFFFFFFFFFFFFFF"), ~std::uint64_t{0});
  EXPECT_EQ(parseHandle("1FFFFFFFFFFFFFFFF"), 0U);
  EXPECT_EQ(parseHandle("-5"), 0U);
  EXPECT_EQ(parseHandle("xyz"), 0U);
  EXPECT_EQ(formatHandle(0), "0");
  EXPECT_EQ(formatHandle(0xABCDEF0123456789U), "ABCDEF0123456789");
}

TEST(Numbers, RealsReadBackTheSame) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 100000; ++i) {
    double value = 0.0;
    if (i % 2 == 0) {
      const std::uint64_t bits = random();
      std::memcpy(&value, &bits, sizeof value);
      if (!std::isfinite(value)) continue;
    } else {
      value = std::ldexp(static_cast<double>(random() >> 11), -30);
    }
    const std::string text = formatReal(value);
    ASSERT_NE(text.find_first_of(".e"), std::string::npos) << text;
    ASSERT_EQ(parseReal(text), value) << text;
  }
  for (const auto& [value, text] : {std::pair{1.0, "1.0"},
                                    {0.15, "0.15"},
                                    {-0.0, "-0.0"},
                                    {1e20, "1e+20"},
                                    {25496000.0, "25496000.0"},
                                    {5e-324, "5e-324"},
                                    {0.00002, "0.00002"}})
    EXPECT_EQ(formatReal(value), text);
}

TEST(Folding, NamesCompareWithoutCase) {
  EXPECT_TRUE(equalFolded(L"RAKENNUS_ÄÖÅ", L"rakennus_äöå"));
  EXPECT_TRUE(equalFolded(L"ΔΡΌΜΟΣ", L"δρόμος"));
  EXPECT_TRUE(equalFolded(L"ЁЛКА Ђ", L"ёлка ђ"));
  EXPECT_TRUE(equalFolded(L"ŠŽŸĹŁ", L"šžÿĺł"));
  EXPECT_FALSE(equalFolded(L"a×", L"a÷"));
  EXPECT_FALSE(equalFolded(L"ä", L"a"));
  EXPECT_FALSE(equalFolded(L"abc", L"ab"));
  // Folding twice changes nothing: otherwise a folded key would not be found again.
  for (int c = 1; c < 0x2200; ++c) {
    const std::wstring once = folded(std::wstring(1, static_cast<wchar_t>(c)));
    ASSERT_EQ(folded(once), once) << c;
  }
}

// "text pattern"
TEST(Wildcard, HostRules) {
  const auto matches = [](std::wstring_view both) {
    const std::size_t blank = both.find(L' ');
    return matchesWildcard(both.substr(0, blank), both.substr(blank + 1));
  };
  for (const wchar_t* const both : {L"RAKENNUS rakennus",
                                    L"RAKENNUS rak*",
                                    L"RAKENNUS *NUS",
                                    L"RAKENNUS *ken*",
                                    L" *",
                                    L" ",
                                    L"a1 @#",
                                    L"ä1 @#",
                                    L"a-b a.b",
                                    L"abc a?c",
                                    L"xbc ~a*",
                                    L"a~b a~b",
                                    L"b [abc]",
                                    L"B [a-c]",
                                    L"d [~a-c]",
                                    L"- [a-]",
                                    L"] []]",
                                    L"a,b a`,b",
                                    L"a* a`*",
                                    L"` `",
                                    L"[x [x",
                                    L"katu piha,katu",
                                    L"b [a,b]",
                                    L"katu ~katu,k*",
                                    L"tma_asf tm[av]_*",
                                    L"*U12 `*U#*",
                                    L"aab *a*b",
                                    L"abab a*ab",
                                    L"b [a,b"})
    EXPECT_TRUE(matches(both)) << toUtf8(both);
  for (const wchar_t* const both :
       {L"RAKENNUS rak", L"a ", L"1a @#", L"axb a.b", L"aäb a.b", L"ac a?c", L"abc ~a*", L"d [a-c]", L"a [~a-c]",
        L"b [a-]", L"ab a`*", L"katu piha,nurmi", L"*Ux `*U#*", L"[a,b [a,b"})
    EXPECT_FALSE(matches(both)) << toUtf8(both);
}

TEST(Printable, NothingThatATerminalObeysIsLeft) {
  EXPECT_EQ(printable(L"plan\x1b]0;x\x07\r\n\tä\x7f\x9b\x202e\x2028 \r"),
            L"plan^[]0;x^G\n\tä\\U+007F\\U+009B\\U+202E\\U+2028 ^M");
  EXPECT_EQ(printable("a\nb\xe4\x1b[2J", LineFeeds::Spelled), "a^Jb\xEF\xBF\xBD^[[2J");
  EXPECT_EQ(printable("a\nb \xC2\x9B", LineFeeds::Stay), "a\nb \\U+009B");
  for (unsigned c = 1; c < 0x3000; ++c) {
    const std::wstring text(1, static_cast<wchar_t>(c));
    const std::wstring once = printable(text);
    EXPECT_EQ(printable(once), once) << c;
    EXPECT_TRUE(once == text || once.find(text) == std::wstring::npos) << c;
  }
}

TEST(Wildcard, HostilePatternsEndSoon) {
  std::wstring stars;
  for (int i = 0; i < 200; ++i) stars += L"*a";
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(matchesWildcard(std::wstring(5000, L'a'), stars + L"b"));
  EXPECT_FALSE(matchesWildcard(std::wstring(2000, L'a'), std::wstring(2000, L'[')));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

}  // namespace
}  // namespace host::text

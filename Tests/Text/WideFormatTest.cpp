#include <gtest/gtest.h>
#include <share.h>
#include <tchar.h>

#include <clocale>
#include <cstdint>
#include <filesystem>
#include <limits>

#include "OwnFolder.h"
#include "Text/Text.h"
#include "Text/WideFormat.h"

namespace host::text {
namespace {

TEST(WideFormat, StringsAndCharacters) {
  EXPECT_EQ(formatWide(L"%s|%ls|%ws", L"Metsä", L"ä", L"ö"), L"Metsä|ä|ö");
  EXPECT_EQ(formatWide(L"%S|%hs|%lS", "Mets\xC3\xA4", "n", L"ö"), L"Metsä|n|ö");
  EXPECT_EQ(formatWide(L"%c%lc%C%hc", L'ä', L'ö', 'n', 'h'), L"äönh");
  EXPECT_EQ(formatWide(L"[%5s][%-5s][%.2s][%*.*s]", L"ab", L"ab", L"abc", -4, 1, L"xyz"), L"[   ab][ab   ][ab][x   ]");
  const wchar_t* none = nullptr;
  EXPECT_EQ(formatWide(L"%s %.3s", none, none), L"(null) (nu");
  // A precision bounds how far an unterminated text is read.
  const wchar_t open[] = {L'a', L'b'};
  const char openNarrow[] = {'c', 'd'};
  EXPECT_EQ(formatWide(L"%.2s%.2S", open, openNarrow), L"abcd");
  EXPECT_EQ(formatWide(nullptr, 1), L"");
}

TEST(WideFormat, Integers) {
  EXPECT_EQ(formatWide(L"%d %i %u %x %X %o %#x", -1, 2, 4000000000U, 255, 255, 8, 16),
            L"-1 2 4000000000 ff FF 10 0x10");
  EXPECT_EQ(formatWide(L"%ld percent %lu %s", static_cast<std::int32_t>(-7), std::uint32_t{4294967295U}, L"on"),
            L"-7 percent 4294967295 on");
  constexpr std::int64_t kLarge = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(formatWide(L"%I64d %lld %I64x %Id %zu", kLarge, kLarge, std::int64_t{-1}, std::ptrdiff_t{-3}, sizeof(int)),
            L"-9223372036854775808 -9223372036854775808 ffffffffffffffff -3 4");
  EXPECT_EQ(formatWide(L"%hd %hu %hhd %I32d", 65537, 65537, 257, -5), L"1 1 1 -5");
  EXPECT_EQ(formatWide(L"%05d|%-5d|%+d|% d|%.3d|%*d", 42, 42, 42, 42, 7, 4, 9), L"00042|42   |+42| 42|007|   9");
}

TEST(WideFormat, RealsWhateverTheLocale) {
  const auto check = [] {
    EXPECT_EQ(formatWide(L"%g %.3f %e %G %8.2f|%-8.1f|%#g", 0.1, 2.5, 12345.678, 1e-10, 3.14159, 2.0, 1.0),
              L"0.1 2.500 1.234568e+04 1E-10     3.14|2.0     |1.00000");
    EXPECT_EQ(formatWide(L"%a %Lf", 1.0, 0.5L), L"0x1p+0 0.500000");
    EXPECT_EQ(_wtof(L" 2.5"), 2.5);
  };
  check();
  // Only where such a locale is installed does this run differ from the first.
  const std::string before = std::setlocale(LC_ALL, nullptr);
  for (const char* name : {"fi_FI.UTF-8", "de_DE.UTF-8"}) {
    if (std::setlocale(LC_ALL, name) != nullptr) check();
  }
  std::setlocale(LC_ALL, before.c_str());
}

TEST(WideFormat, BrokenFormatsAreHarmless) {
  EXPECT_EQ(formatWide(L"100%% %y %5q %"), L"100% %y %5q %");
  EXPECT_EQ(formatWide(L"%-5"), L"%-5");
  int target = 5;
  EXPECT_EQ(formatWide(L"a%nb%d", &target, 3), L"ab3");
  EXPECT_EQ(target, 5);
  EXPECT_LT(formatWide(L"%999999999d%*s", 1, std::numeric_limits<int>::min(), L"x").size(), 1000000U);
  EXPECT_LT(formatWide(L"%.999999999f", 1e308).size(), 1000000U);
  EXPECT_EQ(formatWide(L"%p", reinterpret_cast<void*>(0xAB)), sizeof(void*) == 8 ? L"00000000000000AB" : L"000000AB");
}

TEST(Tchar, NumbersAndComparison) {
  EXPECT_EQ(_wtof(L"2,5"), 2.0);
  EXPECT_EQ(_wtof(L"\t-1.5e1 m"), -15.0);
  EXPECT_EQ(_wtof(L"٣"), 0.0);
  EXPECT_EQ(_wtof(nullptr), 0.0);
  EXPECT_EQ(_wtoi(L" 12abc"), 12);
  EXPECT_EQ(_wtoi(L"99999999999"), std::numeric_limits<int>::max());
  EXPECT_EQ(_wtoi(L"abc"), 0);
  EXPECT_EQ(_wcsicmp(L"PIHA-Ä", L"piha-ä"), 0);
  EXPECT_LT(_wcsicmp(L"ab", L"ABC"), 0);
  EXPECT_GT(_wcsicmp(L"b", L"A"), 0);
  EXPECT_EQ(_wcsnicmp(L"ABx", L"aby", 2), 0);
  EXPECT_NE(_wcsnicmp(L"ABx", L"aby", 3), 0);
}

TEST(Tchar, BoundedFormatting) {
  wchar_t buffer[6] = L"-----";
  EXPECT_EQ(_snwprintf(buffer, 6, L"%s", L"abcde"), 5);
  EXPECT_STREQ(buffer, L"abcde");
  EXPECT_EQ(_snwprintf(buffer, 5, L"%s", L"abcde"), -1);
  EXPECT_STREQ(buffer, L"abcd");
  EXPECT_EQ(_snwprintf(buffer, 0, L"x"), -1);
  EXPECT_STREQ(buffer, L"abcd");
}

TEST(Tchar, FilesWithWideNames) {
  const tests::OwnFolder own;
  const std::filesystem::path& folder = own.path;
  const std::wstring name = fromUtf8((folder / "v\xC3\xA4rit.ini").string());
  EXPECT_EQ(_wfsopen(name.c_str(), L"r", _SH_DENYNO), nullptr);
  EXPECT_EQ(_waccess(name.c_str(), 0), -1);
  std::FILE* file = _wfsopen(name.c_str(), L"wt, ccs=UTF-8", _SH_DENYNO);
  ASSERT_NE(file, nullptr);
  std::fputs("piha\t3\n", file);
  std::fclose(file);
  EXPECT_EQ(_waccess(name.c_str(), 6), 0);
  EXPECT_TRUE(std::filesystem::exists(folder / "v\xC3\xA4rit.ini"));
}

}  // namespace
}  // namespace host::text

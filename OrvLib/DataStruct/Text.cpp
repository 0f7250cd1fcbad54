#include "OrvLib/DataStruct/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cwchar>
#include <limits>
#include <system_error>

namespace OrvLib {
namespace {

// The C library's classification depends on the locale; this one does not.
bool isSpace(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r') || c == L'\u00a0' || c == L'\ufeff'; }

void appendCodePoint(std::wstring& text, std::uint32_t c) {
  if (std::numeric_limits<wchar_t>::digits <= 16 && c > 0xFFFF) {
    text += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
    text += static_cast<wchar_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
  } else {
    text += static_cast<wchar_t>(c);
  }
}

constexpr std::uint32_t kReplacement = 0xFFFD;
bool isSurrogate(std::uint32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

/// Answers whether all of it was valid UTF-8.
bool decodeUtf8(std::string_view bytes, std::wstring& text) {
  bool isValid = true;
  for (std::size_t i = 0; i < bytes.size();) {
    const auto lead = static_cast<unsigned char>(bytes[i++]);
    if (lead < 0x80) {
      text += static_cast<wchar_t>(lead);
      continue;
    }
    const int following = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    static constexpr std::uint32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
    std::uint32_t c = lead & (0x3Fu >> following);
    int read = 0;
    while (read < following && i < bytes.size() && (static_cast<unsigned char>(bytes[i]) & 0xC0) == 0x80) {
      c = (c << 6) | (static_cast<unsigned char>(bytes[i++]) & 0x3Fu);
      ++read;
    }
    const bool isGood = lead >= 0xC0 && lead < 0xF8 && read == following && c >= kSmallest[following] &&
                        c <= 0x10FFFF && !isSurrogate(c);
    isValid = isValid && isGood;
    appendCodePoint(text, isGood ? c : kReplacement);
  }
  return isValid;
}

std::wstring decodeUtf16(std::string_view bytes, bool bigEndian) {
  const auto unit = [&](std::size_t i) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    return static_cast<std::uint32_t>(bigEndian ? first << 8 | second : second << 8 | first);
  };
  std::wstring text;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const std::uint32_t c = unit(i);
    if (!isSurrogate(c)) {
      appendCodePoint(text, c);
    } else if (c < 0xDC00 && i + 3 < bytes.size() && unit(i + 2) >= 0xDC00 && unit(i + 2) <= 0xDFFF) {
      appendCodePoint(text, 0x10000 + ((c - 0xD800) << 10) + (unit(i + 2) - 0xDC00));
      i += 2;
    } else {
      appendCodePoint(text, kReplacement);
    }
  }
  return text;
}

}  // namespace

std::vector<std::wstring_view> words(std::wstring_view line) {
  std::vector<std::wstring_view> found;
  auto at = line.begin();
  while ((at = std::find_if_not(at, line.end(), isSpace)) != line.end()) {
    const auto end = std::find_if(at, line.end(), isSpace);
    found.push_back(line.substr(static_cast<std::size_t>(at - line.begin()), static_cast<std::size_t>(end - at)));
    at = end;
  }
  return found;
}

std::vector<std::wstring> lines(std::wstring_view text) {
  std::vector<std::wstring> found;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(L"\r\n"), text.size());
    found.emplace_back(text.substr(0, end));
    const bool isPair = text.substr(end, 2) == L"\r\n";
    text.remove_prefix(std::min(text.size(), end + (isPair ? 2 : 1)));
  }
  return found;
}

wchar_t lowerCase(wchar_t letter) {
  const bool isCapital = (letter >= L'A' && letter <= L'Z') || letter == L'\u00c4' /* Ä */ ||
                         letter == L'\u00c5' /* Å */ || letter == L'\u00d6' /* Ö */;
  return isCapital ? static_cast<wchar_t>(letter + 0x20) : letter;
}

std::wstring lowerCase(std::wstring_view text) {
  std::wstring lower(text);
  for (wchar_t& letter : lower) letter = lowerCase(letter);
  return lower;
}

double leadingNumber(std::wstring_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  if (!text.empty() && text.front() == L'+') text.remove_prefix(1);
  std::string narrow;
  for (const wchar_t c : text) {
    const bool isPart = (c >= L'0' && c <= L'9') || c == L'.' || c == L'-' || c == L'+' || c == L'e' || c == L'E';
    if (!isPart) break;
    narrow += static_cast<char>(c);
  }
  double value = 0;
  const auto result = std::from_chars(narrow.data(), narrow.data() + narrow.size(), value);
  return result.ec == std::errc() ? value : 0;
}

int toInt(double value) {
  using Limits = std::numeric_limits<int>;
  if (std::isnan(value)) return 0;
  return static_cast<int>(std::clamp(value, static_cast<double>(Limits::min()), static_cast<double>(Limits::max())));
}

std::wstring formatNumber(double value) {
  char text[32];
  const auto result = std::to_chars(std::begin(text), std::end(text), value, std::chars_format::general, 6);
  return {std::begin(text), result.ptr};
}

std::wstring decodeText(std::string_view bytes) {
  using namespace std::string_view_literals;
  if (bytes.starts_with("\xFF\xFE"sv)) return decodeUtf16(bytes.substr(2), false);
  if (bytes.starts_with("\xFE\xFF"sv)) return decodeUtf16(bytes.substr(2), true);
  const bool hasMark = bytes.starts_with("\xEF\xBB\xBF"sv);
  std::wstring text;
  if (decodeUtf8(hasMark ? bytes.substr(3) : bytes, text) || hasMark) return text;
  text.clear();
  for (const char c : bytes) text += static_cast<wchar_t>(static_cast<unsigned char>(c));
  return text;
}

std::string encodeUtf8(std::wstring_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto c = static_cast<char32_t>(text[i]);
    if (c >= 0xD800 && c < 0xDC00 && i + 1 < text.size()) {  // a pair, where wide characters have 16 bits
      c = 0x10000 + ((c - 0xD800) << 10) + (static_cast<char32_t>(text[++i]) - 0xDC00);
    }
    const unsigned following = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    static constexpr char32_t kLead[] = {0, 0xC0, 0xE0, 0xF0};
    bytes += static_cast<char>(kLead[following] | (c >> (6 * following)));
    for (unsigned left = following; left > 0; --left) {
      bytes += static_cast<char>(0x80 | ((c >> (6 * (left - 1))) & 0x3F));
    }
  }
  return bytes;
}

}  // namespace OrvLib

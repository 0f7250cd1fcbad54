#include "Codec.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "Characters.h"
#include "CodePage.h"
#include "Text.h"

namespace host::text {

class Codec::Converter {
 public:
  explicit Converter(std::shared_ptr<const CodePage> page) : page_(std::move(page)) {}
  const CodePage& page() const { return *page_; }

 private:
  std::shared_ptr<const CodePage> page_;
};

namespace {

struct PageName {
  std::string_view drawing;
  const char* page;
};
constexpr const char* kDefaultPage = "CP1252";
constexpr std::array kNamedPages = {
    PageName{"ASCII", "CP1252"},         PageName{"MACINTOSH", "MACINTOSH"},  PageName{"BIG5", "CP950"},
    PageName{"KSC5601", "CP949"},        PageName{"JOHAB", "CP1361"},         PageName{"GB2312", "CP936"},
    PageName{"ISO8859-1", "ISO-8859-1"}, PageName{"ISO8859-2", "ISO-8859-2"}, PageName{"ISO8859-3", "ISO-8859-3"},
    PageName{"ISO8859-4", "ISO-8859-4"}, PageName{"ISO8859-5", "ISO-8859-5"}, PageName{"ISO8859-6", "ISO-8859-6"},
    PageName{"ISO8859-7", "ISO-8859-7"}, PageName{"ISO8859-8", "ISO-8859-8"}, PageName{"ISO8859-9", "ISO-8859-9"}};
// Numbers after "ANSI_" or "DOS", sorted.
constexpr std::array kNumberedPages = {437, 850, 852, 855, 857,  860,  861,  862,  863,  864,  865,  866,  869,  874,
                                       932, 936, 949, 950, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258, 1361};
// Page of \M+n, by n - 1.
constexpr std::array kDoubleBytePages = {"CP932", "CP950", "CP949", "CP1361", "CP936"};

std::string pageNameOf(std::string_view name) {
  std::string upper(name);
  for (char& c : upper)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  for (const PageName& page : kNamedPages)
    if (page.drawing == upper) return page.page;
  for (const std::string_view prefix : {"ANSI_", "DOS"}) {
    if (upper.compare(0, prefix.size(), prefix) != 0) continue;
    const std::string digits = upper.substr(prefix.size());
    const int number = static_cast<int>(std::clamp<std::int64_t>(parseInteger(digits).value_or(0), 0, 9999));
    if (std::binary_search(kNumberedPages.begin(), kNumberedPages.end(), number)) return "CP" + std::to_string(number);
  }
  return kDefaultPage;
}

/// The four hexadecimal digits at `position`, or -1.
int fourHexDigits(std::wstring_view text, std::size_t position) {
  if (position + 4 > text.size()) return -1;
  int value = 0;
  for (std::size_t i = position; i < position + 4; ++i) {
    const wchar_t c = text[i];
    const wchar_t lower = c >= L'A' && c <= L'F' ? static_cast<wchar_t>(c + 32) : c;
    if (isDigit(c))
      value = value * 16 + (c - L'0');
    else if (lower >= L'a' && lower <= L'f')
      value = value * 16 + (lower - L'a' + 10);
    else
      return -1;
  }
  return value;
}

/// Character of \M+nXXXX with `page` = n, or 0 when the pair means nothing.
char32_t doubleByteCharacter(wchar_t page, int code) {
  if (page < L'1' || page > L'5') return 0;
  const char bytes[2] = {static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)};
  const std::string_view used = bytes[0] != 0 ? std::string_view(bytes, 2) : std::string_view(bytes + 1, 1);
  std::size_t position = 0;
  const char32_t c = CodePage::get(kDoubleBytePages[static_cast<std::size_t>(page - L'1')])->next(used, position);
  return c == kReplacement || position != used.size() ? 0 : c;
}

void appendUnescaped(std::wstring& out, char32_t c) {
  const bool joins =
      !kWideIs16Bit && isLowSurrogate(c) && !out.empty() && isHighSurrogate(static_cast<char32_t>(out.back()));
  if (joins) {
    const auto high = static_cast<char32_t>(out.back());
    out.pop_back();
    c = joinedSurrogates(high, c);
  }
  appendWide(out, c);
}

/// Resolves \U+XXXX, \M+nXXXX, ^X and "^ ". What only looks like one of them stays as it is.
std::wstring withoutEscapes(std::wstring_view text) {
  constexpr std::size_t kUnicodeLength = 7;     // \U+XXXX
  constexpr std::size_t kDoubleByteLength = 8;  // \M+nXXXX
  std::wstring out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const std::wstring_view rest = text.substr(i);
    if (rest[0] == L'^' && rest.size() > 1 && (rest[1] == L' ' || (rest[1] >= L'@' && rest[1] <= L'_'))) {
      out += rest[1] == L' ' ? L'^' : static_cast<wchar_t>(rest[1] - L'@');
      i += 2;
      continue;
    }
    if (rest[0] == L'\\' && rest.size() >= kUnicodeLength && rest[2] == L'+') {
      const bool unicode = rest[1] == L'U' || rest[1] == L'u';
      const bool doubleByte = rest[1] == L'M' || rest[1] == L'm';
      const int code = unicode ? fourHexDigits(rest, 3) : doubleByte ? fourHexDigits(rest, 4) : -1;
      const char32_t c = code <= 0    ? U'\0'
                         : doubleByte ? doubleByteCharacter(rest[3], code)
                                      : static_cast<char32_t>(code);
      if (c != 0) {
        appendUnescaped(out, c);
        i += doubleByte ? kDoubleByteLength : kUnicodeLength;
        continue;
      }
    }
    out += rest[0];
    ++i;
  }
  return out;
}

void appendUnicodeEscape(std::string& out, char32_t codeUnit) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  out += "\\U+";
  for (int shift = 12; shift >= 0; shift -= 4) out += kDigits[(codeUnit >> shift) & 0xF];
}

bool isPlain(unsigned c) { return c >= 0x20 && c < 0x80 && c != '^'; }

}  // namespace

Codec::Codec() = default;

Codec Codec::forCodePage(std::string_view name) {
  const std::size_t first = name.find_first_not_of(" \t");
  if (first != std::string_view::npos) name = name.substr(first, name.find_last_not_of(" \t\r") - first + 1);
  Codec codec;
  codec.converter_ = std::make_shared<Converter>(CodePage::get(pageNameOf(name)));
  return codec;
}

std::wstring Codec::decode(std::string_view bytes) const {
  std::wstring text;
  decode(bytes, text);
  return text;
}

void Codec::decode(std::string_view bytes, std::wstring& text) const {
  text.resize(bytes.size());
  unsigned seen = 0;
  bool escapes = false;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto c = static_cast<unsigned char>(bytes[i]);
    seen |= c;
    escapes = escapes || c == '\\' || c == '^';
    text[i] = static_cast<wchar_t>(c);
  }
  if (const bool isAscii = seen < 0x80; !isAscii && isUtf8()) {
    text = fromUtf8(bytes);
  } else if (!isAscii) {
    text.clear();
    for (std::size_t position = 0; position < bytes.size();) appendWide(text, converter_->page().next(bytes, position));
  }
  if (escapes) text = withoutEscapes(text);
}

std::string Codec::encode(std::wstring_view text) const {
  if (std::all_of(text.begin(), text.end(), [](wchar_t c) { return isPlain(static_cast<unsigned>(c)); }))
    return {text.begin(), text.end()};
  std::string out;
  out.reserve(text.size() + text.size() / 2);
  for (std::size_t position = 0; position < text.size();) {
    char32_t c = nextCodePoint(text, position);
    if (c > 0x10FFFF) c = kReplacement;
    if (c < 0x20) {
      out += '^';
      out += static_cast<char>(c + '@');
    } else if (c == U'^') {
      out += "^ ";
    } else if (c < 0x80) {
      out += static_cast<char>(c);
    } else if (isHighSurrogate(c) || isLowSurrogate(c)) {
      appendUnicodeEscape(out, c);
    } else if (isUtf8()) {
      appendUtf8(out, c);
    } else if (!converter_->page().append(out, c)) {
      if (c > 0xFFFF) {
        appendUnicodeEscape(out, 0xD800 + ((c - 0x10000) >> 10));
        appendUnicodeEscape(out, 0xDC00 + ((c - 0x10000) & 0x3FF));
      } else {
        appendUnicodeEscape(out, c);
      }
    }
  }
  return out;
}

}  // namespace host::text

// Messages about drawings and files hold their names, which may hold any byte.
#include <algorithm>

#include "Characters.h"
#include "Text.h"

namespace host::text {
namespace {

bool isObeyed(char32_t c) {
  if (c < 0x20) return c != U'\n' && c != U'\t';
  if (c < 0x7F) return false;
  return c < 0xA0 || c == 0x061C || c == 0x200E || c == 0x200F || (c >= 0x2028 && c <= 0x202E) ||
         (c >= 0x2066 && c <= 0x2069);
}

void spell(std::wstring& out, char32_t c) {
  if (c < 0x20) {
    out += {L'^', static_cast<wchar_t>(c + U'@')};
    return;
  }
  constexpr std::wstring_view kDigits = L"0123456789ABCDEF";
  out += L"\\U+";
  for (int shift = 12; shift >= 0; shift -= 4) out += kDigits[(c >> shift) & 0xFU];
}

std::wstring made(std::wstring_view text, LineFeeds lineFeeds) {
  std::wstring out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<char32_t>(text[i]);
    if (c == U'\r' && i + 1 < text.size() && text[i + 1] == L'\n') continue;
    if (isObeyed(c) || (c == U'\n' && lineFeeds == LineFeeds::Spelled)) {
      spell(out, c);
    } else {
      out += text[i];
    }
  }
  return out;
}

}  // namespace

std::wstring printable(std::wstring_view text) { return made(text, LineFeeds::Stay); }

std::string printable(std::string_view bytes, LineFeeds lineFeeds) {
  const bool isPlain = std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c < '\x7f'; });
  return isPlain ? std::string(bytes) : toUtf8(made(fromUtf8(bytes), lineFeeds));
}

}  // namespace host::text

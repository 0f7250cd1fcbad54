#include <tchar.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>

#include "Characters.h"
#include "Platform/Files.h"
#include "Platform/Paths.h"
#include "Text.h"
#include "WideFormat.h"

namespace {

using host::text::foldedCharacter;

/// The ASCII text up to the first character no number contains, blanks at the start left out.
std::string numberText(const ACHAR* text) {
  std::string out;
  if (text == nullptr) return out;
  while (*text == L' ' || (*text >= L'\t' && *text <= L'\r')) ++text;
  for (; *text > L' ' && *text < 0x7F; ++text) out += static_cast<char>(*text);
  return out;
}

}  // namespace

double _wtof(const ACHAR* text) { return host::text::parseReal(numberText(text)).value_or(0.0); }

int _wtoi(const ACHAR* text) {
  const std::int64_t value = host::text::parseInteger(numberText(text)).value_or(0);
  return static_cast<int>(
      std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

int _wcsicmp(const ACHAR* a, const ACHAR* b) { return _wcsnicmp(a, b, std::numeric_limits<std::size_t>::max()); }

int _wcsnicmp(const ACHAR* a, const ACHAR* b, std::size_t count) {
  for (; count > 0; ++a, ++b, --count) {
    const wchar_t x = foldedCharacter(*a);
    const wchar_t y = foldedCharacter(*b);
    if (x != y) return x < y ? -1 : 1;
    if (x == 0) return 0;
  }
  return 0;
}

int _vsnwprintf(ACHAR* buffer, std::size_t size, const ACHAR* format, std::va_list arguments) {
  if (buffer == nullptr || size == 0) return -1;
  const std::wstring text = host::text::formatWide(format, arguments);
  const std::size_t length = std::min(text.size(), size - 1);
  std::copy_n(text.begin(), length, buffer);
  buffer[length] = 0;
  return length == text.size() ? static_cast<int>(length) : -1;
}

int _snwprintf(ACHAR* buffer, std::size_t size, const ACHAR* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int written = _vsnwprintf(buffer, size, format, arguments);
  va_end(arguments);
  return written;
}

std::FILE* _wfsopen(const ACHAR* name, const ACHAR* mode, int) {
  if (name == nullptr || mode == nullptr) return nullptr;
  // Microsoft's letters for text, caching and encoding mean nothing here, or something else.
  std::string narrowMode;
  for (; *mode != 0 && *mode != L','; ++mode)
    if (std::wstring_view(L"rwa+b").find(*mode) != std::wstring_view::npos) narrowMode += static_cast<char>(*mode);
  if (narrowMode.empty()) return nullptr;
  return host::platform::openShared(host::platform::pathOf(host::text::toUtf8(name)), narrowMode);
}

int _waccess(const ACHAR* name, int mode) {
  if (name == nullptr) return -1;
  return host::platform::access(host::platform::pathOf(host::text::toUtf8(name)), mode);
}

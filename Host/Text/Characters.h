// Single characters: surrogates, case and class, independent of the process locale. Used inside this module only.
#pragma once

#include <string>
#include <string_view>

namespace host::text {

inline constexpr char32_t kReplacement = 0xFFFD;
inline constexpr bool kWideIs16Bit = sizeof(wchar_t) == 2;

constexpr bool isHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
constexpr bool isLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }
constexpr char32_t joinedSurrogates(char32_t high, char32_t low) {
  return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

/// Reads the code point at `position` and moves past it; a lone surrogate comes back as it is.
char32_t nextCodePoint(std::wstring_view text, std::size_t& position);
void appendWide(std::wstring& out, char32_t codePoint);
void appendUtf8(std::string& out, char32_t codePoint);

/// Simple lower-case folding of one character (Latin, Greek, Cyrillic, Armenian); others come back unchanged.
inline wchar_t foldedCharacter(wchar_t character);
wchar_t foldedBeyondAscii(wchar_t character);
/// Letters of any script; symbols, punctuation and digits are not.
bool isLetter(wchar_t character);
inline bool isDigit(wchar_t character) { return character >= L'0' && character <= L'9'; }

inline wchar_t foldedCharacter(wchar_t character) {
  if (static_cast<char32_t>(character) >= 0x80) return foldedBeyondAscii(character);
  return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character + 32) : character;
}

}  // namespace host::text

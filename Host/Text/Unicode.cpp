#include <algorithm>
#include <array>
#include <cstdint>

#include "Characters.h"
#include "Text.h"

namespace host::text {
namespace {

/// Decodes one character at `position` and moves past it. A broken sequence gives one replacement and ends before the
/// first byte that cannot continue it (Unicode's "maximal subpart" practice), so that byte is read again as a start.
char32_t nextUtf8(std::string_view bytes, std::size_t& position) {
  const auto lead = static_cast<unsigned char>(bytes[position++]);
  if (lead < 0x80) return lead;
  int continuations = 0;
  unsigned char lowest = 0x80;
  unsigned char highest = 0xBF;
  char32_t value = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    continuations = 1;
    value = lead & 0x1F;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    continuations = 2;
    value = lead & 0x0F;
    if (lead == 0xE0) lowest = 0xA0;   // no overlong forms
    if (lead == 0xED) highest = 0x9F;  // no surrogates
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    continuations = 3;
    value = lead & 0x07;
    if (lead == 0xF0) lowest = 0x90;
    if (lead == 0xF4) highest = 0x8F;
  } else {
    return kReplacement;
  }
  for (; continuations > 0; --continuations) {
    if (position == bytes.size()) return kReplacement;
    const auto byte = static_cast<unsigned char>(bytes[position]);
    if (byte < lowest || byte > highest) return kReplacement;
    value = (value << 6) | (byte & 0x3F);
    ++position;
    lowest = 0x80;
    highest = 0xBF;
  }
  return value;
}

/// A run of upper-case letters: either all shifted by `offset`, or (offset 1 and `alternating`) every second one.
struct CaseRange {
  std::uint16_t first;
  std::uint16_t last;
  std::int16_t offset;
  bool alternating;
};

// Simple case folding of Unicode for the scripts that names of layers and blocks are written in, sorted.
constexpr std::array kCaseRanges = {
    CaseRange{0x0041, 0x005A, 32, false}, CaseRange{0x00B5, 0x00B5, 775, false}, CaseRange{0x00C0, 0x00D6, 32, false},
    CaseRange{0x00D8, 0x00DE, 32, false}, CaseRange{0x0100, 0x012E, 1, true},    CaseRange{0x0132, 0x0136, 1, true},
    CaseRange{0x0139, 0x0147, 1, true},   CaseRange{0x014A, 0x0176, 1, true},    CaseRange{0x0178, 0x0178, -121, false},
    CaseRange{0x0179, 0x017D, 1, true},   CaseRange{0x01CD, 0x01DB, 1, true},    CaseRange{0x01DE, 0x01EE, 1, true},
    CaseRange{0x01F8, 0x021E, 1, true},   CaseRange{0x0222, 0x0232, 1, true},    CaseRange{0x0386, 0x0386, 38, false},
    CaseRange{0x0388, 0x038A, 37, false}, CaseRange{0x038C, 0x038C, 64, false},  CaseRange{0x038E, 0x038F, 63, false},
    CaseRange{0x0391, 0x03A1, 32, false}, CaseRange{0x03A3, 0x03AB, 32, false},  CaseRange{0x03C2, 0x03C2, 1, false},
    CaseRange{0x0400, 0x040F, 80, false}, CaseRange{0x0410, 0x042F, 32, false},  CaseRange{0x0460, 0x0480, 1, true},
    CaseRange{0x048A, 0x04BE, 1, true},   CaseRange{0x04C0, 0x04C0, 15, false},  CaseRange{0x04C1, 0x04CD, 1, true},
    CaseRange{0x04D0, 0x052E, 1, true},   CaseRange{0x0531, 0x0556, 48, false},  CaseRange{0x1E00, 0x1E94, 1, true},
    CaseRange{0x1EA0, 0x1EFE, 1, true},   CaseRange{0xFF21, 0xFF3A, 32, false}};

/// Blocks above U+00BF without letters: punctuation, symbols, private use, full-width punctuation and digits.
struct Block {
  std::uint32_t first;
  std::uint32_t last;
};
constexpr std::array kNotLetters = {Block{0x00D7, 0x00D7}, Block{0x00F7, 0x00F7}, Block{0x02B0, 0x036F},
                                    Block{0x2000, 0x2BFF}, Block{0x3000, 0x3030}, Block{0xD800, 0xF8FF},
                                    Block{0xFE00, 0xFE6F}, Block{0xFF00, 0xFF20}, Block{0xFF3B, 0xFF40},
                                    Block{0xFF5B, 0xFF65}, Block{0xFFE0, 0xFFFF}, Block{0x1F000, 0x1FBFF}};

}  // namespace

char32_t nextCodePoint(std::wstring_view text, std::size_t& position) {
  const auto c = static_cast<char32_t>(text[position++]);
  if (isHighSurrogate(c) && position < text.size() && isLowSurrogate(static_cast<char32_t>(text[position])))
    return joinedSurrogates(c, static_cast<char32_t>(text[position++]));
  return c;
}

void appendWide(std::wstring& out, char32_t codePoint) {
  if (kWideIs16Bit && codePoint > 0xFFFF) {
    out += static_cast<wchar_t>(0xD800 + ((codePoint - 0x10000) >> 10));
    out += static_cast<wchar_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
  } else {
    out += static_cast<wchar_t>(codePoint);
  }
}

void appendUtf8(std::string& out, char32_t codePoint) {
  const auto continuation = [&](int shift) { out += static_cast<char>(0x80 | ((codePoint >> shift) & 0x3F)); };
  if (codePoint < 0x80) {
    out += static_cast<char>(codePoint);
  } else if (codePoint < 0x800) {
    out += static_cast<char>(0xC0 | (codePoint >> 6));
    continuation(0);
  } else if (codePoint < 0x10000) {
    out += static_cast<char>(0xE0 | (codePoint >> 12));
    continuation(6);
    continuation(0);
  } else {
    out += static_cast<char>(0xF0 | (codePoint >> 18));
    continuation(12);
    continuation(6);
    continuation(0);
  }
}

std::wstring fromUtf8(std::string_view bytes) {
  std::wstring out;
  out.reserve(bytes.size());
  for (std::size_t position = 0; position < bytes.size();) appendWide(out, nextUtf8(bytes, position));
  return out;
}

std::string toUtf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    const char32_t c = nextCodePoint(text, position);
    const bool valid = c <= 0x10FFFF && !isHighSurrogate(c) && !isLowSurrogate(c);
    appendUtf8(out, valid ? c : kReplacement);
  }
  return out;
}

wchar_t foldedBeyondAscii(wchar_t character) {
  const auto c = static_cast<char32_t>(character);
  const auto* range = std::lower_bound(kCaseRanges.begin(), kCaseRanges.end(), c,
                                       [](const CaseRange& r, char32_t value) { return r.last < value; });
  if (range == kCaseRanges.end() || c < range->first) return character;
  if (range->alternating && (c - range->first) % 2 != 0) return character;
  return static_cast<wchar_t>(static_cast<std::int64_t>(c) + range->offset);
}

bool isLetter(wchar_t character) {
  const auto c = static_cast<char32_t>(character);
  if (c < 0x80) return (c | 0x20U) >= 'a' && (c | 0x20U) <= 'z';
  if (c < 0xC0) return c == 0xAA || c == 0xB5 || c == 0xBA;
  return std::none_of(kNotLetters.begin(), kNotLetters.end(),
                      [c](const Block& block) { return c >= block.first && c <= block.last; });
}

std::wstring folded(std::wstring_view text) {
  std::wstring out(text);
  std::transform(out.begin(), out.end(), out.begin(), foldedCharacter);
  return out;
}

std::size_t foldedHash(std::wstring_view text) {
  // FNV-1a
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const wchar_t c : text) hash = (hash ^ static_cast<std::uint64_t>(foldedCharacter(c))) * 0x100000001B3;
  return static_cast<std::size_t>(hash);
}

bool equalFolded(std::wstring_view a, std::wstring_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](wchar_t x, wchar_t y) { return x == y || foldedCharacter(x) == foldedCharacter(y); });
}

}  // namespace host::text

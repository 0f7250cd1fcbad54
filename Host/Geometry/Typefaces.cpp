#include "Geometry/Typefaces.h"

#include <algorithm>
#include <cwctype>
#include <map>
#include <mutex>
#include <vector>

namespace host::geometry {
namespace {

/// Names so far. A drawing may name anything; more than these are drawn with the pictures' own font.
class FontNames {
 public:
  std::uint16_t number(std::wstring name) {
    const std::lock_guard lock(mutex_);
    const auto known = numbers_.find(name);
    if (known != numbers_.end()) return known->second;
    constexpr std::size_t kMost = 4096;
    if (names_.size() >= kMost) return 0;
    const auto made = static_cast<std::uint16_t>(names_.size());
    names_.push_back(name);
    numbers_.emplace(std::move(name), made);
    return made;
  }
  std::wstring name(std::uint16_t number) {
    const std::lock_guard lock(mutex_);
    return number < names_.size() ? names_[number] : std::wstring();
  }

 private:
  std::mutex mutex_;
  std::vector<std::wstring> names_{L""};
  std::map<std::wstring, std::uint16_t> numbers_;
};

FontNames& names() {
  static FontNames all;
  return all;
}

/// Without folder and blanks around it, in small letters; empty when it is no name.
std::wstring plainName(std::wstring_view name) {
  constexpr std::size_t kLongest = 64;
  const std::size_t slash = name.find_last_of(L"/\\");
  if (slash != std::wstring_view::npos) name.remove_prefix(slash + 1);
  // One that begins so is written from top to bottom.
  while (!name.empty() && (name.front() == L' ' || name.front() == L'@')) name.remove_prefix(1);
  while (!name.empty() && name.back() == L' ') name.remove_suffix(1);
  if (name.size() > kLongest) return {};
  std::wstring plain;
  for (const wchar_t c : name) {
    if (c < L' ' || c == L'"' || c == L'\'' || c == L'<' || c == L'>' || c == L':') return {};
    plain += static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(c)));
  }
  return plain;
}

}  // namespace

std::uint16_t fontNumber(std::wstring_view name) {
  std::wstring plain = plainName(name);
  return plain.empty() ? std::uint16_t{0} : names().number(std::move(plain));
}

std::uint16_t fontFileNumber(std::wstring_view name) {
  std::wstring plain = plainName(name);
  if (plain.empty()) return 0;
  if (plain.find(L'.') == std::wstring::npos) plain += L".shx";
  return names().number(std::move(plain));
}

std::wstring fontName(std::uint16_t number) { return names().name(number); }

Face faceOfStyle(const database::Slot& style) {
  constexpr std::int64_t kBold = 0x2000000, kItalic = 0x1000000;
  const text::Codec& codec = style.database().codec();
  std::wstring file, typeface;
  bool isFontData = false;
  Face face;
  database::TagCursor tags = style.tags();
  for (database::Tag tag; tags.next(tag);) {
    if (tag.code == 3) file = codec.decode(tag.value);
    if (tag.code == 1001) isFontData = tag.trimmed() == "ACAD";
    if (tag.code == 1000 && isFontData && typeface.empty()) typeface = codec.decode(tag.value);
    if (tag.code != 1071) continue;
    face.isBold = (tag.integer() & kBold) != 0;
    face.isItalic = (tag.integer() & kItalic) != 0;
  }
  face.font = fontNumber(typeface);
  if (face.font == 0) face.font = fontFileNumber(file);
  return face;
}

}  // namespace host::geometry

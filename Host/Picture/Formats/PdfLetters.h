// Text of a PDF that is not seen but found, selected and copied: the letters themselves are outlines beneath it.
#pragma once

#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

#include "Picture/Formats/PdfObjects.h"
#include "Picture/Glyphs.h"

namespace host::picture::pdf {

/// The letters of all pages, and a font in which they are blanks as wide as letters are.
class Letters {
 public:
  /// Of the em: capitals.
  static constexpr double kCapitalHeight = 0.7;

  explicit Letters(Objects& objects) : objects_(objects) {}

  /// The object of the font.
  std::size_t font();
  /// Text as the string of a page's content that shows it from the left to the right, without its brackets, and its
  /// width in ems of the font. Control characters are left out.
  struct Line {
    std::string codes;
    double width = 0;
  };
  Line line(std::wstring_view text);
  /// Gives the font, when there was need of one. Nothing comes after it.
  void finish();

 private:
  struct Letter {
    unsigned code = 0;  // 0: none
    unsigned width = 0;
  };
  const Letter& letter(char32_t letter);
  std::string fontFile() const;

  Objects& objects_;
  GlyphSource glyphs_;
  std::size_t font_ = 0;
  std::map<char32_t, Letter> known_;
  std::vector<char32_t> letters_;         // by their codes, of which the first is 1
  std::vector<std::uint16_t> widths_{0};  // by codes, thousandths of the em
};

}  // namespace host::picture::pdf

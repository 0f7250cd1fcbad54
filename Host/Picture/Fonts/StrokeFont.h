// Fonts of strokes, as the letters of plotters are: LFF files, which the package librecad-data brings.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "Picture/Glyphs.h"

namespace host::picture {

class StrokeFont {
 public:
  /// From a file of that name without its ending, beside the program or where this system keeps such fonts; null when
  /// there is none.
  static std::unique_ptr<StrokeFont> find(const std::string& name);
  /// From the text of a file. Lines that are no part of a letter are left out.
  explicit StrokeFont(std::string_view text);

  /// The letter for capitals of height 1; null when the font has it not.
  const Glyph* glyph(wchar_t letter) const;

 private:
  std::unordered_map<wchar_t, Glyph> glyphs_;
};

}  // namespace host::picture

// One face of a font file, and the outlines of its letters.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "Picture/Fonts/Shaping.h"
#include "Picture/Glyphs.h"

namespace host::picture {

class OutlineFont {
 public:
  /// Capitals become 1 high: `capitalHeight` of the em tall, or measured when 0. `narrowing`: factor of all widths.
  explicit OutlineFont(const std::filesystem::path& file, int index = 0, double capitalHeight = 0,
                       double narrowing = 1);
  ~OutlineFont();
  OutlineFont(const OutlineFont&) = delete;
  OutlineFont& operator=(const OutlineFont&) = delete;

  bool isOpen() const;
  bool has(char32_t letter) const { return indexOf(letter) != 0; }
  std::uint32_t indexOf(char32_t letter) const;  // 0: the sign of a missing letter
  /// False when the font has no such glyph. Slanted ones lean to the right as italics do.
  bool load(std::uint32_t index, bool isSlanted, Glyph& glyph) const;
  /// Part of a text, from the left to the right; advances and shifts for capitals of height 1.
  std::vector<ShapedGlyph> shape(std::wstring_view text, const DirectedRun& run);
  /// Height of the em when capitals are 1 high.
  double emHeight() const { return 1 / capitalHeight_; }

 private:
  struct Opened;
  std::unique_ptr<Opened> opened_;
  std::unique_ptr<Shaper> shaper_;
  double capitalHeight_ = 1, narrowing_ = 1;
  int index_ = 0;
};

}  // namespace host::picture

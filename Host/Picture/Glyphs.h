// Letter shapes from the DejaVu fonts, so that texts look alike on every machine and need no fonts in SVG and PDF.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "Geometry/EntityPaths.h"

namespace host::picture {

/// Contours of one character for capitals of height 1: y up, base line at 0. Quadratic curves as three points (start,
/// control, end); straight pieces have their control point in the middle.
struct Glyph {
  struct Piece {
    geometry::Point control, to;
    bool straight = false;
  };
  struct Contour {
    geometry::Point from;
    std::vector<Piece> pieces;
  };
  std::vector<Contour> contours;
  double advance = 0;
};

class GlyphSource {
 public:
  GlyphSource();
  GlyphSource(const GlyphSource&) = delete;
  GlyphSource& operator=(const GlyphSource&) = delete;

  /// False when no font was found: glyphs are then empty, with mean advances.
  bool hasFont() const;
  const Glyph& glyph(wchar_t character, bool bold);

 private:
  /// Signs of tolerances the font has not: a target, letters in circles. False for others.
  bool compose(wchar_t character, Glyph& glyph);

  struct Face;
  struct Faces;
  static Faces& faces();

  Faces& faces_;
  std::unordered_map<std::uint64_t, Glyph> glyphs_;
};

}  // namespace host::picture

// Letter shapes, so that SVG and PDF need no fonts: from the font that a text names or what stands in for it, and from
// the DejaVu fonts, which make texts look alike on every machine.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Geometry/EntityPaths.h"
#include "Geometry/Typefaces.h"

namespace host::picture {

/// One letter for capitals of height 1: y up, base line at 0. An outline has contours of quadratic curves as three
/// points (start, control, end); straight pieces have their control point in the middle. A letter of strokes has lines.
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
  std::vector<std::vector<geometry::Point>> strokes;
  double advance = 0;
};

/// A letter in its place: behind the advances of those before it, moved by dx and dy.
struct PlacedGlyph {
  const Glyph* glyph = nullptr;
  double advance = 0, dx = 0, dy = 0;
};

class OutlineFont;
class StrokeFont;

class GlyphSource {
 public:
  GlyphSource();
  GlyphSource(const GlyphSource&) = delete;
  GlyphSource& operator=(const GlyphSource&) = delete;

  /// False when no font was found: glyphs are then empty, with mean advances.
  bool hasFont() const;
  /// The letters of a line from the left to the right. They stay where they are as long as the source lives.
  void layOut(std::wstring_view text, geometry::Face face, std::vector<PlacedGlyph>& out);
  double width(std::wstring_view text, geometry::Face face);

  /// Letters that no font had.
  const std::set<wchar_t>& missing() const { return missing_; }
  /// Whether there was text that this build can neither join nor turn.
  bool leftUnshaped() const { return leftUnshaped_; }

  /// What is drawn for a face.
  struct Choice {
    OutlineFont* outline = nullptr;    // of the two one at most; neither: the pictures' own font
    std::vector<std::string> strokes;  // files of stroke fonts, the first of which is there
    bool isSlanted = false;            // the font itself is upright
    std::string name;
    /// For readers that have fonts themselves: families whose letters look so, the one that is drawn first, the most
    /// general last.
    std::vector<std::string> families;
    bool isBold = false, isItalic = false;
    double emHeight = 1;   // when capitals are 1 high
    double narrowing = 1;  // factor of the font's own widths
  };
  const Choice& choice(geometry::Face face);

 private:
  struct Fonts;
  /// A font, a glyph in it, and whether it leans.
  struct GlyphKey {
    const void* font = nullptr;
    std::uint64_t glyph = 0;
    bool operator==(const GlyphKey&) const = default;
  };
  struct GlyphHash {
    std::size_t operator()(const GlyphKey& key) const {
      return std::hash<const void*>()(key.font) * 31 + std::hash<std::uint64_t>()(key.glyph);
    }
  };
  const Glyph& character(wchar_t letter, geometry::Face face);
  // With the fonts' lock held.
  const Glyph& loadCharacter(wchar_t letter, geometry::Face face);
  const Glyph& loadGlyph(const OutlineFont& font, std::uint32_t index, bool isSlanted);
  /// The font that has the letter; null when none has, or it is one of strokes.
  OutlineFont* fontOf(wchar_t letter, geometry::Face face, bool& isSlanted);
  /// The letter in the first of the chosen stroke fonts that has it; null when none has.
  const Glyph* strokedLetter(wchar_t letter, const Choice& chosen);
  void shape(std::wstring_view text, geometry::Face face, std::vector<PlacedGlyph>& out);
  /// Signs of tolerances the font has not: a target, letters in circles. False for others.
  bool compose(wchar_t letter, Glyph& glyph);
  static Fonts& fonts();

  Fonts& fonts_;
  std::unordered_map<std::uint64_t, const Glyph*> characters_;
  std::unordered_map<GlyphKey, Glyph, GlyphHash> glyphs_;
  std::unordered_map<std::uint64_t, const Choice*> choices_;
  std::vector<PlacedGlyph> measured_;
  std::set<wchar_t> missing_;
  bool leftUnshaped_ = false;
};

}  // namespace host::picture

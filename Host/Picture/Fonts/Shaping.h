// Text whose letters change with their neighbours or run from right to left. A build without HarfBuzz and FriBidi has a
// twin of the source that leaves letters as they are.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace host::picture {

/// Whether a text needs shaping: letters that join, marks over letters, writing from the right.
bool needsShaping(std::wstring_view text);
/// Whether this build can.
bool canShape();

/// Letters of one direction, from the left of the line to the right.
struct DirectedRun {
  std::size_t begin = 0, end = 0;
  bool isRightToLeft = false;
};
std::vector<DirectedRun> visualRuns(std::wstring_view text);

struct ShapedGlyph {
  std::uint32_t index = 0;             // in the font
  std::uint32_t letter = 0;            // of the text it came from
  double advance = 0, dx = 0, dy = 0;  // units of the font
};

/// Shapes with one font, whose bytes outlive it.
class Shaper {
 public:
  Shaper(std::string_view bytes, int index);
  ~Shaper();
  Shaper(const Shaper&) = delete;
  Shaper& operator=(const Shaper&) = delete;
  /// The letters `begin` to `end` of the text, from the left to the right.
  std::vector<ShapedGlyph> shape(std::wstring_view text, const DirectedRun& run) const;

 private:
  struct Font;
  std::unique_ptr<Font> font_;
};

}  // namespace host::picture

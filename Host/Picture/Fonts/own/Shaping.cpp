// A picture library without HarfBuzz and FriBidi: every letter stands for itself, one behind the other.
#include "Picture/Fonts/Shaping.h"

#include <algorithm>

namespace host::picture {

/// Hebrew and Arabic, which would be read in the wrong direction.
bool needsShaping(std::wstring_view text) {
  return std::ranges::any_of(text, [](wchar_t c) { return c >= 0x0590 && c <= 0x08FF; });
}

bool canShape() { return false; }

std::vector<DirectedRun> visualRuns(std::wstring_view text) { return {{0, text.size(), false}}; }

struct Shaper::Font {};
Shaper::Shaper(std::string_view, int) {}
Shaper::~Shaper() = default;
std::vector<ShapedGlyph> Shaper::shape(std::wstring_view, const DirectedRun&) const { return {}; }

}  // namespace host::picture

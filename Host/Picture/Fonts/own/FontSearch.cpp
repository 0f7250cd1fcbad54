// A picture library without fontconfig: it has its own font and those of strokes.
#include "Picture/Fonts/FontSearch.h"

namespace host::picture {

std::optional<FontFile> findFont(const std::string&, bool, bool) { return std::nullopt; }
std::optional<FontFile> findFontWith(char32_t, bool) { return std::nullopt; }

}  // namespace host::picture

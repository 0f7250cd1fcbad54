// The 256 index colours of drawings.
#pragma once

#include <cstdint>

namespace host::database {

/// 0xRRGGBB of an index 1 to 255 (7 is white; against a light background it is drawn black). Others give white.
std::uint32_t paletteColor(int index);
/// Index 1 to 255 of the palette colour nearest to 0xRRGGBB.
int nearestColorIndex(std::uint32_t rgb);

}  // namespace host::database

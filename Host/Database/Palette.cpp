#include "Database/Palette.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace host::database {

namespace {

std::uint32_t packed(double red, double green, double blue) {
  const auto byte = [](double value) { return static_cast<std::uint32_t>(std::clamp(value, 0.0, 255.0)); };
  return (byte(red) << 16) | (byte(green) << 8) | byte(blue);
}

/// Indices 10 to 249 are 24 hues of 15 degrees in five brightnesses, full and half saturated; the rest is a list.
std::array<std::uint32_t, 256> makePalette() {
  std::array<std::uint32_t, 256> palette{};
  constexpr std::array<std::uint32_t, 10> kFirst = {0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                                    0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
  constexpr std::array<double, 5> kBrightness = {255, 165, 127, 76, 38};
  constexpr std::array<std::uint32_t, 6> kGreys = {0x333333, 0x505050, 0x696969, 0x828282, 0xBEBEBE, 0xFFFFFF};
  std::copy(kFirst.begin(), kFirst.end(), palette.begin());
  std::copy(kGreys.begin(), kGreys.end(), palette.begin() + 250);
  for (int index = 10; index < 250; ++index) {
    const int hueNumber = index / 10 - 1;
    const double hue = hueNumber * 15.0;
    const double value = kBrightness[static_cast<std::size_t>(index % 10) / 2];
    const double low = index % 2 == 1 ? value / 2 : 0;  // odd indices are the half-saturated ones
    const double sector = hue / 60;
    const double fraction = sector - std::floor(sector);
    const double rising = low + (value - low) * fraction;
    const double falling = value - (value - low) * fraction;
    std::uint32_t color = 0;
    switch (static_cast<int>(sector)) {
      case 0:
        color = packed(value, rising, low);
        break;
      case 1:
        color = packed(falling, value, low);
        break;
      case 2:
        color = packed(low, value, rising);
        break;
      case 3:
        color = packed(low, falling, value);
        break;
      case 4:
        color = packed(rising, low, value);
        break;
      default:
        color = packed(value, low, falling);
        break;
    }
    palette[static_cast<std::size_t>(index)] = color;
  }
  return palette;
}

const std::array<std::uint32_t, 256>& palette() {
  static const std::array<std::uint32_t, 256> colors = makePalette();
  return colors;
}

}  // namespace

std::uint32_t paletteColor(int index) {
  return index > 0 && index < 256 ? palette()[static_cast<std::size_t>(index)] : 0xFFFFFF;
}

int nearestColorIndex(std::uint32_t rgb) {
  const auto part = [](std::uint32_t color, int shift) { return static_cast<int>((color >> shift) & 0xFF); };
  int best = 7;
  int bestDistance = 1 << 30;
  for (int index = 1; index < 256; ++index) {
    int distance = 0;
    for (const int shift : {0, 8, 16}) {
      const int difference = part(palette()[static_cast<std::size_t>(index)], shift) - part(rgb, shift);
      distance += difference * difference;
    }
    if (distance < bestDistance) {
      best = index;
      bestDistance = distance;
    }
  }
  return best;
}

}  // namespace host::database

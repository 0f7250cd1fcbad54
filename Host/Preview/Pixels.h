// Small pictures in memory, and the functions of the picture library that make them.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace host::preview {

/// Rows of 0xAARRGGBB from the top.
struct Pixels {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> argb;
};

/// What a small picture is made on; `width` and `height` at least 1, `background` 0xRRGGBB.
struct Canvas {
  int width = 0;
  int height = 0;
  std::uint32_t background = 0xFFFFFF;
  bool operator==(const Canvas&) const = default;
};

/// What a drawing shows in its model space, in the middle. False when that is nothing.
using DrawPreview = bool (*)(const database::DrawingDatabase& drawing, const Canvas& canvas, Pixels& pixels);
inline constexpr const char* kDrawPreview = "tolmexDrawPreview";

/// The picture of a BMP or PNG file, made smaller when it does not fit, in the middle. False when it is none.
using DecodePreview = bool (*)(std::string_view file, const Canvas& canvas, Pixels& pixels);
inline constexpr const char* kDecodePreview = "tolmexDecodePreview";

}  // namespace host::preview

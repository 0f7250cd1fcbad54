// An image that a picture shows.
#pragma once

#include <memory>
#include <string>

#include "Picture/Picture.h"

class QImage;

namespace host::picture {

/// A raster image, in the colours of the picture. Shared by all display items that show it.
struct RasterImage {
  int width = 0, height = 0;             // pixels
  std::shared_ptr<const QImage> pixels;  // null where the program has no painter
  std::string file;  // its bytes, where they are a PNG or JPEG in the picture's own colours; else empty
  bool isJpeg = false;
};

// With and without a painter.

/// Reads a file's bytes; null for what cannot be read.
std::shared_ptr<const RasterImage> decodeImage(std::string bytes, ColorMode colors);
/// The bytes of a file of the image: its own, or a PNG.
std::string fileOf(const RasterImage& image);

}  // namespace host::picture

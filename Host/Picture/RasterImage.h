// Pixels of an image that a picture shows.
#pragma once

#include <QImage>
#include <string>

namespace host::picture {

/// A raster image, in the colours of the picture. Shared by all display items that show it.
struct RasterImage {
  QImage pixels;
  std::string file;  // its bytes, where they are a PNG or JPEG in the picture's own colours; else empty
  bool isJpeg = false;
};

}  // namespace host::picture

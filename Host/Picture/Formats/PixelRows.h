// What a PDF needs of an image and of a compressor, without a toolkit's types.
#pragma once

#include <string>

namespace host::picture {

struct RasterImage;

/// Rows from the top, without gaps. Of a JPEG in the colours of the picture its own bytes, in place of all else.
struct PixelRows {
  int width = 0, height = 0;
  std::string rgb;    // three bytes for each pixel
  std::string alpha;  // one byte for each pixel; empty: opaque
  std::string jpeg;
  bool isJpegGrey = false;
};

/// No size where this build reads no images.
PixelRows pixelRows(const RasterImage& image);

/// The bytes as a zlib stream (RFC 1950); empty where this build has no compressor.
std::string compressed(const std::string& bytes);

}  // namespace host::picture

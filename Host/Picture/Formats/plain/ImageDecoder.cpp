#include <cstdint>
#include <string_view>

#include "Picture/Images/RasterImage.h"

namespace host::picture {
namespace {

std::uint32_t bigEndian(std::string_view bytes) {
  std::uint32_t value = 0;
  for (const char byte : bytes) value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

/// Walks over a JPEG's segments to the one with its size (ITU-T T.81, B.1). One that says how it was held (Exif) would
/// have to be turned.
bool readJpegSize(std::string_view bytes, RasterImage& image) {
  for (std::size_t at = 2; at + 9 < bytes.size() && bytes[at] == '\xFF';) {
    const auto kind = static_cast<unsigned char>(bytes[at + 1]);
    if (kind == 0xE1 && bytes.substr(at + 4, 4) == "Exif") return false;
    const bool isFrame = kind >= 0xC0 && kind <= 0xCF && kind != 0xC4 && kind != 0xC8 && kind != 0xCC;
    if (isFrame) {
      image.height = static_cast<int>(bigEndian(bytes.substr(at + 5, 2)));
      image.width = static_cast<int>(bigEndian(bytes.substr(at + 7, 2)));
      return true;
    }
    at += 2 + bigEndian(bytes.substr(at + 2, 2));
  }
  return false;
}

}  // namespace

// PNG and JPEG go into the picture as they are; nothing is painted.
std::shared_ptr<const RasterImage> decodeImage(std::string bytes, ColorMode colors) {
  constexpr std::string_view kPng = "\x89PNG\r\n\x1A\n";
  constexpr int kMostPixels = 1 << 20;
  if (colors != ColorMode::AsDrawn) return nullptr;
  auto image = std::make_shared<RasterImage>();
  image->isJpeg = bytes.starts_with("\xFF\xD8");
  if (image->isJpeg) {
    if (!readJpegSize(bytes, *image)) return nullptr;
  } else if (bytes.starts_with(kPng) && bytes.size() > 24) {
    image->width = static_cast<int>(bigEndian(std::string_view(bytes).substr(16, 4)));
    image->height = static_cast<int>(bigEndian(std::string_view(bytes).substr(20, 4)));
  }
  if (image->width <= 0 || image->height <= 0 || image->width > kMostPixels || image->height > kMostPixels)
    return nullptr;
  image->file = std::move(bytes);
  return image;
}

std::string fileOf(const RasterImage& image) { return image.file; }

}  // namespace host::picture

#include "Preview/Thumbnail.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace host::preview {
namespace {

std::uint32_t number(std::string_view bytes, std::size_t at, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < size && at + i < bytes.size(); ++i)
    value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
  return value;
}

/// A bitmap as files keep it, behind the header that a file has in front of it.
std::string asBmpFile(std::string_view bitmap) {
  constexpr std::size_t kFileHeader = 14, kSmallestInfo = 40;
  constexpr std::uint32_t kMasks = 12;  // bytes of the colour masks behind a plain header
  if (bitmap.size() < kSmallestInfo) return {};
  const std::uint32_t info = number(bitmap, 0, 4);
  const std::uint32_t bits = number(bitmap, 14, 2);
  const std::uint32_t compression = number(bitmap, 16, 4);
  std::uint32_t colors = number(bitmap, 32, 4);
  if (colors == 0 && bits <= 8) colors = 1U << bits;
  constexpr std::uint32_t kMostColors = 256, kBitFields = 3;
  if (info < kSmallestInfo || info > bitmap.size() || colors > kMostColors) return {};
  const std::uint32_t masks = compression == kBitFields && info == kSmallestInfo ? kMasks : 0;
  std::string file = "BM";
  const auto append = [&](std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) file += static_cast<char>(value >> shift & 0xFF);
  };
  append(static_cast<std::uint32_t>(kFileHeader + bitmap.size()));
  append(0);
  append(static_cast<std::uint32_t>(kFileHeader) + info + masks + 4 * colors);
  return file.append(bitmap);
}

std::string fromDwg(std::string_view drawing) {
  constexpr std::size_t kAddressAt = 0x0D, kSentinel = 16, kEntry = 9;
  const std::size_t section = number(drawing, kAddressAt, 4);
  // After the section's mark: its size, the number of pictures, for each its kind, place and size.
  const std::size_t countAt = section + kSentinel + 4;
  if (section == 0 || countAt >= drawing.size()) return {};
  const std::size_t count = number(drawing, countAt, 1);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t at = countAt + 1 + i * kEntry;
    constexpr std::uint32_t kBitmap = 2, kPng = 6;
    const std::uint32_t kind = number(drawing, at, 1);
    const std::size_t begin = number(drawing, at + 1, 4);
    const std::size_t size = number(drawing, at + 5, 4);
    if ((kind != kBitmap && kind != kPng) || begin > drawing.size() || size > drawing.size() - begin) continue;
    const std::string_view picture = drawing.substr(begin, size);
    return kind == kPng ? std::string(picture) : asBmpFile(picture);
  }
  return {};
}

/// The next line without its blanks and line end; moves behind it.
std::string_view nextLine(std::string_view text, std::size_t& at) {
  const std::size_t end = std::min(text.find('\n', at), text.size());
  std::string_view line = text.substr(at, end - at);
  at = std::min(end + 1, text.size());
  while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
  while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.remove_suffix(1);
  return line;
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

std::string fromDxf(std::string_view drawing) {
  std::size_t at = drawing.rfind("THUMBNAILIMAGE");
  if (at == std::string_view::npos) return {};
  nextLine(drawing, at);
  std::string bitmap;
  while (at < drawing.size()) {
    const std::string_view code = nextLine(drawing, at);
    const std::string_view value = nextLine(drawing, at);
    if (code == "0") break;
    if (code != "310") continue;
    for (std::size_t i = 0; i + 1 < value.size(); i += 2) {
      const int high = hexDigit(value[i]), low = hexDigit(value[i + 1]);
      if (high < 0 || low < 0) return {};
      bitmap += static_cast<char>(high * 16 + low);
    }
  }
  return asBmpFile(bitmap);
}

}  // namespace

std::string storedThumbnail(std::string_view drawing) {
  // DWG files begin with their version; the text of a DXF file begins otherwise.
  return drawing.substr(0, 4) == "AC10" ? fromDwg(drawing) : fromDxf(drawing);
}

}  // namespace host::preview

// Reading packed little-endian data that may be cut or wrong.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace host::win32 {

using Bytes = std::span<const std::uint8_t>;

/// Reads from front to back. Once something was not there, `ok` is false for good and everything reads as zero.
class ByteReader {
 public:
  explicit ByteReader(Bytes bytes) : bytes_(bytes) {}

  bool ok() const { return ok_; }
  std::size_t position() const { return position_; }
  std::size_t left() const { return bytes_.size() - position_; }

  std::uint8_t u8() { return static_cast<std::uint8_t>(number(1)); }
  std::uint16_t u16() { return static_cast<std::uint16_t>(number(2)); }
  std::int16_t i16() { return static_cast<std::int16_t>(u16()); }
  std::uint32_t u32() { return number(4); }
  Bytes take(std::size_t count) {
    if (!ok_ || count > left()) {
      ok_ = false;
      return {};
    }
    const Bytes part = bytes_.subspan(position_, count);
    position_ += count;
    return part;
  }
  /// To the next multiple of four; the padding after the last item may be missing.
  void align4() {
    if (ok_) position_ = std::min(bytes_.size(), (position_ + 3) & ~std::size_t{3});
  }
  /// UTF-16 up to and with a zero.
  std::wstring text() {
    std::u16string units;
    while (true) {
      const std::uint16_t unit = u16();
      if (!ok_) return {};
      if (unit == 0) break;
      units += static_cast<char16_t>(unit);
    }
    return widened(units);
  }
  std::wstring text(std::size_t length) {
    if (length > left() / 2) {
      ok_ = false;
      return {};
    }
    std::u16string units;
    for (std::size_t i = 0; i < length; ++i) units += static_cast<char16_t>(u16());
    return widened(units);
  }

 private:
  std::uint32_t number(std::size_t size) {
    std::uint32_t value = 0;
    const Bytes bytes = take(size);
    for (std::size_t i = 0; i < bytes.size(); ++i) value |= static_cast<std::uint32_t>(bytes[i]) << (8 * i);
    return value;
  }
  static std::wstring widened(const std::u16string& units) {
    std::wstring wide;
    for (std::size_t i = 0; i < units.size(); ++i) {
      const char16_t unit = units[i];
      const bool isPair =
          unit >= 0xD800 && unit < 0xDC00 && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] < 0xE000;
      if (sizeof(wchar_t) == 4 && isPair) {
        wide += static_cast<wchar_t>(0x10000 + ((unit - 0xD800) << 10) + (units[++i] - 0xDC00));
      } else {
        wide += static_cast<wchar_t>(unit);
      }
    }
    return wide;
  }

  Bytes bytes_;
  std::size_t position_ = 0;
  bool ok_ = true;
};

}  // namespace host::win32

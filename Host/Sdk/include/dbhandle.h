// Handles: the lasting names of objects in a drawing file.
#pragma once

#include "adesk.h"

/// 64-bit handle; 0 is the null handle. As text: upper-case hexadecimal without prefix or leading zeros.
class ADESK_EXPORT AcDbHandle {
 public:
  static constexpr std::size_t kStrSiz = 17;

  AcDbHandle() = default;
  explicit AcDbHandle(Adesk::UInt64 value) : value_(value) {}
  /// Text without a leading hexadecimal number gives the null handle.
  explicit AcDbHandle(const ACHAR* text);

  bool isNull() const { return value_ == 0; }
  operator Adesk::UInt64() const { return value_; }
  /// False when the buffer is too small (17 characters always do).
  bool getIntoAsciiBuffer(ACHAR* buffer, std::size_t size = kStrSiz) const;
  bool operator==(const AcDbHandle& other) const { return value_ == other.value_; }

 private:
  Adesk::UInt64 value_ = 0;
};

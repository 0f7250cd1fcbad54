// Chains of result buffers.
#pragma once

#include <string>
#include <utility>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/DataStruct/DataItems.h"

namespace OrvLib {

/// Owns a chain with its texts. Movable, not copyable.
class AdsResbuf {
 public:
  AdsResbuf() = default;
  /// Takes over a chain from the host; null makes an empty one.
  explicit AdsResbuf(resbuf* chain) : first_(chain) {}
  /// A chain of the items. Throws as append.
  explicit AdsResbuf(const DataItems& items);
  AdsResbuf(AdsResbuf&& other) noexcept
      : first_(std::exchange(other.first_, nullptr)), last_(std::exchange(other.last_, nullptr)) {}
  AdsResbuf& operator=(AdsResbuf&& other) noexcept;
  AdsResbuf(const AdsResbuf&) = delete;
  AdsResbuf& operator=(const AdsResbuf&) = delete;
  ~AdsResbuf() { acutRelRb(first_); }

  const resbuf* get() const { return first_; }
  bool isEmpty() const { return first_ == nullptr; }

  /// Appends an item without a value, such as -3. Throws OrvExpAcad when memory is out, as all of these.
  void append(short code) { appendItem(code); }
  /// Appends an item that holds a text, such as 1000, 1001 and 1005.
  void append(short code, const ACHAR* text);
  void append(short code, const std::wstring& text) { append(code, text.c_str()); }
  void append(const DataItem& item);

 private:
  resbuf* appendItem(short code);

  resbuf* first_ = nullptr;
  resbuf* last_ = nullptr;
};

}  // namespace OrvLib

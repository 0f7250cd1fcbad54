// The host interface's growable array: int lengths, append/removeAt/find, on the standard vector.
#pragma once

#include <algorithm>
#include <memory>
#include <vector>

template <class T>
struct AcArrayObjectCopyReallocator {};
template <class T>
struct AcArrayMemCopyReallocator {};

/// Indices out of range are a fault of the caller, as with the standard vector.
template <class T, class R = AcArrayMemCopyReallocator<T>>
class AcArray {
 public:
  AcArray() = default;
  explicit AcArray(int physicalLength, int growLength = 8) {
    (void)growLength;
    items_.reserve(static_cast<std::size_t>(std::max(physicalLength, 0)));
  }

  int length() const { return static_cast<int>(items_.size()); }
  int logicalLength() const { return length(); }
  bool isEmpty() const { return items_.empty(); }
  int append(const T& value) {
    items_.push_back(value);
    return length() - 1;
  }
  AcArray& append(const AcArray& other) {
    items_.insert(items_.end(), other.items_.begin(), other.items_.end());
    return *this;
  }
  AcArray& insertAt(int index, const T& value) {
    items_.insert(items_.begin() + index, value);
    return *this;
  }
  AcArray& removeAt(int index) {
    items_.erase(items_.begin() + index);
    return *this;
  }
  bool remove(const T& value) {
    int index = 0;
    if (!find(value, index)) return false;
    removeAt(index);
    return true;
  }
  AcArray& removeAll() {
    items_.clear();
    return *this;
  }
  AcArray& setLogicalLength(int length) {
    items_.resize(static_cast<std::size_t>(std::max(length, 0)));
    return *this;
  }
  AcArray& setPhysicalLength(int length) {
    items_.reserve(static_cast<std::size_t>(std::max(length, 0)));
    return *this;
  }
  T& at(int index) { return items_[static_cast<std::size_t>(index)]; }
  const T& at(int index) const { return items_[static_cast<std::size_t>(index)]; }
  T& operator[](int index) { return at(index); }
  const T& operator[](int index) const { return at(index); }
  AcArray& setAt(int index, const T& value) {
    at(index) = value;
    return *this;
  }
  T& first() { return items_.front(); }
  const T& first() const { return items_.front(); }
  T& last() { return items_.back(); }
  const T& last() const { return items_.back(); }
  bool find(const T& value, int& index, int start = 0) const {
    for (int i = start; i < length(); ++i) {
      if (at(i) == value) {
        index = i;
        return true;
      }
    }
    return false;
  }
  bool contains(const T& value, int start = 0) const {
    int index = 0;
    return find(value, index, start);
  }
  AcArray& reverse() {
    std::reverse(items_.begin(), items_.end());
    return *this;
  }
  const T* asArrayPtr() const { return items_.data(); }
  T* asArrayPtr() { return items_.data(); }
  auto begin() { return items_.begin(); }
  auto end() { return items_.end(); }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }
  bool operator==(const AcArray& other) const { return items_ == other.items_; }

 private:
  std::vector<T> items_;
};

using AcGeDoubleArray = AcArray<double>;
using AcGeIntArray = AcArray<int>;
using AcGeVoidPointerArray = AcArray<void*>;

// Which field of a result buffer a code uses; chains that free themselves.
#pragma once

#include <string>

#include "adslib.h"

namespace host::database {

enum class ValueKind { Unknown, None, Text, Point, Real, Short, Long, Long64, Binary, Name };

/// By group code or RT type.
ValueKind valueKind(int code);

/// A chain under construction. Throws std::bad_alloc when memory is out.
class Chain {
 public:
  Chain() = default;
  Chain(const Chain&) = delete;
  Chain& operator=(const Chain&) = delete;
  ~Chain();
  resbuf* add(int type);
  void addText(int type, const std::wstring& value);
  resbuf* release() {
    resbuf* const chain = head_;
    head_ = tail_ = nullptr;
    return chain;
  }

 private:
  resbuf* head_ = nullptr;
  resbuf* tail_ = nullptr;
};

}  // namespace host::database

// Which field of a result buffer a code uses; chains that free themselves.
#pragma once

#include <string>

#include "Database/Record.h"
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

/// Adds the value of a tag to a chain; a point takes its Y and Z from the cursor. Answers the number of tags taken, 0
/// for names and binaries, which differ between xrecords and extended data.
std::size_t addValue(Chain& chain, const Tag& tag, TagCursor& cursor, const text::Codec& codec);
/// Spells an item's value; false for names and binaries.
bool writeValue(TagWriter& out, const resbuf& item);

}  // namespace host::database

// Extended data of entities as keys and values, read from their records.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace tolmex {

/// The extended data of one application on one entity.
class XDataValues {
 public:
  XDataValues(const host::database::Slot& slot, const host::database::DrawingDatabase& drawing,
              std::wstring_view application);

  bool isThere() const { return isThere_; }
  /// The item behind the first text item that equals the key, as the plug-in finds it; nothing without one.
  std::optional<std::wstring> value(std::wstring_view key) const;

 private:
  struct Item {
    int code;
    std::wstring text;
  };
  bool isThere_ = false;
  std::vector<Item> items_;
};

}  // namespace tolmex

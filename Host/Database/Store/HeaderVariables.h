// The header section: one record whose variables are read and edited by name.
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "Database/Memory.h"
#include "Database/Slot.h"

namespace host::database {

class HeaderVariables {
 public:
  Slot* slot() const { return slot_; }  // null when the file has no header
  void setSlot(Slot* slot);

  /// The value under the code as it was looked up since `forget`: every new entity asks for some of them. Threads that
  /// only read a drawing may ask at the same time.
  std::optional<Tag> find(std::string_view name, int code);
  /// To be called when the record has changed.
  void forget() { known_.clear(); }

 private:
  Slot* slot_ = nullptr;
  std::mutex asking_;
  std::map<std::pair<std::string, int>, std::optional<Tag>> known_;
};

/// Sets one group of a variable in a header's record; `tag` is the whole new one, kept in `memory`.
void setVariableIn(Record& record, std::string_view name, int code, const TagWriter& tag, Arena& memory);
/// The same in a drawing, when that changes anything.
void setVariable(DrawingDatabase& db, std::string_view name, int code, const TagWriter& tag);

}  // namespace host::database

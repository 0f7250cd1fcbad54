#include "Database/Store/HeaderVariables.h"

#include "Database/Store/Parts.h"

namespace host::database {

namespace {

/// Finds the group of a variable; `index` is its tag number, or where it would have to be added (found false), or npos
/// when the header lacks the variable.
bool findVariable(TagCursor cursor, std::string_view name, int code, Tag& tag, std::size_t& index) {
  bool inside = false;
  std::size_t number = 0;
  index = RecordLayout::npos;
  for (; cursor.next(tag); ++number) {
    if (tag.code == 9) {
      if (inside) return false;
      inside = tag.trimmed() == name;
    } else if (inside && tag.code == code) {
      index = number;
      return true;
    }
    if (inside) index = number + 1;
  }
  return false;
}

}  // namespace

void HeaderVariables::setSlot(Slot* slot) {
  slot_ = slot;
  forget();
}

std::optional<Tag> HeaderVariables::find(std::string_view name, int code) {
  if (slot_ == nullptr) return std::nullopt;
  const std::lock_guard lock(asking_);
  const auto [entry, isNew] = known_.try_emplace({std::string(name), code});
  if (isNew) {
    Tag tag;
    std::size_t index = 0;
    if (findVariable(slot_->tags(), name, code, tag, index)) entry->second = tag;
  }
  return entry->second;
}

void setVariableIn(Record& record, std::string_view name, int code, const TagWriter& tag, Arena& memory) {
  Tag former;
  std::size_t index = 0;
  if (findVariable(record.tags(), name, code, former, index)) {
    record.replace(index, 1, memory.keep(tag.str()));
  } else if (index != RecordLayout::npos) {
    record.replace(index, 0, memory.keep(tag.str()));
  } else {
    TagWriter whole = tag;
    whole.clear();
    record.append(memory.keep(whole.raw(9, name).bytes(tag.str()).str()));
  }
}

void setVariable(DrawingDatabase& db, std::string_view name, int code, const TagWriter& tag) {
  DrawingDatabase::Parts& parts = db.parts();
  if (parts.header.slot() == nullptr) return;
  Tag former;
  std::size_t index = 0;
  if (findVariable(parts.header.slot()->tags(), name, code, former, index) && former.bytes == tag.str()) return;
  Record& record = parts.editor.edit(*parts.header.slot());
  parts.header.forget();
  setVariableIn(record, name, code, tag, parts.memory);
}

}  // namespace host::database

// The one way in which slots are made and their records changed.
#pragma once

#include <cstdint>
#include <string_view>

#include "Database/Slot.h"

namespace host::database {

/// Enters every change into the journal first, counts it and tells the observer.
class RecordEditor {
 public:
  explicit RecordEditor(DrawingDatabase& db) : db_(db) {}
  RecordEditor(const RecordEditor&) = delete;
  RecordEditor& operator=(const RecordEditor&) = delete;

  /// A new object of this session with a fresh handle, without a record. Its maker holds it with NewSlots until it is
  /// whole.
  Slot* make(DxfType type, Slot* owner, std::uint16_t flags);
  /// To be called before anything of a slot but its record changes.
  void touch(Slot& slot);
  /// Record of the slot for editing.
  Record& edit(Slot& slot);
  /// Gives the slot another record; the bytes are copied.
  void set(Slot& slot, std::string_view bytes);
  /// Replaces the tag, or adds it at the end of the subclass. `value` is in the drawing's encoding.
  void setTag(Slot& slot, std::string_view subclass, int code, std::string_view value);

 private:
  DrawingDatabase& db_;
};

}  // namespace host::database

#include "Database/Store/RecordEditor.h"

#include "Database/Store/Parts.h"
#include "Database/Store/TagEdits.h"

namespace host::database {

Slot* RecordEditor::make(DxfType type, Slot* owner, std::uint16_t flags) {
  DrawingDatabase::Parts& parts = db_.parts();
  parts.handles.makeRoom();
  parts.slots.makeRoom();
  Live* const live = parts.journal.isRecording() ? parts.slots.makeLive() : nullptr;
  // From here on nothing can fail.
  Slot* const slot = parts.slots.make();
  slot->type = type;
  slot->owner = owner;
  slot->flags = static_cast<std::uint16_t>(flags | kNew);
  slot->live = live;
  parts.handles.enter(*slot);
  parts.journal.recordMade(*slot);
  if (type == DxfType::Layout) parts.blocks.forgetLayouts();
  return slot;
}

void RecordEditor::touch(Slot& slot) {
  DrawingDatabase::Parts& parts = db_.parts();
  parts.journal.record(slot);
  parts.watchers.used(slot);
  slot.flags = static_cast<std::uint16_t>(slot.flags & ~kFollows);
}

Record& RecordEditor::edit(Slot& slot) {
  touch(slot);
  DrawingDatabase::Parts& parts = db_.parts();
  if (slot.type == DxfType::Layer || slot.type == DxfType::Header) parts.forgetDefaults();
  Live& live = parts.slots.live(slot);
  if ((slot.flags & (kNew | kChanged)) == 0) {
    live.record = Record(slot.fileBytes());
    slot.flags |= kChanged;
  }
  live.modified = true;
  return live.record;
}

void RecordEditor::set(Slot& slot, std::string_view bytes) {
  const std::string_view kept = db_.keep(bytes);
  edit(slot).assign(kept);
}

void RecordEditor::setTag(Slot& slot, std::string_view subclass, int code, std::string_view value) {
  const std::string bytes = db_.tagWriter().raw(code, value).take();
  setTagIn(edit(slot), subclass, code, db_.keep(bytes));
}

}  // namespace host::database

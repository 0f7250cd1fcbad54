#include "Editor/Commands/CommandWatch.h"

#include <utility>

namespace host::editor {

void CommandWatch::begin(const database::DrawingDatabase& drawing, bool gathersChanges) {
  begunAt_ = seenAt_ = drawing.changeCount();
  slots_ = drawing.slotCount();
  gathers_ = gathersChanges;
  hasGap_ = false;
  known_.clear();
  change_ = {};
}

bool CommandWatch::hasUnnamed(const database::DrawingDatabase& drawing, std::uint64_t named) const {
  return drawing.changeCount() > seenAt_ + named + (drawing.slotCount() - slots_);
}

void CommandWatch::used(const database::Slot& object) {
  skips_.used(object);
  if (!gathers_) return;
  // The drawing counts a change before it names the object; opening one for read counts nothing.
  const std::uint64_t count = object.database().changeCount();
  if (count == seenAt_) return;
  hasGap_ = hasGap_ || hasUnnamed(object.database(), 1);
  seenAt_ = count;
  slots_ = object.database().slotCount();
  if (known_.insert(&object).second) change_.objects.push_back(const_cast<database::Slot*>(&object));
}

DrawingChange CommandWatch::takeChange(const database::DrawingDatabase& drawing) {
  change_.isWhole = hasGap_ || hasUnnamed(drawing, 0);
  known_.clear();
  return std::exchange(change_, {});
}

}  // namespace host::editor

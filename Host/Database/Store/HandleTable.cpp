#include "Database/Store/HandleTable.h"

#include <algorithm>
#include <utility>

#include "Database/UnwrittenTags.h"

namespace host::database {

Slot* HandleTable::find(std::uint64_t handle) const {
  const auto middle = byHandle_.begin() + static_cast<std::ptrdiff_t>(ofFile_);
  const bool isOfFile = !free_.contains(handle);
  const auto begin = isOfFile ? byHandle_.begin() : middle;
  const auto end = isOfFile ? middle : byHandle_.end();
  const auto found =
      std::lower_bound(begin, end, handle, [](const Slot* slot, std::uint64_t value) { return slot->handle < value; });
  if (found != end && (*found)->handle == handle) return *found;
  return found != begin ? findVertex(**(found - 1), handle) : nullptr;
}

void HandleTable::index(const Slots& slots) {
  byHandle_.clear();
  byHandle_.reserve(slots.count());
  slots.forEach([&](Slot& slot) {
    if (slot.handle != 0) byHandle_.push_back(&slot);
  });
  // Files list objects mostly by ascending handle within each section; ties keep file order, so the first one counts.
  std::stable_sort(byHandle_.begin(), byHandle_.end(),
                   [](const Slot* a, const Slot* b) { return a->handle < b->handle; });
  ofFile_ = byHandle_.size();
  std::vector<std::uint64_t> handles;
  handles.reserve(byHandle_.size());
  for (const Slot* slot : byHandle_) handles.push_back(slot->handle);
  free_ = findFreeHandles(handles, byHandle_.empty() ? 0 : byHandle_.back()->handle, next_);
  next_ = seed_ = free_.begin;
}

const Slot* HandleTable::repeated() const {
  const auto found = std::adjacent_find(byHandle_.begin(), byHandle_.end(),
                                        [](const Slot* a, const Slot* b) { return a->handle == b->handle; });
  return found != byHandle_.end() ? *(found + 1) : nullptr;
}

void HandleTable::enter(Slot& slot) {
  makeRoom();
  slot.handle = next_++;
  seed_ = next_;
  byHandle_.push_back(&slot);  // the newest handle is the highest of its part: the order holds
}

std::uint64_t HandleTable::take(std::uint64_t count) {
  const std::uint64_t first = std::exchange(next_, next_ + count);
  seed_ = next_;
  return first;
}

}  // namespace host::database

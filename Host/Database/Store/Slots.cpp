#include "Database/Store/Slots.h"

#include <cstdint>
#include <cstring>

namespace host::database {

namespace {

constexpr std::size_t kPointerBytes = sizeof(void*);  // of the drawing's address, at the head of every block

}  // namespace

void SlotPool::makeRoom() {
  if (count_ < blocks_.size() * kSlotsPerBlock) return;
  database::makeRoom(blocks_);
  char* const block = static_cast<char*>(source_.allocate(kBlockBytes, kBlockBytes));
  std::memcpy(block, &database_, kPointerBytes);
  blocks_.push_back(block);
}

Slot* SlotPool::make() {
  makeRoom();
  Slot* const slot = firstSlot(blocks_.back()) + count_ % kSlotsPerBlock;
  ++count_;
  return new (slot) Slot;
}

DrawingDatabase& SlotPool::databaseOf(const Slot* slot) {
  const auto address = reinterpret_cast<std::uintptr_t>(slot) & ~(std::uintptr_t{kBlockBytes} - 1);
  DrawingDatabase* database = nullptr;
  std::memcpy(&database, reinterpret_cast<const void*>(address), kPointerBytes);
  return *database;
}

Slots::~Slots() {
  // The memory goes with the pools.
  const auto end = [](Slot& slot) {
    if (slot.live != nullptr) slot.live->~Live();
  };
  numbered_.forEach(end);
  late_.forEach(end);
}

DrawingDatabase& Slot::database() const { return SlotPool::databaseOf(this); }

TagCursor Slot::tags() const {
  if (live != nullptr && (flags & (kNew | kChanged)) != 0) return live->record.tags();
  return TagCursor(fileBytes());
}

Record Slot::record() const {
  if (live != nullptr && (flags & (kNew | kChanged)) != 0) return live->record;
  return begin != nullptr ? Record(fileBytes()) : Record();
}

}  // namespace host::database

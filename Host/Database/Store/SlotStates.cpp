#include "Database/Store/SlotStates.h"

#ifndef NDEBUG

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include "Database/ObjectAccess.h"

namespace host::database {

namespace {

bool has(const Slot& slot, int flags) { return (slot.flags & flags) != 0; }

/// What is wrong with the slot; null when nothing is.
const char* wrongRecord(const Slot& slot) {
  const bool isNew = has(slot, kNew);
  if (isNew == (slot.begin != nullptr)) return "is new and of the file, or neither";
  if (isNew && has(slot, kChanged | kNeedsHandle)) return "is new and has a flag of the file's slots";
  if (has(slot, kChanged) && slot.live == nullptr) return "is changed without a record";
  if (!isNew || slot.isErased()) return nullptr;
  if (slot.live == nullptr) return "is new without a record";
  const Record& record = slot.live->record;
  // To ask a record for its pieces would spell unwritten tags.
  return record.unwritten() == nullptr && record.isEmpty() ? "is new with an empty record" : nullptr;
}

const char* wrongParts(const Slot& slot) {
  if (slot.isSubEntity() && !slot.isEntity()) return "is a part of an entity, but no entity";
  if (has(slot, kUnmade) && (slot.type != DxfType::Polyline3d || !has(slot, kNew) || slot.unmade == nullptr)) {
    return "has unmade vertices without being a new polyline";
  }
  if (!has(slot, kFollows)) return nullptr;
  if (!has(slot, kNew) || !slot.isSubEntity() || slot.owner == nullptr) return "follows nothing";
  return !slot.isErased() && slot.owner->isErased() ? "does not follow its polyline" : nullptr;
}

const char* wrongOpening(const Slot& slot) {
  if (slot.live == nullptr) return nullptr;
  const Live& live = *slot.live;
  if (live.writer && live.readers > 0) return "is open for read and for write";
  if (live.object == nullptr) return live.writer || live.readers > 0 ? "is open without an object" : nullptr;
  if (HostObjectAccess::slot(*live.object) != &slot) return "has the object of another slot";
  return live.isAppending && !live.writer ? "is being added without being open for write" : nullptr;
}

}  // namespace

void checkSlot(const Slot& slot) {
  for (const auto check : {wrongRecord, wrongParts, wrongOpening}) {
    const char* const wrong = check(slot);
    if (wrong == nullptr) continue;
    std::fprintf(stderr, "slot %" PRIX64 " (type %d, flags %d) %s\n", slot.handle, static_cast<int>(slot.type),
                 slot.flags, wrong);
    std::abort();
  }
}

void checkSlots(const DrawingDatabase& db) {
  db.forEachSlot([](const Slot& slot) { checkSlot(slot); });
}

}  // namespace host::database

#endif

// Which slot has which handle, and the handles of new objects.
#pragma once

#include <cstdint>
#include <vector>

#include "Database/FreeHandles.h"
#include "Database/Store/Slots.h"

namespace host::database {

class HandleTable {
 public:
  /// The slot with the handle, erased or not; null when there is none. Makes the vertices of a new polyline when the
  /// handle is one of theirs.
  Slot* find(std::uint64_t handle) const;

  /// The first handle that the file leaves to others; before `index`.
  void setSeed(std::uint64_t seed) { next_ = seed; }
  /// Enters all slots of a file that was read.
  void index(const Slots& slots);
  /// A slot of the file whose handle another one has too, or null.
  const Slot* repeated() const;

  /// The next `enter` cannot fail then.
  void makeRoom() { database::makeRoom(byHandle_); }
  /// Gives the slot the next handle.
  void enter(Slot& slot);
  /// Takes the next handles from those that are left, without a slot; the first of them.
  std::uint64_t take(std::uint64_t count);
  std::uint64_t next() const { return next_; }
  /// Above the handles of all new objects but those whose making was undone.
  std::uint64_t& seed() { return seed_; }
  const FreeHandles& freeHandles() const { return free_; }

 private:
  // The file's slots, then those that got their handles here; each part ascending. See FreeHandles.
  std::vector<Slot*> byHandle_;
  std::size_t ofFile_ = 0;
  FreeHandles free_;
  std::uint64_t next_ = 1;
  std::uint64_t seed_ = 1;
};

}  // namespace host::database

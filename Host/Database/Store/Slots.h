// The memory of a drawing's slots and of what they hold while their objects are open, new or changed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory_resource>
#include <new>
#include <utility>
#include <vector>

#include "Database/Memory.h"
#include "Database/Slot.h"

namespace host::database {

/// Slots in blocks whose addresses tell their database: the head of each block holds it (see Slot.h).
class SlotPool {
 public:
  explicit SlotPool(DrawingDatabase* database) : database_(database) {}
  SlotPool(const SlotPool&) = delete;
  SlotPool& operator=(const SlotPool&) = delete;

  /// The next `make` cannot fail then.
  void makeRoom();
  Slot* make();
  std::size_t size() const { return count_; }
  /// The slots in the order in which they were made.
  Slot& at(std::size_t index) const { return firstSlot(blocks_[index / kSlotsPerBlock])[index % kSlotsPerBlock]; }
  static DrawingDatabase& databaseOf(const Slot* slot);

  template <class Visit>
  void forEach(Visit&& visit) const {
    std::size_t left = count_;
    for (char* const block : blocks_) {
      Slot* const slots = firstSlot(block);
      const std::size_t here = std::min(left, kSlotsPerBlock);
      for (std::size_t i = 0; i < here; ++i) visit(slots[i]);
      left -= here;
    }
  }

 private:
  static constexpr std::size_t kBlockBytes = kPoolBlockBytes;
  static constexpr std::size_t kHeadBytes = 64;
  static constexpr std::size_t kSlotsPerBlock = (kBlockBytes - kHeadBytes) / sizeof(Slot);
  static Slot* firstSlot(char* block) { return reinterpret_cast<Slot*>(block + kHeadBytes); }

  DrawingDatabase* database_;
  MemorySource source_;
  std::vector<char*> blocks_;
  std::size_t count_ = 0;
};

/// All slots of a drawing. Those of the file and of the commands have numbers, by which undo steps name what they made;
/// vertices that became objects late have none.
class Slots {
 public:
  explicit Slots(DrawingDatabase* database) : numbered_(database), late_(database) {}
  Slots(const Slots&) = delete;
  Slots& operator=(const Slots&) = delete;
  ~Slots();

  /// The next `make` cannot fail then.
  void makeRoom() { numbered_.makeRoom(); }
  Slot* make() { return numbered_.make(); }
  std::size_t count() const { return numbered_.size(); }
  Slot& at(std::size_t number) const { return numbered_.at(number); }
  template <class Visit>
  void forEach(Visit&& visit) const {
    numbered_.forEach(visit);
  }

  Slot* makeLate() { return late_.make(); }
  const SlotPool& late() const { return late_; }

  Live* makeLive() { return new (lives_.allocate(sizeof(Live), alignof(Live))) Live; }
  /// The Live of a slot, made when it has none.
  Live& live(Slot& slot) {
    if (slot.live == nullptr) slot.live = makeLive();
    return *slot.live;
  }
  void dropLive(Slot& slot) {
    slot.live->~Live();
    lives_.deallocate(std::exchange(slot.live, nullptr), sizeof(Live), alignof(Live));
  }

 private:
  /// What the pool asks its source for at once, at most.
  static constexpr std::size_t kMostLivesPerChunk = std::size_t{1} << 14;

  MemorySource liveSource_;
  std::pmr::unsynchronized_pool_resource lives_{{kMostLivesPerChunk, sizeof(Live)}, &liveSource_};
  SlotPool numbered_;
  SlotPool late_;
};

}  // namespace host::database

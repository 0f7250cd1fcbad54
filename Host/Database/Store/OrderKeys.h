// Draw-order positions of entities.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "Database/FreeHandles.h"
#include "Database/Slot.h"

namespace host::database {

/// Position in the draw order of a block: entities are drawn by ascending key. An entity that was never moved has its
/// own handle; one moved to the top has the highest handle of that moment and a count that grows with every move. New
/// entities whose handles come from a gap among those of the file stand above all others, in their own order.
struct OrderKey {
  std::uint64_t handle = 0;
  std::int64_t move = 0;
  auto operator<=>(const OrderKey&) const = default;
};

/// The keys of the entities that were moved. A command may move all of a large drawing, one by one: places are found by
/// open addressing, without memory of their own.
class OrderKeys {
 public:
  explicit OrderKeys(const FreeHandles& freeHandles) : free_(freeHandles) {}

  /// The entity's key; its own when it was never moved.
  OrderKey of(const Slot& entity) const {
    if (places_.empty()) return own(entity);
    const Place& place = places_[indexOf(entity)];
    return place.entity != nullptr ? place.key : own(entity);
  }
  /// The key of an entity that was never moved.
  OrderKey own(const Slot& entity) const {
    return free_.isGap() && free_.contains(entity.handle) ? youngest(entity.handle) : OrderKey{entity.handle, 0};
  }
  /// That of an entity with a handle from a gap.
  OrderKey youngest(std::uint64_t handle) const {
    return {std::numeric_limits<std::uint64_t>::max(), static_cast<std::int64_t>(handle - free_.begin) + 1};
  }

  /// Makes sure that giving a key to one more entity cannot fail.
  void makeRoom() {
    if ((count_ + 1) * 3 > places_.size() * 2) grow();
  }

  /// Gives the entity a key; its former one is the answer. One that has a key needs no room.
  OrderKey set(const Slot& entity, OrderKey key) {
    if (places_.empty() || places_[indexOf(entity)].entity == nullptr) makeRoom();
    Place& place = places_[indexOf(entity)];
    const OrderKey former = place.entity != nullptr ? place.key : own(entity);
    if (place.entity == nullptr) ++count_;
    place = {&entity, key};
    return former;
  }

 private:
  struct Place {
    const Slot* entity = nullptr;
    OrderKey key;
  };

  /// Where the entity is, or would be.
  std::size_t indexOf(const Slot& entity) const {
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;  // 2^64 over the golden ratio
    const std::size_t mask = places_.size() - 1;
    // Entities made one after the other are moved so too: eight neighbours stay neighbours, for the processor's cache.
    constexpr std::size_t kNeighbours = 8;
    const std::uintptr_t number = reinterpret_cast<std::uintptr_t>(&entity) / sizeof(Slot);
    const std::size_t spread = number / kNeighbours * kSpread >> 20;
    std::size_t index = (spread * kNeighbours + number % kNeighbours) & mask;
    while (places_[index].entity != nullptr && places_[index].entity != &entity) index = (index + 1) & mask;
    return index;
  }

  void grow() {
    std::vector<Place> former(places_.empty() ? 64 : places_.size() * 2);
    former.swap(places_);
    for (const Place& place : former) {
      if (place.entity != nullptr) places_[indexOf(*place.entity)] = place;
    }
  }

  FreeHandles free_;
  std::vector<Place> places_;  // a power of two of them
  std::size_t count_ = 0;
};

}  // namespace host::database

// Draw order: sort-entities tables.
//
// In the file a table pairs entities with sort handles, and a block is drawn by ascending sort handle; an entity
// without a pair sorts by its own handle. Here every entity has a key (see OrderKey) that sorts the same way and lets
// one entity move to the top in constant time. Sort handles, a permutation of the entities' own, are assigned when the
// drawing is saved (see Settling.h).
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Database/Store/OrderKeys.h"

namespace host::database {

/// Parsed contents of a sort-entities table; written back when the drawing is saved.
struct SortContents {
  explicit SortContents(const FreeHandles& freeHandles) : keys(freeHandles) {}

  Slot* block = nullptr;
  OrderKeys keys;
  std::int64_t moves = 0;  // counts moves to the top
  std::int64_t sinks = 0;  // counts moves to the bottom
  // Every state the keys are ever in has a number; 0 is that of the record. Undo brings a state's number back with it.
  std::uint64_t state = 0;
  std::uint64_t latestState = 0;
};

class SortTables {
 public:
  explicit SortTables(DrawingDatabase& db) : db_(db) {}
  SortTables(const SortTables&) = delete;
  SortTables& operator=(const SortTables&) = delete;

  /// What the table says, parsed when first asked for.
  SortContents& contents(const Slot& table);
  /// Gives an entity its place and enters that into the journal.
  void setKey(Slot& table, const Slot& entity, OrderKey key);
  /// Living entities of a block, bottom first.
  std::vector<Slot*> drawOrder(const BlockContents& block);

  /// Whether a living table says something else than its record.
  bool isChanged() const;
  /// Those that were parsed.
  const std::unordered_map<const Slot*, std::unique_ptr<SortContents>>& all() const { return contents_; }

 private:
  DrawingDatabase& db_;
  std::unordered_map<const Slot*, std::unique_ptr<SortContents>> contents_;
};

inline constexpr std::string_view kSortents = "AcDbSortentsTable";

}  // namespace host::database

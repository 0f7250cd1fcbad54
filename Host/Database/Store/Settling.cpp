#include "Database/Store/Settling.h"

#include <algorithm>

#include "Database/Store/Parts.h"
#include "Database/Store/TagEdits.h"
#include "Text/Text.h"

namespace host::database {

namespace {

/// What a saved drawing has in place of its records where these count or order what the drawing holds.
class Settling {
 public:
  Settling(DrawingDatabase& db, Arena& memory) : db_(db), parts_(db.parts()), memory_(memory) {}

  std::unordered_map<const Slot*, Record> take() {
    std::uint64_t highest = 0;
    bool hasSortTable = false;
    bool hasNew = false;
    db_.forEachSlot([&](const Slot& slot) {
      if (slot.isErased()) return;
      if ((slot.flags & (kNew | kNeedsHandle)) != 0) hasNew = true;
      const UnmadeVertices* const vertices = slot.unmadeVertices();
      highest = std::max(highest, slot.handle + (vertices != nullptr ? vertices->handles() : 0));
      hasSortTable = hasSortTable || slot.type == DxfType::SortentsTable;
    });
    if (parts_.handles.freeHandles().isGap()) readSortTables();
    for (const auto& [slot, contents] : parts_.sortTables.all()) {
      if (!slot->isErased() && (contents->state != 0 || ordersYoungest(*contents))) settlePairs(*slot, *contents);
    }
    for (const auto& [type, table] : parts_.tables.all()) settleCount(table);
    if (hasNew && hasSortTable && parts_.file.classes != nullptr) declareSortTables();
    if (hasNew) settleSeed(highest);
    return std::move(settled_);
  }

 private:
  Record& recordOf(const Slot& slot) { return settled_.try_emplace(&slot, slot.record()).first->second; }
  std::string_view kept(const TagWriter& out) { return memory_.keep(out.str()); }

  void readSortTables() {
    db_.forEachSlot([&](const Slot& table) {
      if (table.type == DxfType::SortentsTable && !table.isErased()) parts_.sortTables.contents(table);
    });
  }

  /// New entities with handles from a gap stand on top by keys that no file holds: a table that was there before them
  /// has to name them.
  bool ordersYoungest(const SortContents& contents) const {
    if (!parts_.handles.freeHandles().isGap() || contents.block == nullptr) return false;
    const BlockContents* const block = db_.block(contents.block);
    return block != nullptr && std::any_of(block->entities.begin(), block->entities.end(), [&](const Slot* entity) {
             return !entity->isErased() && parts_.handles.freeHandles().contains(entity->handle);
           });
  }

  /// The pairs of a table: the i-th entity drawn gets the i-th smallest handle.
  void settlePairs(const Slot& table, const SortContents& contents) {
    const BlockContents* const block = contents.block != nullptr ? db_.block(contents.block) : nullptr;
    if (block == nullptr) return;
    const std::vector<Slot*> order = db_.drawOrder(*block);
    std::vector<std::uint64_t> handles;
    handles.reserve(order.size());
    for (const Slot* const slot : order) handles.push_back(slot->handle);
    std::sort(handles.begin(), handles.end());
    TagWriter out = db_.tagWriter();
    for (std::size_t i = 0; i < order.size(); ++i) {
      if (order[i]->handle != handles[i]) out.handle(331, order[i]->handle).handle(5, handles[i]);
    }
    Record& record = recordOf(table);
    std::size_t number = 0;
    std::size_t begin = 0;
    bool inside = false;
    Tag tag;
    for (TagCursor cursor = record.tags(); cursor.next(tag) && tag.code < 1000; ++number) {
      if (tag.code == 100) inside = tag.trimmed() == kSortents;
      if (inside && (tag.code == 100 || tag.code == 330)) begin = number + 1;
    }
    record.replace(begin, number - begin, kept(out));
  }

  /// A table that grew says how many records it has.
  void settleCount(const SymbolTable& table) {
    if (table.head == nullptr) return;
    const bool grew = std::any_of(table.records.begin(), table.records.end(), [](const Slot* record) {
      return (record->flags & kNew) != 0 && !record->isErased();
    });
    if (!grew && (table.head->flags & kNew) == 0) return;
    const std::int64_t living = std::count_if(table.records.begin(), table.records.end(),
                                              [](const Slot* record) { return !record->isErased(); });
    constexpr std::string_view kTable = "AcDbSymbolTable";
    constexpr int kCount = 70;
    Tag tag;
    if (findTagIn(table.head->tags(), kTable, kCount, tag) && tag.integer() == living) return;
    TagWriter out = db_.tagWriter();
    setTagIn(recordOf(*table.head), kTable, kCount, kept(out.integer(kCount, living)));
  }

  /// Programs need the sort table's class declared when the file did not use it before.
  void declareSortTables() {
    Tag tag;
    for (TagCursor cursor = parts_.file.classes->tags(); cursor.next(tag);) {
      if (tag.code == 1 && tag.trimmed() == "SORTENTSTABLE") return;
    }
    TagWriter out = db_.tagWriter();
    out.raw(0, "CLASS").raw(1, "SORTENTSTABLE").raw(2, "AcDbSortentsTable").raw(3, "ObjectDBX Classes").integer(90, 0);
    if (db_.version() >= DrawingVersion::V2004) out.integer(91, 1);
    recordOf(*parts_.file.classes).append(kept(out.integer(280, 0).integer(281, 0)));
  }

  void settleSeed(std::uint64_t highest) {
    if (parts_.header.slot() == nullptr) return;
    if (text::parseHandle(text::toUtf8(db_.headerText("$HANDSEED", 5).value_or(L""))) > highest) return;
    TagWriter seed = db_.tagWriter();
    seed.handle(5, leastSeed(highest, parts_.handles.seed()));
    setVariableIn(recordOf(*parts_.header.slot()), "$HANDSEED", 5, seed, memory_);
  }

  DrawingDatabase& db_;
  DrawingDatabase::Parts& parts_;
  Arena& memory_;
  std::unordered_map<const Slot*, Record> settled_;
};

}  // namespace

std::unordered_map<const Slot*, Record> settledRecords(DrawingDatabase& db, Arena& memory) {
  return Settling(db, memory).take();
}

}  // namespace host::database

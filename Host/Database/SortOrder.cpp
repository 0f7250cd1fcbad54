// Draw order: sort-entities tables.
//
// In the file a table pairs entities with sort handles, and a block is drawn by ascending sort handle; an entity
// without a pair sorts by its own handle. Here every entity has a key (see OrderKey) that sorts the same way and lets
// one entity move to the top in constant time. Sort handles, a permutation of the entities' own, are assigned when the
// drawing is saved.
#include <algorithm>

#include "Database/ObjectAccess.h"
#include "Database/Parts.h"
#include "Text/Text.h"
#include "sorttab.h"

using host::database::BlockContents;
using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::OrderKey;
using host::database::Slot;
using host::database::SortContents;
using host::database::TagWriter;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSortentsTable, AcDbObject)

namespace {

constexpr std::string_view kSortents = "AcDbSortentsTable";

[[maybe_unused]] const bool registered = host::database::registerClass(
    {DxfType::SortentsTable, &AcDbSortentsTable::desc, []() -> AcDbObject* { return new AcDbSortentsTable; }});

OrderKey keyOf(const SortContents& contents, const Slot& entity) { return contents.keys.of(entity); }

}  // namespace

namespace host::database {

SortContents& DrawingDatabase::Parts::sortTable(const Slot& slot) {
  if (const auto found = sortTables.find(&slot); found != sortTables.end()) return *found->second;
  auto contents = std::make_unique<SortContents>(freeHandles);
  const Slot* entity = nullptr;
  bool inside = false;
  Tag tag;
  for (TagCursor cursor = slot.tags(); cursor.next(tag) && tag.code < 1000;) {
    if (tag.code == 100) inside = tag.trimmed() == kSortents;
    if (!inside) continue;
    if (tag.code == 330) contents->block = self.findHandle(tag.handle());
    if (tag.code == 331) entity = self.findHandle(tag.handle());
    if (tag.code == 5 && entity != nullptr) {
      if (tag.handle() != entity->handle) contents->keys.set(*entity, {tag.handle(), 0});
      entity = nullptr;
    }
  }
  return *sortTables.emplace(&slot, std::move(contents)).first->second;
}

void DrawingDatabase::Parts::setOrderKey(Slot& table, const Slot& entity, OrderKey key) {
  SortContents& contents = sortTable(table);
  contents.keys.makeRoom();
  // Where an entity stands that is taken away by undo does not matter.
  const bool isJournaled = inStep && !isOfThisStep(entity);
  if (isJournaled) makeRoom(currentStep.order);
  if (inStep) {
    std::vector<UndoStep::OrderState>& known = currentStep.orderStates;
    const bool isKnown = std::any_of(known.begin(), known.end(), [&](const auto& one) { return one.table == &table; });
    if (!isKnown) known.push_back({&table, contents.state});
  }
  // From here on nothing can fail.
  const OrderKey former = contents.keys.set(entity, key);
  if (isJournaled) currentStep.order.push_back({&table, &entity, former});
  contents.state = ++contents.latestState;
  ++changes;
  if (observer != nullptr) observer->used(entity);
}

namespace {

/// The sort table of a block, or null.
const Slot* sortTableOf(const DrawingDatabase& db, const Slot* blockRecord) {
  if (blockRecord == nullptr) return nullptr;
  bool inGroup = false;
  Tag tag;
  for (TagCursor cursor = blockRecord->tags(); cursor.next(tag) && tag.code < 1000;) {
    if (tag.code == 102) inGroup = tag.trimmed() == "{ACAD_XDICTIONARY";
    if (!inGroup || tag.code != 360) continue;
    const Slot* const dictionary = db.findHandle(tag.handle());
    if (dictionary == nullptr || dictionary->isErased() || dictionary->type != DxfType::Dictionary) return nullptr;
    const DictionaryContents& contents = const_cast<DrawingDatabase&>(db).parts().dictionary(*dictionary);
    const auto found = contents.byKey.find(L"acad_sortents");
    if (found == contents.byKey.end()) return nullptr;
    const Slot* const table = contents.entries[found->second].object;
    return table != nullptr && !table->isErased() && table->type == DxfType::SortentsTable ? table : nullptr;
  }
  return nullptr;
}

}  // namespace

std::vector<Slot*> DrawingDatabase::drawOrder(const BlockContents& block) const {
  std::vector<Slot*> living;
  living.reserve(block.entities.size());
  for (Slot* const slot : block.entities) {
    if (!slot->isErased()) living.push_back(slot);
  }
  const Slot* const table = sortTableOf(*this, block.record);
  if (table == nullptr) {
    // Without a table entities are drawn in the order of the file, which is that of their handles but for odd files.
    return living;
  }
  const SortContents& contents = parts_->sortTable(*table);
  std::vector<std::pair<OrderKey, Slot*>> keyed;
  keyed.reserve(living.size());
  for (Slot* const slot : living) keyed.emplace_back(keyOf(contents, *slot), slot);
  std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::transform(keyed.begin(), keyed.end(), living.begin(), [](const auto& entry) { return entry.second; });
  return living;
}

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
    if (parts_.freeHandles.isGap()) readSortTables();
    for (const auto& [slot, contents] : parts_.sortTables) {
      if (!slot->isErased() && (contents->state != 0 || ordersYoungest(*contents))) settlePairs(*slot, *contents);
    }
    for (const auto& [type, table] : parts_.tables) settleCount(table);
    if (hasNew && hasSortTable && parts_.classes != nullptr) declareSortTables();
    if (hasNew) settleSeed(highest);
    return std::move(settled_);
  }

 private:
  Record& recordOf(const Slot& slot) { return settled_.try_emplace(&slot, parts_.current(slot)).first->second; }
  std::string_view kept(const TagWriter& out) { return memory_.keep(out.str()); }

  void readSortTables() {
    db_.forEachSlot([&](const Slot& table) {
      if (table.type == DxfType::SortentsTable && !table.isErased()) parts_.sortTable(table);
    });
  }

  /// New entities with handles from a gap stand on top by keys that no file holds: a table that was there before them
  /// has to name them.
  bool ordersYoungest(const SortContents& contents) const {
    if (!parts_.freeHandles.isGap() || contents.block == nullptr) return false;
    const BlockContents* const block = db_.block(contents.block);
    return block != nullptr && std::any_of(block->entities.begin(), block->entities.end(), [&](const Slot* entity) {
             return !entity->isErased() && parts_.freeHandles.contains(entity->handle);
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
    for (TagCursor cursor = parts_.classes->tags(); cursor.next(tag);) {
      if (tag.code == 1 && tag.trimmed() == "SORTENTSTABLE") return;
    }
    TagWriter out = db_.tagWriter();
    out.raw(0, "CLASS").raw(1, "SORTENTSTABLE").raw(2, "AcDbSortentsTable").raw(3, "ObjectDBX Classes").integer(90, 0);
    if (parts_.version >= DrawingVersion::V2004) out.integer(91, 1);
    recordOf(*parts_.classes).append(kept(out.integer(280, 0).integer(281, 0)));
  }

  void settleSeed(std::uint64_t highest) {
    if (parts_.header == nullptr) return;
    if (text::parseHandle(text::toUtf8(db_.headerText("$HANDSEED", 5).value_or(L""))) > highest) return;
    TagWriter seed = db_.tagWriter();
    seed.handle(5, leastSeed(highest, parts_.nextHandle));
    setVariableIn(recordOf(*parts_.header), "$HANDSEED", 5, seed, memory_);
  }

  DrawingDatabase& db_;
  DrawingDatabase::Parts& parts_;
  Arena& memory_;
  std::unordered_map<const Slot*, Record> settled_;
};

}  // namespace

std::unordered_map<const Slot*, Record> DrawingDatabase::Parts::settledRecords(Arena& memory) {
  return Settling(self, memory).take();
}

}  // namespace host::database

AcDbSortentsTable::AcDbSortentsTable() {
  const host::text::Codec codec;
  HostObjectAccess::initDetached(*this, "SORTENTSTABLE", false, TagWriter(codec).raw(100, kSortents).take());
}

AcDbObjectId AcDbSortentsTable::blockId() const {
  return AcDbObjectId(slot_ != nullptr ? slot_->database().parts().sortTable(*slot_).block : nullptr);
}

Acad::ErrorStatus AcDbSortentsTable::setBlockId(AcDbObjectId block) {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (block.isNull()) return Acad::eNullObjectId;
  if (block.slot()->type != DxfType::BlockRecord) return Acad::eWrongObjectType;
  HostObjectAccess::setTag(*this, kSortents, 330, host::text::formatHandle(block.slot()->handle));
  slot_->database().parts().sortTable(*slot_).block = block.slot();
  return Acad::eOk;
}

namespace {

/// Everything a move needs, checked: the table is open for write and every id is a living entity of its block.
struct Move {
  DrawingDatabase::Parts* parts = nullptr;
  SortContents* contents = nullptr;
  Acad::ErrorStatus status = Acad::eOk;
};

Move beginMove(AcDbSortentsTable& table, const AcDbObjectIdArray& ids) {
  Move move;
  Slot* const slot = HostObjectAccess::slot(table);
  if (slot == nullptr) {
    move.status = Acad::eNotInDatabase;
    return move;
  }
  move.parts = &slot->database().parts();
  move.contents = &move.parts->sortTable(*slot);
  if (!HostObjectAccess::canWrite(table)) move.status = Acad::eNotOpenForWrite;
  for (const AcDbObjectId& id : ids) {
    if (id.isNull() || !id.slot()->isEntity() || id.slot()->owner != move.contents->block) {
      move.status = Acad::eNotInBlock;
    }
  }
  return move;
}

/// Gives every entity of the block a key of its own in the given order; for moves that are not to an end.
void renumber(Move& move, Slot& table, const std::vector<Slot*>& order) {
  std::vector<OrderKey> keys;
  keys.reserve(order.size());
  for (const Slot* const slot : order) keys.push_back(move.contents->keys.own(*slot));
  std::sort(keys.begin(), keys.end());
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (keyOf(*move.contents, *order[i]) != keys[i]) move.parts->setOrderKey(table, *order[i], keys[i]);
  }
}

Acad::ErrorStatus moveBeside(AcDbSortentsTable& table, const AcDbObjectIdArray& ids, AcDbObjectId target, bool above) {
  AcDbObjectIdArray all = ids;
  all.append(target);
  Move move = beginMove(table, all);
  if (move.status != Acad::eOk) return move.status;
  if (ids.contains(target)) return Acad::eInvalidInput;
  Slot& slot = *HostObjectAccess::slot(table);
  std::vector<Slot*> order = slot.database().drawOrder(*slot.database().block(move.contents->block));
  std::vector<Slot*> moved;
  for (const AcDbObjectId& id : ids) moved.push_back(id.slot());
  order.erase(
      std::remove_if(order.begin(), order.end(),
                     [&](Slot* entity) { return std::find(moved.begin(), moved.end(), entity) != moved.end(); }),
      order.end());
  auto place = std::find(order.begin(), order.end(), target.slot());
  if (place == order.end()) return Acad::eWasErased;
  if (above) ++place;
  order.insert(place, moved.begin(), moved.end());
  renumber(move, slot, order);
  return Acad::eOk;
}

}  // namespace

Acad::ErrorStatus AcDbSortentsTable::moveToTop(const AcDbObjectIdArray& ids) {
  Move move = beginMove(*this, ids);
  if (move.status != Acad::eOk) return move.status;
  // The highest handle of this moment: entities made later come above, as they do in the file. In a gap every move
  // takes a handle of its own, for the place of an entity made later is counted by its handle only.
  const bool isGap = move.parts->freeHandles.isGap();
  const std::uint64_t top = move.parts->nextHandle - 1;
  for (const AcDbObjectId& id : ids) {
    const OrderKey key =
        isGap ? move.contents->keys.youngest(move.parts->nextHandle++) : OrderKey{top, ++move.contents->moves};
    move.parts->setOrderKey(*slot_, *id.slot(), key);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::moveToBottom(const AcDbObjectIdArray& ids) {
  Move move = beginMove(*this, ids);
  if (move.status != Acad::eOk) return move.status;
  for (int i = ids.length() - 1; i >= 0; --i) {
    move.parts->setOrderKey(*slot_, *ids[i].slot(), {0, --move.contents->sinks});
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::moveAbove(const AcDbObjectIdArray& ids, AcDbObjectId target) {
  return moveBeside(*this, ids, target, true);
}

Acad::ErrorStatus AcDbSortentsTable::moveBelow(const AcDbObjectIdArray& ids, AcDbObjectId target) {
  return moveBeside(*this, ids, target, false);
}

Acad::ErrorStatus AcDbSortentsTable::swapOrder(AcDbObjectId first, AcDbObjectId second) {
  AcDbObjectIdArray ids;
  ids.append(first);
  ids.append(second);
  Move move = beginMove(*this, ids);
  if (move.status != Acad::eOk) return move.status;
  const OrderKey firstKey = keyOf(*move.contents, *first.slot());
  const OrderKey secondKey = keyOf(*move.contents, *second.slot());
  move.parts->setOrderKey(*slot_, *first.slot(), secondKey);
  move.parts->setOrderKey(*slot_, *second.slot(), firstKey);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::firstEntityIsDrawnBeforeSecond(AcDbObjectId first, AcDbObjectId second,
                                                                    bool& isBefore) const {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  if (first.isNull() || second.isNull()) return Acad::eNullObjectId;
  const SortContents& contents = slot_->database().parts().sortTable(*slot_);
  isBefore = keyOf(contents, *first.slot()) < keyOf(contents, *second.slot());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::getFullDrawOrder(AcDbObjectIdArray& ids, Adesk::UInt8) const {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  DrawingDatabase& db = slot_->database();
  const BlockContents* const block = db.block(db.parts().sortTable(*slot_).block);
  if (block == nullptr) return Acad::eNullObjectId;
  ids.removeAll();
  for (Slot* const slot : db.drawOrder(*block)) ids.append(AcDbObjectId(slot));
  return Acad::eOk;
}

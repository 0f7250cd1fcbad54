// AcDbSortentsTable: the draw order of a block.
#include <algorithm>

#include "Database/ObjectAccess.h"
#include "Database/Store/Parts.h"
#include "Text/Text.h"
#include "sorttab.h"

using host::database::BlockContents;
using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::kSortents;
using host::database::OrderKey;
using host::database::Slot;
using host::database::SortContents;
using host::database::TagWriter;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSortentsTable, AcDbObject)

namespace {

[[maybe_unused]] const bool registered = host::database::registerClass(
    {DxfType::SortentsTable, &AcDbSortentsTable::desc, []() -> AcDbObject* { return new AcDbSortentsTable; }});

OrderKey keyOf(const SortContents& contents, const Slot& entity) { return contents.keys.of(entity); }

}  // namespace

AcDbSortentsTable::AcDbSortentsTable() {
  const host::text::Codec codec;
  HostObjectAccess::initDetached(*this, "SORTENTSTABLE", false, TagWriter(codec).raw(100, kSortents).take());
}

AcDbObjectId AcDbSortentsTable::blockId() const {
  return AcDbObjectId(slot_ != nullptr ? slot_->database().parts().sortTables.contents(*slot_).block : nullptr);
}

Acad::ErrorStatus AcDbSortentsTable::setBlockId(AcDbObjectId block) {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (block.isNull()) return Acad::eNullObjectId;
  if (block.slot()->type != DxfType::BlockRecord) return Acad::eWrongObjectType;
  HostObjectAccess::setTag(*this, kSortents, 330, host::text::formatHandle(block.slot()->handle));
  slot_->database().parts().sortTables.contents(*slot_).block = block.slot();
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
  move.contents = &move.parts->sortTables.contents(*slot);
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
    if (keyOf(*move.contents, *order[i]) != keys[i]) move.parts->sortTables.setKey(table, *order[i], keys[i]);
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
  const bool isGap = move.parts->handles.freeHandles().isGap();
  const std::uint64_t top = move.parts->handles.next() - 1;
  for (const AcDbObjectId& id : ids) {
    const OrderKey key =
        isGap ? move.contents->keys.youngest(move.parts->handles.take(1)) : OrderKey{top, ++move.contents->moves};
    move.parts->sortTables.setKey(*slot_, *id.slot(), key);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::moveToBottom(const AcDbObjectIdArray& ids) {
  Move move = beginMove(*this, ids);
  if (move.status != Acad::eOk) return move.status;
  for (int i = ids.length() - 1; i >= 0; --i) {
    move.parts->sortTables.setKey(*slot_, *ids[i].slot(), {0, --move.contents->sinks});
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
  move.parts->sortTables.setKey(*slot_, *first.slot(), secondKey);
  move.parts->sortTables.setKey(*slot_, *second.slot(), firstKey);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::firstEntityIsDrawnBeforeSecond(AcDbObjectId first, AcDbObjectId second,
                                                                    bool& isBefore) const {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  if (first.isNull() || second.isNull()) return Acad::eNullObjectId;
  const SortContents& contents = slot_->database().parts().sortTables.contents(*slot_);
  isBefore = keyOf(contents, *first.slot()) < keyOf(contents, *second.slot());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::getFullDrawOrder(AcDbObjectIdArray& ids, Adesk::UInt8) const {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  DrawingDatabase& db = slot_->database();
  const BlockContents* const block = db.block(db.parts().sortTables.contents(*slot_).block);
  if (block == nullptr) return Acad::eNullObjectId;
  ids.removeAll();
  for (Slot* const slot : db.drawOrder(*block)) ids.append(AcDbObjectId(slot));
  return Acad::eOk;
}

#include "Database/Store/SortTables.h"

#include <algorithm>
#include <utility>

#include "Database/Store/Parts.h"

namespace host::database {

SortContents& SortTables::contents(const Slot& table) {
  if (const auto found = contents_.find(&table); found != contents_.end()) return *found->second;
  auto contents = std::make_unique<SortContents>(db_.parts().handles.freeHandles());
  const Slot* entity = nullptr;
  bool inside = false;
  Tag tag;
  for (TagCursor cursor = table.tags(); cursor.next(tag) && tag.code < 1000;) {
    if (tag.code == 100) inside = tag.trimmed() == kSortents;
    if (!inside) continue;
    if (tag.code == 330) contents->block = db_.findHandle(tag.handle());
    if (tag.code == 331) entity = db_.findHandle(tag.handle());
    if (tag.code == 5 && entity != nullptr) {
      if (tag.handle() != entity->handle) contents->keys.set(*entity, {tag.handle(), 0});
      entity = nullptr;
    }
  }
  return *contents_.emplace(&table, std::move(contents)).first->second;
}

void SortTables::setKey(Slot& table, const Slot& entity, OrderKey key) {
  DrawingDatabase::Parts& parts = db_.parts();
  SortContents& contents = this->contents(table);
  contents.keys.makeRoom();
  parts.journal.makeRoomForMove(table, entity, contents.state);
  // From here on nothing can fail.
  const OrderKey former = contents.keys.set(entity, key);
  parts.journal.recordMove(table, entity, former);
  contents.state = ++contents.latestState;
  parts.watchers.used(entity);
}

namespace {

/// The sort table of a block, or null.
const Slot* sortTableOf(DrawingDatabase& db, const Slot* blockRecord) {
  if (blockRecord == nullptr) return nullptr;
  bool inGroup = false;
  Tag tag;
  for (TagCursor cursor = blockRecord->tags(); cursor.next(tag) && tag.code < 1000;) {
    if (tag.code == 102) inGroup = tag.trimmed() == "{ACAD_XDICTIONARY";
    if (!inGroup || tag.code != 360) continue;
    const Slot* const dictionary = db.findHandle(tag.handle());
    if (dictionary == nullptr || dictionary->isErased() || dictionary->type != DxfType::Dictionary) return nullptr;
    const Slot* const table = db.parts().dictionaries.contents(*dictionary).find(L"acad_sortents");
    return table != nullptr && !table->isErased() && table->type == DxfType::SortentsTable ? table : nullptr;
  }
  return nullptr;
}

}  // namespace

std::vector<Slot*> SortTables::drawOrder(const BlockContents& block) {
  std::vector<Slot*> living;
  living.reserve(block.entities.size());
  for (Slot* const slot : block.entities) {
    if (!slot->isErased()) living.push_back(slot);
  }
  const Slot* const table = sortTableOf(db_, block.record);
  if (table == nullptr) {
    // Without a table entities are drawn in the order of the file, which is that of their handles but for odd files.
    return living;
  }
  const SortContents& contents = this->contents(*table);
  std::vector<std::pair<OrderKey, Slot*>> keyed;
  keyed.reserve(living.size());
  for (Slot* const slot : living) keyed.emplace_back(contents.keys.of(*slot), slot);
  std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::transform(keyed.begin(), keyed.end(), living.begin(), [](const auto& entry) { return entry.second; });
  return living;
}

bool SortTables::isChanged() const {
  return std::any_of(contents_.begin(), contents_.end(),
                     [](const auto& table) { return table.second->state != 0 && !table.first->isErased(); });
}

}  // namespace host::database

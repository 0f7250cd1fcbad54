#include "Editor/Selection/SelectionSets.h"

#include <algorithm>

#include "dbmain.h"

namespace host::editor {
namespace {

constexpr std::int64_t kSetMark = 0x53455453;  // second half of a set's name; entities' names differ

}  // namespace

bool SelectionSet::contains(database::Slot* entity) {
  if (known.size() != members.size()) known = {members.begin(), members.end()};
  return known.contains(entity);
}

bool SelectionSet::add(database::Slot* entity) {
  if (contains(entity)) return false;
  members.push_back(entity);
  known.insert(entity);
  return true;
}

bool SelectionSet::remove(database::Slot* entity) {
  if (!contains(entity)) return false;
  std::erase(members, entity);
  known.erase(entity);
  return true;
}

bool SelectionSets::make(std::vector<database::Slot*> members, ads_name name) {
  if (sets_.size() >= kLimit) return false;
  sets_[next_].members = std::move(members);
  name[0] = next_++;
  name[1] = kSetMark;
  return true;
}

SelectionSet* SelectionSets::find(const ads_name name) {
  if (name == nullptr || name[1] != kSetMark) return nullptr;
  const auto found = sets_.find(name[0]);
  return found != sets_.end() ? &found->second : nullptr;
}

bool SelectionSets::free(const ads_name name) {
  return name != nullptr && name[1] == kSetMark && sets_.erase(name[0]) > 0;
}

void SelectionSets::forget(const database::DrawingDatabase& drawing) {
  std::erase_if(sets_, [&drawing](const auto& set) {
    return !set.second.members.empty() && &set.second.members.front()->database() == &drawing;
  });
}

database::Slot* entityOf(const ads_name name) {
  AcDbObjectId id;
  if (name == nullptr || name[1] == kSetMark || acdbGetObjectId(id, name) != Acad::eOk) return nullptr;
  database::Slot* const slot = id.slot();
  return slot != nullptr && slot->isEntity() ? slot : nullptr;
}

void nameOf(database::Slot* entity, ads_name name) {
  ads_name copy{};
  acdbGetAdsName(copy, AcDbObjectId(entity));
  ads_name_set(copy, name);
}

}  // namespace host::editor

#include "Database/Store/Blocks.h"

#include <algorithm>

#include "Database/Store/Parts.h"
#include "Database/Store/TagEdits.h"

namespace host::database {

const BlockContents* Blocks::find(const Slot* record) const {
  const auto found = contents_.find(record);
  return found != contents_.end() ? &found->second : nullptr;
}

void Blocks::makeRoom() { database::makeRoom(order_); }

void Blocks::setSpaces(Slot* modelSpace, Slot* paperSpace) {
  modelSpace_ = modelSpace;
  paperSpace_ = paperSpace;
  for (Slot* const space : {modelSpace, paperSpace}) {
    if (space != nullptr) contents(space).record = space;
  }
  forgetLayouts();
}

std::vector<std::pair<std::wstring, const BlockContents*>> Blocks::layouts() const {
  struct Found {
    std::int64_t tab;
    std::wstring name;
    const BlockContents* block;
  };
  std::vector<Found> found;
  if (!layouts_) {
    std::vector<Slot*> all;
    db_.parts().slots.forEach([&](Slot& slot) {
      if (slot.type == DxfType::Layout) all.push_back(&slot);
    });
    layouts_ = std::move(all);
  }
  for (const Slot* const slot : *layouts_) {
    if (slot->isErased()) continue;
    Tag tag;
    Found layout{0, {}, nullptr};
    if (findTagIn(slot->tags(), "AcDbLayout", 1, tag)) layout.name = db_.codec().decode(tag.value);
    if (findTagIn(slot->tags(), "AcDbLayout", 71, tag)) layout.tab = tag.integer();
    if (findTagIn(slot->tags(), "AcDbLayout", 330, tag)) layout.block = find(db_.findHandle(tag.handle()));
    if (layout.block != nullptr) found.push_back(std::move(layout));
  }
  std::stable_sort(found.begin(), found.end(), [&](const Found& a, const Found& b) {
    const bool aModel = a.block->record == modelSpace_;
    const bool bModel = b.block->record == modelSpace_;
    return aModel != bModel ? aModel : a.tab < b.tab;
  });
  std::vector<std::pair<std::wstring, const BlockContents*>> result;
  if (found.empty() || found.front().block->record != modelSpace_) {
    result.emplace_back(L"Model", &db_.modelSpace());
  }
  for (Found& layout : found) result.emplace_back(std::move(layout.name), layout.block);
  return result;
}

}  // namespace host::database

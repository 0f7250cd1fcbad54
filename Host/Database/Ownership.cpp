#include "Database/Ownership.h"

#include <algorithm>
#include <unordered_set>

namespace host::database {

namespace {

bool isDictionary(const Slot& slot) {
  return slot.type == DxfType::Dictionary || slot.type == DxfType::DictionaryWithDefault;
}

bool canBeOwned(const Slot* slot) {
  return slot != nullptr && !slot->isErased() && !slot->isEntity() &&
         (slot->type >= DxfType::FirstOther || isDictionary(*slot) || slot->type == DxfType::XRecord);
}

}  // namespace

Slot* extensionDictionary(const Slot& slot) {
  bool inGroup = false;
  Tag tag;
  for (TagCursor cursor = slot.tags(); cursor.next(tag) && tag.code != 100;) {
    if (tag.code == 102) inGroup = tag.trimmed() == "{ACAD_XDICTIONARY";
    if (!inGroup || tag.code != 360) continue;
    Slot* const found = slot.database().findHandle(tag.handle());
    return found != nullptr && !found->isErased() && isDictionary(*found) ? found : nullptr;
  }
  return nullptr;
}

std::vector<Slot*> ownedObjects(const Slot& slot) {
  std::vector<Slot*> owned;
  if (Slot* const extension = extensionDictionary(slot)) owned.push_back(extension);
  const DrawingDatabase& db = slot.database();
  if (isDictionary(slot)) {
    for (const DictionaryContents::Entry& entry : slot.database().parts().dictionary(slot).entries) {
      if (canBeOwned(entry.object)) owned.push_back(entry.object);
    }
    return owned;
  }
  if (slot.isEntity()) return owned;
  Tag tag;
  for (TagCursor cursor = slot.tags(); cursor.next(tag) && tag.code < 1000;) {
    if (tag.code != 360) continue;
    Slot* const object = db.findHandle(tag.handle());
    if (canBeOwned(object) && std::find(owned.begin(), owned.end(), object) == owned.end()) owned.push_back(object);
  }
  return owned;
}

void eraseExtension(DrawingDatabase::Parts& parts, const Slot& slot) {
  Slot* const extension = extensionDictionary(slot);
  if (extension == nullptr) return;
  // What hangs on it is gathered first: a dictionary forgets what is erased.
  std::vector<Slot*> all{extension};
  std::unordered_set<const Slot*> seen{extension};
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (Slot* const object : ownedObjects(*all[i])) {
      if (seen.insert(object).second) all.push_back(object);
    }
  }
  for (auto it = all.rbegin(); it != all.rend(); ++it) parts.eraseSlot(**it, true);
}

}  // namespace host::database

#include "Database/Objects/Ownership.h"

#include <algorithm>
#include <unordered_set>

#include "Database/Store/Parts.h"
#include "Database/UnwrittenTags.h"

namespace host::database {

namespace {

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
    for (const DictionaryContents::Entry& entry : slot.database().parts().dictionaries.contents(slot).entries) {
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

void eraseSlot(Slot& slot, bool erasing) {
  DrawingDatabase::Parts& parts = slot.database().parts();
  // A polyline goes with all of its vertices or stays: what can fail comes first.
  Slot* const firstSub = slot.unmadeVertices() == nullptr ? slot.firstSub() : nullptr;
  const auto goesItself = [](const Slot& sub) { return (sub.flags & kFollows) == 0; };
  parts.editor.touch(slot);
  for (Slot* sub = firstSub; sub != nullptr; sub = sub->nextSub) {
    if (goesItself(*sub)) parts.editor.touch(*sub);
  }
  // A dictionary forgets an erased object; its entry comes back with undo, as the dictionary's record does.
  if (slot.owner != nullptr && erasing && isDictionary(*slot.owner)) {
    const DictionaryContents& contents = parts.dictionaries.contents(*slot.owner);
    const auto found = contents.byObject.find(&slot);
    if (found != contents.byObject.end()) parts.dictionaries.remove(*slot.owner, found->second);
  }
  const auto mark = [erasing](Slot& target) {
    target.flags = static_cast<std::uint16_t>(erasing ? target.flags | kErased : target.flags & ~kErased);
  };
  mark(slot);
  for (Slot* sub = firstSub; sub != nullptr; sub = sub->nextSub) {
    if (goesItself(*sub)) mark(*sub);
  }
  followErasing(slot);
  if (slot.live != nullptr && slot.live->object != nullptr) slot.live->modified = true;
}

void eraseExtension(const Slot& slot) {
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
  for (auto it = all.rbegin(); it != all.rend(); ++it) eraseSlot(**it, true);
}

}  // namespace host::database

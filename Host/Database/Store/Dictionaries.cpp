#include "Database/Store/Dictionaries.h"

#include <utility>

#include "Database/Store/Parts.h"

namespace host::database {

bool isDictionary(const Slot& slot) {
  return slot.type == DxfType::Dictionary || slot.type == DxfType::DictionaryWithDefault;
}

void DictionaryContents::add(std::wstring key, Slot* object) {
  const std::size_t index = entries.size();
  byKey[key] = index;
  byObject[object] = index;
  entries.push_back({std::move(key), object});
}

Slot* DictionaryContents::find(std::wstring_view key) const {
  const auto found = byKey.find(key);
  return found != byKey.end() ? entries[found->second].object : nullptr;
}

DictionaryContents& Dictionaries::contents(const Slot& dictionary) {
  if (const auto found = contents_.find(&dictionary); found != contents_.end()) return *found->second;
  auto contents = std::make_unique<DictionaryContents>();
  std::wstring key;
  bool inGroup = false;
  bool hasKey = false;
  Tag tag;
  for (TagCursor cursor = dictionary.tags(); cursor.next(tag) && tag.code < 1000;) {
    if (tag.code == 102) inGroup = !tag.trimmed().empty() && tag.trimmed().front() == '{';
    if (inGroup) continue;
    if (tag.code == 3) {
      key = db_.codec().decode(tag.value);
      hasKey = true;
    } else if ((tag.code == 350 || tag.code == 360) && hasKey) {
      hasKey = false;
      // Entries that name nothing stay in the record, but are not found.
      if (Slot* const object = db_.findHandle(tag.handle())) contents->add(std::exchange(key, {}), object);
    }
  }
  return *contents_.emplace(&dictionary, std::move(contents)).first->second;
}

void Dictionaries::remove(Slot& dictionary, std::size_t index) {
  DictionaryContents& contents = this->contents(dictionary);
  DictionaryContents::Entry& entry = contents.entries[index];
  if (entry.object == nullptr) return;
  Record& record = db_.parts().editor.edit(dictionary);
  std::size_t number = 0;
  std::size_t keyAt = RecordLayout::npos;
  Tag tag;
  for (TagCursor cursor = record.tags(); cursor.next(tag); ++number) {
    if (tag.code == 3) {
      keyAt = number;
    } else if ((tag.code == 350 || tag.code == 360) && keyAt != RecordLayout::npos) {
      if (tag.handle() == entry.object->handle) {
        record.replace(keyAt, number - keyAt + 1, {});
        break;
      }
      keyAt = RecordLayout::npos;
    }
  }
  contents.byKey.erase(entry.key);
  contents.byObject.erase(entry.object);
  entry.object = nullptr;
}

Slot* Dictionaries::obtainRoot() {
  if (root_ == nullptr) {
    RecordEditor& editor = db_.parts().editor;
    NewSlots made(db_.parts().slots);
    Slot* const slot = editor.make(DxfType::Dictionary, nullptr, 0);
    editor.set(*slot, db_.tagWriter()
                          .raw(0, "DICTIONARY")
                          .handle(5, slot->handle)
                          .handle(330, 0)
                          .raw(100, "AcDbDictionary")
                          .integer(281, 1)
                          .take());
    made.keep();
    root_ = slot;
  }
  return root_;
}

namespace {

/// Whether the dictionary owns its entries hard. The flag stands in front of them, and there may be many.
bool isHardOwner(const Record& record) {
  bool inside = false;
  Tag tag;
  for (TagCursor cursor = record.tags(); cursor.next(tag) && tag.code < 1000;) {
    if (tag.code == 100) inside = tag.trimmed() == "AcDbDictionary";
    if (inside && tag.code == 280) return tag.integer() != 0;
    if (inside && tag.code == 3) break;
  }
  return false;
}

}  // namespace

void Dictionaries::add(Slot& dictionary, const std::wstring& key, Slot& object) {
  DictionaryContents& contents = this->contents(dictionary);
  std::wstring ownKey = key;
  makeRoom(contents.entries);
  Record& record = db_.parts().editor.edit(dictionary);
  Tag tag;
  TagWriter out = db_.tagWriter();
  out.text(3, key).handle(isHardOwner(record) ? 360 : 350, object.handle);
  const std::string_view bytes = db_.keep(out.str());
  // Only a record with extended data, or the subclass of a default entry, needs a place in the middle.
  const bool isPlain = dictionary.type == DxfType::Dictionary && (dictionary.flags & kHasXData) == 0;
  if (isPlain) {
    record.append(bytes);
  } else {
    std::size_t number = 0;
    bool inside = false;
    for (TagCursor cursor = record.tags(); cursor.next(tag) && tag.code < 1000; ++number) {
      if (tag.code != 100) continue;
      if (inside) break;
      inside = tag.trimmed() == "AcDbDictionary";
    }
    record.replace(number, 0, bytes);
  }
  try {
    contents.add(std::move(ownKey), &object);
  } catch (...) {
    // The record has the entry; the contents are read from it anew.
    forget(dictionary);
  }
}

Slot* Dictionaries::obtain(Slot& parent, std::wstring_view key) {
  Slot* const existing = contents(parent).find(key);
  if (existing != nullptr && !existing->isErased()) return isDictionary(*existing) ? existing : nullptr;
  RecordEditor& editor = db_.parts().editor;
  NewSlots made(db_.parts().slots);
  Slot* const slot = editor.make(DxfType::Dictionary, &parent, 0);
  editor.set(*slot, db_.tagWriter()
                        .raw(0, "DICTIONARY")
                        .handle(5, slot->handle)
                        .raw(102, "{ACAD_REACTORS")
                        .handle(330, parent.handle)
                        .raw(102, "}")
                        .handle(330, parent.handle)
                        .raw(100, "AcDbDictionary")
                        .integer(281, 1)
                        .take());
  add(parent, std::wstring(key), *slot);
  made.keep();
  return slot;
}

}  // namespace host::database

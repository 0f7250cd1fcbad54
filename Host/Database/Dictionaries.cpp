// Dictionaries and xrecords.
#include <memory>
#include <utility>

#include "Database/Adoption.h"
#include "Database/ObjectAccess.h"
#include "Database/Parts.h"
#include "Database/ResbufTypes.h"
#include "Text/Text.h"
#include "acutads.h"
#include "acutmem.h"
#include "dbdict.h"
#include "dbgroup.h"
#include "dbobjptr.h"
#include "dbxrecrd.h"
#include "sorttab.h"

using host::database::addValue;
using host::database::Chain;
using host::database::DictionaryContents;
using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Record;
using host::database::Slot;
using host::database::Tag;
using host::database::TagCursor;
using host::database::TagWriter;
using host::database::ValueKind;
using host::database::valueKind;
using host::database::writeValue;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDictionary, AcDbObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDictionaryIterator, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbXrecord, AcDbObject)

namespace {

template <class T>
AcDbObject* create() {
  return new T;
}

[[maybe_unused]] const bool registered =
    host::database::registerClass({DxfType::Dictionary, &AcDbDictionary::desc, &create<AcDbDictionary>}) &&
    host::database::registerClass({DxfType::DictionaryWithDefault, &AcDbDictionary::desc, &create<AcDbDictionary>}) &&
    host::database::registerClass({DxfType::XRecord, &AcDbXrecord::desc, &create<AcDbXrecord>});

bool isDictionary(const Slot& slot) {
  return slot.type == DxfType::Dictionary || slot.type == DxfType::DictionaryWithDefault;
}

/// Contents of the dictionary behind the object; null outside a drawing, where a dictionary is always empty.
DictionaryContents* contentsOf(const AcDbDictionary& dictionary) {
  Slot* const slot = HostObjectAccess::slot(dictionary);
  return slot != nullptr ? &slot->database().parts().dictionary(*slot) : nullptr;
}

}  // namespace

namespace host::database {

void DictionaryContents::add(std::wstring key, Slot* object) {
  const std::size_t index = entries.size();
  byKey[key] = index;
  byObject[object] = index;
  entries.push_back({std::move(key), object});
}

DictionaryContents& DrawingDatabase::Parts::dictionary(const Slot& slot) {
  if (const auto found = dictionaries.find(&slot); found != dictionaries.end()) return *found->second;
  auto contents = std::make_unique<DictionaryContents>();
  std::wstring key;
  bool inGroup = false;
  bool hasKey = false;
  Tag tag;
  for (TagCursor cursor = slot.tags(); cursor.next(tag) && tag.code < 1000;) {
    if (tag.code == 102) inGroup = !tag.trimmed().empty() && tag.trimmed().front() == '{';
    if (inGroup) continue;
    if (tag.code == 3) {
      key = codec.decode(tag.value);
      hasKey = true;
    } else if ((tag.code == 350 || tag.code == 360) && hasKey) {
      hasKey = false;
      // Entries that name nothing stay in the record, but nobody can find them.
      if (Slot* const object = self.findHandle(tag.handle())) contents->add(std::exchange(key, {}), object);
    }
  }
  return *dictionaries.emplace(&slot, std::move(contents)).first->second;
}

void DrawingDatabase::Parts::removeDictionaryEntry(Slot& dictionarySlot, std::size_t index) {
  DictionaryContents& contents = dictionary(dictionarySlot);
  DictionaryContents::Entry& entry = contents.entries[index];
  if (entry.object == nullptr) return;
  Record& record = edit(dictionarySlot);
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

Slot* DrawingDatabase::Parts::ensureRoot() {
  if (root == nullptr) {
    NewSlots made(*this);
    Slot* const slot = makeSlot(DxfType::Dictionary, nullptr, 0);
    setRecord(*slot, self.tagWriter()
                         .raw(0, "DICTIONARY")
                         .handle(5, slot->handle)
                         .handle(330, 0)
                         .raw(100, "AcDbDictionary")
                         .integer(281, 1)
                         .take());
    made.keep();
    root = slot;
  }
  return root;
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

void addEntry(DrawingDatabase::Parts& parts, Slot& dictionarySlot, const std::wstring& key, Slot& object) {
  DictionaryContents& contents = parts.dictionary(dictionarySlot);
  std::wstring ownKey = key;
  makeRoom(contents.entries);
  Record& record = parts.edit(dictionarySlot);
  Tag tag;
  TagWriter out = parts.self.tagWriter();
  out.text(3, key).handle(isHardOwner(record) ? 360 : 350, object.handle);
  const std::string_view bytes = parts.arena.keep(out.str());
  // Only a record with extended data, or the subclass of a default entry, needs a place in the middle.
  const bool isPlain = dictionarySlot.type == DxfType::Dictionary && (dictionarySlot.flags & kHasXData) == 0;
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
    parts.dictionaries.erase(&dictionarySlot);
  }
}

Slot* DrawingDatabase::Parts::dictionaryIn(Slot& parent, std::wstring_view key) {
  DictionaryContents& contents = dictionary(parent);
  const auto found = contents.byKey.find(key);
  if (found != contents.byKey.end()) {
    Slot* const slot = contents.entries[found->second].object;
    if (slot != nullptr && !slot->isErased()) return isDictionary(*slot) ? slot : nullptr;
  }
  NewSlots made(*this);
  Slot* const slot = makeSlot(DxfType::Dictionary, &parent, 0);
  setRecord(*slot, self.tagWriter()
                       .raw(0, "DICTIONARY")
                       .handle(5, slot->handle)
                       .raw(102, "{ACAD_REACTORS")
                       .handle(330, parent.handle)
                       .raw(102, "}")
                       .handle(330, parent.handle)
                       .raw(100, "AcDbDictionary")
                       .integer(281, 1)
                       .take());
  addEntry(*this, parent, std::wstring(key), *slot);
  made.keep();
  return slot;
}

}  // namespace host::database

// ---- dictionaries ---------------------------------------------------------------------------------------------------

AcDbDictionary::AcDbDictionary() {
  const host::text::Codec codec;
  HostObjectAccess::initDetached(*this, "DICTIONARY", false,
                                 TagWriter(codec).raw(100, "AcDbDictionary").integer(281, 1).take());
}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* key, AcDbObjectId& id) const {
  if (key == nullptr) return Acad::eInvalidInput;
  const DictionaryContents* const contents = contentsOf(*this);
  if (contents == nullptr) return Acad::eKeyNotFound;
  const auto found = contents->byKey.find(std::wstring_view(key));
  if (found == contents->byKey.end()) return Acad::eKeyNotFound;
  Slot* const object = contents->entries[found->second].object;
  if (object == nullptr || object->isErased()) return Acad::eKeyNotFound;
  id = AcDbObjectId(object);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* key, AcDbObject*& object, AcDb::OpenMode mode) const {
  AcDbObjectId id;
  const Acad::ErrorStatus status = getAt(key, id);
  return status == Acad::eOk ? acdbOpenAcDbObject(object, id, mode) : status;
}

bool AcDbDictionary::has(const ACHAR* key) const {
  AcDbObjectId id;
  return getAt(key, id) == Acad::eOk;
}

bool AcDbDictionary::has(AcDbObjectId id) const {
  const DictionaryContents* const contents = contentsOf(*this);
  return contents != nullptr && !id.isNull() && !id.isErased() && contents->byObject.count(id.slot()) > 0;
}

Acad::ErrorStatus AcDbDictionary::setAt(const ACHAR* key, AcDbObject* object, AcDbObjectId& id) {
  if (key == nullptr || *key == 0) return Acad::eInvalidKey;
  if (object == nullptr) return Acad::eNullObjectPointer;
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (HostObjectAccess::slot(*object) != nullptr) return Acad::eAlreadyInDb;
  const DxfType type = host::database::typeOfClass(object->isA());
  if (type == DxfType::Unknown || object->isKindOf(AcDbEntity::desc()) || host::database::isTableRecord(type)) {
    return Acad::eWrongObjectType;
  }
  DrawingDatabase& db = slot_->database();
  DrawingDatabase::Parts& parts = db.parts();
  std::wstring name = key;
  if (name.front() == L'*') {
    DictionaryContents& contents = parts.dictionary(*slot_);
    do {
      name = L"*A" + std::to_wstring(contents.nextAnonymous++);
    } while (has(name.c_str()));
  }
  AcDbObjectId old;
  if (getAt(name.c_str(), old) == Acad::eOk) {
    const AcDbObjectPointer<AcDbObject> replaced(old, AcDb::kForWrite);
    if (replaced.openStatus() != Acad::eOk) return replaced.openStatus();
    replaced->erase();
  }

  host::database::NewSlots made(parts);
  Slot* const slot = parts.makeSlot(type, slot_, 0);
  const std::string own = host::database::ownTags(*object, db, false);
  TagWriter out = db.tagWriter();
  out.raw(0, host::database::fixedTypeName(type)).handle(5, slot->handle);
  out.raw(102, "{ACAD_REACTORS").handle(330, slot_->handle).raw(102, "}").handle(330, slot_->handle).bytes(own);
  host::database::setNewRecord(*slot, out.str());
  host::database::prepareBinding(*slot);
  host::database::addEntry(parts, *slot_, name, *slot);
  host::database::bindOpen(*object, *slot);
  made.keep();
  id = AcDbObjectId(slot);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* key) {
  AcDbObjectId id;
  const Acad::ErrorStatus status = getAt(key, id);
  return status == Acad::eOk ? remove(id) : status;
}

Acad::ErrorStatus AcDbDictionary::remove(AcDbObjectId id) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  DictionaryContents* const contents = contentsOf(*this);
  if (contents == nullptr || id.isNull()) return Acad::eKeyNotFound;
  const auto found = contents->byObject.find(id.slot());
  if (found == contents->byObject.end()) return Acad::eKeyNotFound;
  slot_->database().parts().removeDictionaryEntry(*slot_, found->second);
  return Acad::eOk;
}

Adesk::UInt32 AcDbDictionary::numEntries() const {
  const DictionaryContents* const contents = contentsOf(*this);
  Adesk::UInt32 count = 0;
  if (contents != nullptr) {
    for (const DictionaryContents::Entry& entry : contents->entries) {
      count += entry.object != nullptr && !entry.object->isErased() ? 1U : 0U;
    }
  }
  return count;
}

Acad::ErrorStatus AcDbDictionary::nameAt(AcDbObjectId id, ACHAR*& name) const {
  const DictionaryContents* const contents = contentsOf(*this);
  if (contents == nullptr || id.isNull()) return Acad::eKeyNotFound;
  const auto found = contents->byObject.find(id.slot());
  if (found == contents->byObject.end()) return Acad::eKeyNotFound;
  return acutNewString(contents->entries[found->second].key.c_str(), name);
}

struct AcDbDictionaryIterator::Entry {
  std::wstring key;
  AcDbObjectId id;
};

AcDbDictionaryIterator* AcDbDictionary::newIterator() const {
  const DictionaryContents* const contents = contentsOf(*this);
  std::unique_ptr<AcDbDictionaryIterator> iterator(new AcDbDictionaryIterator);
  if (contents == nullptr) return iterator.release();
  iterator->entries_ = new AcDbDictionaryIterator::Entry[contents->entries.size()];
  for (const DictionaryContents::Entry& entry : contents->entries) {
    if (entry.object == nullptr || entry.object->isErased()) continue;
    iterator->entries_[iterator->count_++] = {entry.key, AcDbObjectId(entry.object)};
  }
  return iterator.release();
}

AcDbDictionaryIterator::~AcDbDictionaryIterator() { delete[] entries_; }
const ACHAR* AcDbDictionaryIterator::name() const { return done() ? ACRX_T("") : entries_[position_].key.c_str(); }
AcDbObjectId AcDbDictionaryIterator::objectId() const { return done() ? AcDbObjectId::kNull : entries_[position_].id; }
bool AcDbDictionaryIterator::done() const { return position_ >= count_; }

bool AcDbDictionaryIterator::next() {
  if (!done()) ++position_;
  return !done();
}

// ---- xrecords -------------------------------------------------------------------------------------------------------

namespace {

constexpr std::string_view kXrecord = "AcDbXrecord";

/// Entity and object names in chains are ids; in records they are handles.
void writeXrecordItem(TagWriter& out, const resbuf& item) {
  if (writeValue(out, item) || valueKind(item.restype) != ValueKind::Name) return;
  AcDbObjectId id;
  acdbGetObjectId(id, item.resval.rlname);
  out.handle(item.restype, id.handle());
}

/// Tag number where the data begin: behind the subclass marker and its merge flag.
std::size_t xrecordDataBegin(const AcDbObject& object) {
  std::size_t number = 0;
  bool inside = false;
  Tag tag;
  for (TagCursor cursor = HostObjectAccess::tags(object); cursor.next(tag); ++number) {
    if (inside) return tag.code == 280 ? number + 1 : number;
    inside = tag.code == 100 && tag.trimmed() == kXrecord;
  }
  return number;
}

}  // namespace

AcDbXrecord::AcDbXrecord() {
  const host::text::Codec codec;
  HostObjectAccess::initDetached(*this, "XRECORD", false, TagWriter(codec).raw(100, kXrecord).integer(280, 1).take());
}

Acad::ErrorStatus AcDbXrecord::rbChain(resbuf** chain, AcDbDatabase*) const {
  if (chain == nullptr) return Acad::eNullObjectPointer;
  const std::size_t begin = xrecordDataBegin(*this);
  const host::text::Codec& codec = HostObjectAccess::codec(*this);
  DrawingDatabase* const db = HostObjectAccess::database(*this);
  Chain items;
  std::size_t number = 0;
  Tag tag;
  for (TagCursor cursor = HostObjectAccess::tags(*this); cursor.next(tag) && tag.code < 1000; ++number) {
    if (number < begin) continue;
    const std::size_t taken = addValue(items, tag, cursor, codec);
    if (taken > 1) number += taken - 1;
    if (taken == 0 && valueKind(tag.code) == ValueKind::Name) {
      Slot* const slot = db != nullptr ? db->findHandle(tag.handle()) : nullptr;
      items.add(tag.code)->resval.rlname[0] = AcDbObjectId(slot).asOldId();
    }
  }
  *chain = items.release();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::setFromRbChain(const resbuf& chain, AcDbDatabase*) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  TagWriter out = HostObjectAccess::tagWriter(*this);
  for (const resbuf* item = &chain; item != nullptr; item = item->rbnext) {
    const ValueKind kind = valueKind(item->restype);
    if (item->restype < 1 || item->restype > 369 || item->restype == 5 || item->restype == 105 ||
        kind == ValueKind::Unknown || kind == ValueKind::None || kind == ValueKind::Binary) {
      return Acad::eInvalidDxfCode;
    }
    writeXrecordItem(out, *item);
  }
  const std::size_t begin = xrecordDataBegin(*this);
  Record& record = HostObjectAccess::editRecord(*this);
  const std::size_t end = host::database::layoutOf(record).xdata;
  record.replace(begin, end - begin, HostObjectAccess::keep(*this, out.take()));
  return Acad::eOk;
}

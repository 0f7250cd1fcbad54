// AcDbDictionary and its iterator.
#include <memory>
#include <utility>

#include "Database/ObjectAccess.h"
#include "Database/Objects/Adoption.h"
#include "Database/Store/Parts.h"
#include "acutmem.h"
#include "dbdict.h"
#include "dbobjptr.h"

using host::database::DictionaryContents;
using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Slot;
using host::database::TagWriter;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDictionary, AcDbObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDictionaryIterator, AcRxObject)

namespace {

template <class T>
AcDbObject* create() {
  return new T;
}

[[maybe_unused]] const bool registered =
    host::database::registerClass({DxfType::Dictionary, &AcDbDictionary::desc, &create<AcDbDictionary>}) &&
    host::database::registerClass({DxfType::DictionaryWithDefault, &AcDbDictionary::desc, &create<AcDbDictionary>});

/// Contents of the dictionary behind the object; null outside a drawing, where a dictionary is always empty.
DictionaryContents* contentsOf(const AcDbDictionary& dictionary) {
  Slot* const slot = HostObjectAccess::slot(dictionary);
  return slot != nullptr ? &slot->database().parts().dictionaries.contents(*slot) : nullptr;
}

}  // namespace

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
    DictionaryContents& contents = parts.dictionaries.contents(*slot_);
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

  host::database::NewSlots made(parts.slots);
  Slot* const slot = parts.editor.make(type, slot_, 0);
  const std::string own = host::database::ownTags(*object, db, false);
  TagWriter out = db.tagWriter();
  out.raw(0, host::database::fixedTypeName(type)).handle(5, slot->handle);
  out.raw(102, "{ACAD_REACTORS").handle(330, slot_->handle).raw(102, "}").handle(330, slot_->handle).bytes(own);
  host::database::setNewRecord(*slot, out.str());
  parts.objects.prepareAdoption(*slot);
  parts.dictionaries.add(*slot_, name, *slot);
  parts.objects.adopt(*object, *slot);
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
  slot_->database().parts().dictionaries.remove(*slot_, found->second);
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

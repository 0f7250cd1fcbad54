// AcDbObject, AcDbProxyObject; ids, handles and the way from ids to open objects.
#include <algorithm>
#include <utility>

#include "Database/ObjectAccess.h"
#include "Database/Objects/Ownership.h"
#include "Database/Store/Parts.h"
#include "Database/Store/TagEdits.h"
#include "Text/Text.h"
#include "dbmain.h"

using host::database::classOf;
using host::database::DrawingDatabase;
using host::database::Record;
using host::database::RecordLayout;
using host::database::Slot;
using host::database::Tag;
using host::database::TagCursor;
using host::database::TagWriter;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbObject, AcGiDrawable)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbProxyObject, AcDbObject)

namespace {

/// The record of an object outside any database, with the memory its pieces point to. An object whose own tags come
/// from its parsed data gets tags when the first of them is read.
struct DetachedRecord : Record {
  host::database::Arena arena{512};
  std::string_view dxfName;  // a literal
  bool isEntity = false;
  bool isWritten = false;
  host::database::EntityDraft draft;
};

/// Set while an object is made for a slot: its constructor then makes no record of its own.
thread_local bool isBinding = false;

const host::text::Codec& utf8() {
  static const host::text::Codec codec;
  return codec;
}

/// The detached record with its tags.
DetachedRecord& written(Record& detached) {
  auto& record = static_cast<DetachedRecord&>(detached);
  if (record.isWritten) return record;
  const host::database::EntityDraft& draft = record.draft;
  TagWriter writer(utf8());
  writer.raw(0, record.dxfName);
  if (record.isEntity) writer.raw(100, "AcDbEntity");
  const auto writeColor = [&] {
    if (draft.color >= 0) writer.integer(62, draft.color);
  };
  if (draft.isColorFirst) writeColor();
  // Of a drawing that was closed meanwhile there are no layers to be on.
  const bool hasLayer = draft.layer != nullptr && host::database::DrawingLife::isLiving(draft.drawing);
  if (hasLayer) writer.raw(8, utf8().encode(draft.layer->database().recordName(*draft.layer)));
  if (!draft.isColorFirst) writeColor();
  record.assign(record.arena.keep(writer.str()));
  record.isWritten = true;
  return record;
}

}  // namespace

// ---- the way in -----------------------------------------------------------------------------------------------------

DrawingDatabase* HostObjectAccess::database(const AcDbObject& object) {
  return object.slot_ != nullptr ? &object.slot_->database() : nullptr;
}

HostObjectAccess::Binding::Binding() { isBinding = true; }
HostObjectAccess::Binding::~Binding() { isBinding = false; }

void HostObjectAccess::initDetached(AcDbObject& object, std::string_view dxfName, bool isEntity, std::string_view own) {
  if (isBinding) return;
  auto* const record = new DetachedRecord;
  delete static_cast<DetachedRecord*>(object.detached_);
  object.detached_ = record;
  record->dxfName = dxfName;
  record->isEntity = isEntity;
  if (!own.empty()) written(*record).append(record->arena.keep(own));
}

host::database::EntityDraft* HostObjectAccess::draft(const AcDbObject& object) {
  auto* const record = static_cast<DetachedRecord*>(object.detached_);
  return record != nullptr && record->isEntity && !record->isWritten ? &record->draft : nullptr;
}

void HostObjectAccess::bind(AcDbObject& object, Slot& slot) {
  object.slot_ = &slot;
  delete static_cast<DetachedRecord*>(object.detached_);
  object.detached_ = nullptr;
}

TagCursor HostObjectAccess::tags(const AcDbObject& object) {
  if (object.slot_ != nullptr) return object.slot_->tags();
  return object.detached_ != nullptr ? written(*object.detached_).tags() : TagCursor();
}

std::string HostObjectAccess::detachedBytes(const AcDbObject& object) {
  return object.detached_ != nullptr ? written(*object.detached_).bytes() : std::string();
}

const host::text::Codec& HostObjectAccess::codec(const AcDbObject& object) {
  return object.slot_ != nullptr ? object.slot_->database().codec() : utf8();
}

bool HostObjectAccess::canWrite(const AcDbObject& object) {
  if (object.slot_ == nullptr) return object.detached_ != nullptr;
  return object.slot_->live != nullptr && object.slot_->live->writer;
}

Record& HostObjectAccess::editRecord(AcDbObject& object) {
  return object.slot_ != nullptr ? object.slot_->database().parts().editor.edit(*object.slot_)
                                 : written(*object.detached_);
}

std::string_view HostObjectAccess::keep(const AcDbObject& object, std::string_view bytes) {
  if (object.slot_ != nullptr) return object.slot_->database().keep(bytes);
  return static_cast<DetachedRecord*>(object.detached_)->arena.keep(bytes);
}

TagWriter HostObjectAccess::tagWriter(const AcDbObject& object) {
  return object.slot_ != nullptr ? object.slot_->database().tagWriter() : TagWriter(utf8());
}

bool HostObjectAccess::findTag(const AcDbObject& object, std::string_view subclass, int code, Tag& tag) {
  return host::database::findTagIn(tags(object), subclass, code, tag);
}

void HostObjectAccess::setTag(AcDbObject& object, std::string_view subclass, int code, std::string_view value) {
  const std::string bytes = tagWriter(object).raw(code, value).take();
  host::database::setTagIn(editRecord(object), subclass, code, keep(object, bytes));
}

void HostObjectAccess::removeTag(AcDbObject& object, std::string_view subclass, int code) {
  Tag tag;
  if (findTag(object, subclass, code, tag)) host::database::removeTagIn(editRecord(object), subclass, code);
}

void HostObjectAccess::setData(const AcDbObject& object, ObjectData* data) {
  delete object.data_;
  object.data_ = data;
}

// ---- objects --------------------------------------------------------------------------------------------------------

AcDbObject::AcDbObject() = default;

AcDbObject::~AcDbObject() {
  // A resident object is the host's to delete; of one that a plug-in deletes the slot forgets the address.
  if (slot_ != nullptr && slot_->live != nullptr && slot_->live->object == this) {
    slot_->live->object = nullptr;
    slot_->live->writer = false;
    slot_->live->readers = 0;
  }
  delete data_;
  delete static_cast<DetachedRecord*>(detached_);
}

AcDbObjectId AcDbObject::objectId() const { return AcDbObjectId(slot_); }

AcDbObjectId AcDbObject::ownerId() const { return AcDbObjectId(slot_ != nullptr ? slot_->owner : nullptr); }

AcDbDatabase* AcDbObject::database() const { return slot_ != nullptr ? slot_->database().facade() : nullptr; }

void AcDbObject::getAcDbHandle(AcDbHandle& handle) const { handle = AcDbHandle(slot_ != nullptr ? slot_->handle : 0); }

Adesk::Boolean AcDbObject::isErased() const { return slot_ != nullptr && slot_->isErased(); }

Adesk::Boolean AcDbObject::isReadEnabled() const {
  return slot_ == nullptr || (slot_->live != nullptr && (slot_->live->writer || slot_->live->readers > 0));
}

Adesk::Boolean AcDbObject::isWriteEnabled() const { return HostObjectAccess::canWrite(*this); }

Adesk::Boolean AcDbObject::isNewObject() const {
  return slot_ == nullptr || (slot_->live != nullptr && slot_->live->isAppending);
}

Adesk::Boolean AcDbObject::isModified() const {
  return slot_ != nullptr && slot_->live != nullptr && slot_->live->modified;
}

Acad::ErrorStatus AcDbObject::close() {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  return slot_->database().parts().objects.close(*this);
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  return slot_->database().parts().objects.upgrade(*this);
}

Acad::ErrorStatus AcDbObject::downgradeOpen() {
  if (!HostObjectAccess::canWrite(*this) || slot_ == nullptr) return Acad::eNotOpenForWrite;
  return slot_->database().parts().objects.downgrade(*this);
}

Acad::ErrorStatus AcDbObject::erase(Adesk::Boolean erasing) {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (slot_->isErased() == erasing) return erasing ? Acad::eWasErased : Acad::eOk;
  host::database::eraseSlot(*slot_, erasing);
  slot_->database().parts().watchers.tellReactors(
      [&](AcDbDatabaseReactor& reactor) { reactor.objectErased(database(), this, erasing); });
  return Acad::eOk;
}

namespace {

/// The group "102 {name ... 102 }" of a record: its tag numbers, npos when there is none.
std::pair<std::size_t, std::size_t> controlGroup(const Record& record, bool reactors) {
  const RecordLayout layout = host::database::frontOf(record);
  return reactors ? std::pair(layout.reactorsBegin, layout.reactorsEnd)
                  : std::pair(layout.dictionaryBegin, layout.dictionaryEnd);
}

/// Handles in a control group. Such groups stand in front of the first subclass.
std::vector<std::uint64_t> handlesIn(TagCursor cursor, std::string_view group) {
  std::vector<std::uint64_t> handles;
  bool inside = false;
  Tag tag;
  while (cursor.next(tag)) {
    if (tag.code >= 1000 || tag.code == 100) break;
    if (tag.code == 102) {
      inside = tag.trimmed() == group;
    } else if (inside && (tag.code == 330 || tag.code == 360)) {
      handles.push_back(tag.handle());
    }
  }
  return handles;
}

/// Where a control group belongs: behind the handle, or in front when there is none.
std::size_t controlGroupPlace(const Record& record) {
  const RecordLayout layout = host::database::frontOf(record);
  return layout.handle != RecordLayout::npos ? layout.handle + 1 : 1;
}

}  // namespace

AcDbObjectId AcDbObject::extensionDictionary() const {
  if (slot_ == nullptr) return AcDbObjectId::kNull;
  const std::vector<std::uint64_t> handles = handlesIn(slot_->tags(), "{ACAD_XDICTIONARY");
  Slot* const found = handles.empty() ? nullptr : slot_->database().findHandle(handles.front());
  return AcDbObjectId(found != nullptr && !found->isErased() ? found : nullptr);
}

Acad::ErrorStatus AcDbObject::createExtensionDictionary() {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (!extensionDictionary().isNull()) return Acad::eAlreadyInDb;
  DrawingDatabase& db = slot_->database();
  host::database::NewSlots made(db.parts().slots);
  Slot* const dictionary = db.parts().editor.make(host::database::DxfType::Dictionary, slot_, 0);
  db.parts().editor.set(*dictionary, db.tagWriter()
                                         .raw(0, "DICTIONARY")
                                         .handle(5, dictionary->handle)
                                         .handle(330, slot_->handle)
                                         .raw(100, "AcDbDictionary")
                                         .integer(280, 1)
                                         .integer(281, 1)
                                         .take());
  Record& record = HostObjectAccess::editRecord(*this);
  const auto [begin, end] = controlGroup(record, false);
  const std::string group =
      db.tagWriter().raw(102, "{ACAD_XDICTIONARY").handle(360, dictionary->handle).raw(102, "}").take();
  if (begin != RecordLayout::npos && end != RecordLayout::npos) {
    record.replace(begin, end - begin, db.keep(group));  // the old group names a dictionary that is gone
  } else {
    record.replace(controlGroupPlace(record), 0, db.keep(group));
  }
  made.keep();
  return Acad::eOk;
}

bool AcDbObject::hasPersistentReactor(AcDbObjectId reactor) const {
  if (slot_ == nullptr || reactor.isNull()) return false;
  if (slot_->live != nullptr && slot_->begin == nullptr) {
    const host::database::UnwrittenTags* const unwritten = slot_->live->record.unwritten();
    if (unwritten != nullptr) return unwritten->reactor() == reactor.slot()->handle;
  }
  const std::vector<std::uint64_t> handles = handlesIn(slot_->tags(), "{ACAD_REACTORS");
  return std::find(handles.begin(), handles.end(), reactor.slot()->handle) != handles.end();
}

Acad::ErrorStatus AcDbObject::addPersistentReactor(AcDbObjectId reactor) {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  if (reactor.isNull()) return Acad::eNullObjectId;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (hasPersistentReactor(reactor)) return Acad::eOk;
  HostObjectAccess::plantReactor(*this, reactor);
  return Acad::eOk;
}

void HostObjectAccess::plantReactor(AcDbObject& object, AcDbObjectId reactor) {
  DrawingDatabase& db = object.slot_->database();
  Record& record = editRecord(object);
  host::database::UnwrittenTags* const unwritten = record.unwritten();
  if (unwritten != nullptr && unwritten->reactor() == 0 && db.parts().journal.isOfThisStep(*object.slot_)) {
    unwritten->setReactor(reactor.slot()->handle);
    return;
  }
  const RecordLayout front = host::database::frontOf(record);
  const std::string entry = db.tagWriter().handle(330, reactor.slot()->handle).take();
  if (front.reactorsBegin != RecordLayout::npos && front.reactorsEnd != RecordLayout::npos) {
    record.replace(front.reactorsEnd - 1, 0, db.keep(entry));
  } else {
    record.replace(front.handle != RecordLayout::npos ? front.handle + 1 : 1, 0,
                   db.keep(db.tagWriter().raw(102, "{ACAD_REACTORS").bytes(entry).raw(102, "}").take()));
  }
}

Acad::ErrorStatus AcDbObject::removePersistentReactor(AcDbObjectId reactor) {
  if (slot_ == nullptr || reactor.isNull()) return Acad::eNullObjectId;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (!hasPersistentReactor(reactor)) return Acad::eKeyNotFound;
  Record& record = HostObjectAccess::editRecord(*this);
  const auto [begin, end] = controlGroup(record, true);
  if (begin == RecordLayout::npos || end == RecordLayout::npos) return Acad::eKeyNotFound;
  if (end - begin <= 3) {  // the only one: the whole group goes
    record.replace(begin, end - begin, {});
    return Acad::eOk;
  }
  std::size_t index = 0;
  Tag tag;
  for (TagCursor cursor = record.tags(); cursor.next(tag); ++index) {
    if (index > begin && index < end && tag.code == 330 && tag.handle() == reactor.slot()->handle) {
      record.replace(index, 1, {});
      return Acad::eOk;
    }
  }
  return Acad::eKeyNotFound;
}

// ---- opening --------------------------------------------------------------------------------------------------------

Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode, bool openErased) {
  if (id.isNull()) return Acad::eNullObjectId;
  return id.slot()->database().open(object, id.slot(), mode, openErased);
}

Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& entity, AcDbObjectId id, AcDb::OpenMode mode, bool openErased) {
  if (id.isNull()) return Acad::eNullObjectId;
  if (!id.slot()->isEntity()) return Acad::eNotAnEntity;
  AcDbObject* object = nullptr;
  const Acad::ErrorStatus status = acdbOpenAcDbObject(object, id, mode, openErased);
  if (status != Acad::eOk) return status;
  AcDbEntity* const opened = AcDbEntity::cast(object);
  if (opened == nullptr) {
    object->close();
    return Acad::eNotAnEntity;
  }
  entity = opened;
  return Acad::eOk;
}

// ---- ids and handles ------------------------------------------------------------------------------------------------

bool AcDbObjectId::isErased() const { return slot_ == nullptr || slot_->isErased(); }
AcDbHandle AcDbObjectId::handle() const { return AcDbHandle(slot_ != nullptr ? slot_->handle : 0); }
AcDbDatabase* AcDbObjectId::database() const { return slot_ != nullptr ? slot_->database().facade() : nullptr; }
AcRxClass* AcDbObjectId::objectClass() const {
  return slot_ != nullptr ? classOf(slot_->type, slot_->isEntity()) : nullptr;
}

AcDbHandle::AcDbHandle(const ACHAR* text) {
  if (text == nullptr) return;
  value_ = host::text::parseHandle(host::text::toUtf8(text));
}

bool AcDbHandle::getIntoAsciiBuffer(ACHAR* buffer, std::size_t size) const {
  const std::string text = host::text::formatHandle(value_);
  if (buffer == nullptr || size <= text.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) buffer[i] = static_cast<ACHAR>(text[i]);
  buffer[text.size()] = 0;
  return true;
}

Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name name) {
  if (ads_name_nil(name)) return Acad::eInvalidInput;
  id = AcDbObjectId(reinterpret_cast<Slot*>(name[0]));
  return Acad::eOk;
}

Acad::ErrorStatus acdbGetAdsName(ads_name& name, AcDbObjectId id) {
  if (id.isNull()) return Acad::eNullObjectId;
  name[0] = id.asOldId();
  name[1] = 0;
  return Acad::eOk;
}

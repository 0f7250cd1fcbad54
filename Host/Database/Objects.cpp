// Opening, closing and the life of objects.
#include <algorithm>
#include <exception>
#include <utility>

#include "Database/ObjectAccess.h"
#include "Database/Parts.h"
#include "Database/Reactors.h"
#include "Text/Text.h"
#include "dbdict.h"
#include "dbmain.h"
#include "dbsymtb.h"

using host::database::classOf;
using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Live;
using host::database::Record;
using host::database::RecordLayout;
using host::database::Slot;
using host::database::Tag;
using host::database::TagCursor;
using host::database::TagWriter;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbObject, AcGiDrawable)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbProxyObject, AcDbObject)

namespace {

constexpr int kMostReaders = 256;

/// The record of an object outside any database, with the memory its pieces point to. An object whose own tags come
/// from its parsed data gets tags when somebody asks for them.
struct DetachedRecord : Record {
  host::database::Arena arena{512};
  std::string_view dxfName;  // a literal
  bool isEntity = false;
  bool isWritten = false;
  host::database::EntityDraft draft;
};

/// Set while an object is made for a slot: its constructor then makes no record of its own.
thread_local bool isBinding = false;

struct Binding {
  Binding() { isBinding = true; }
  Binding(const Binding&) = delete;
  Binding& operator=(const Binding&) = delete;
  ~Binding() { isBinding = false; }
};

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
  return object.slot_ != nullptr ? object.slot_->database().parts().edit(*object.slot_) : written(*object.detached_);
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
  // A resident object is the host's to delete; one that somebody else deletes must not be known any more.
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
  return slot_->database().parts().closeObject(*this);
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  Live* const live = slot_->live;
  if (live != nullptr && live->writer) return Acad::eWasOpenForWrite;
  if (live == nullptr || live->readers == 0) return Acad::eNotOpenForRead;
  if (live->readers > 1) return Acad::eHadMultipleReaders;
  if (slot_->isErased()) return Acad::eWasErased;
  if (slot_->database().parts().refusesChange(*slot_)) return Acad::eOnLockedLayer;
  live->readers = 0;
  live->writer = true;
  live->modified = false;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::downgradeOpen() {
  if (!HostObjectAccess::canWrite(*this) || slot_ == nullptr) return Acad::eNotOpenForWrite;
  DrawingDatabase& db = slot_->database();
  const Slot* const slot = slot_;
  const Acad::ErrorStatus status = db.parts().closeObject(*this);
  if (status != Acad::eOk) return status;
  slot->live->readers = 1;
  ++db.parts().openCount;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::erase(Adesk::Boolean erasing) {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (slot_->isErased() == erasing) return erasing ? Acad::eWasErased : Acad::eOk;
  slot_->database().parts().eraseSlot(*slot_, erasing);
  host::database::tellEach(slot_->database().parts().reactors,
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
  host::database::NewSlots made(db.parts());
  Slot* const dictionary = db.parts().makeSlot(host::database::DxfType::Dictionary, slot_, 0);
  db.parts().setRecord(*dictionary, db.tagWriter()
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
  if (unwritten != nullptr && unwritten->reactor() == 0 && db.parts().isOfThisStep(*object.slot_)) {
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

// ---- opening and closing --------------------------------------------------------------------------------------------

DxfType DrawingDatabase::Parts::tableRecordType(const Slot& head) const {
  for (const auto& [type, table] : tables) {
    if (table.head == &head) return type;
  }
  return DxfType::Unknown;
}

namespace {

/// Whether what was read from the slot's record is what the file says, which never changes.
bool isAsInFile(const Slot& slot) {
  return slot.isEntity() && (slot.flags & (host::database::kNew | host::database::kChanged)) == 0;
}

bool isOpen(const Live& live) { return live.writer || live.readers > 0; }

}  // namespace

AcDbObject* DrawingDatabase::Parts::objectFor(Slot& slot) {
  Live& state = live(slot);
  // Changed since it was parked, by another way than its object.
  if (state.object != nullptr && !isOpen(state) && !isAsInFile(slot)) HostObjectAccess::setData(*state.object, nullptr);
  if (state.object == nullptr) {
    makeRoom(opened);
    const ClassEntry* const entry = classEntry(slot.type);
    AcDbObject* object = nullptr;
    {
      const Binding binding;
      if (slot.type == DxfType::TableHead) {
        object = createTable(tableRecordType(slot));
        if (object == nullptr) object = new AcDbProxyObject;
      } else if (entry != nullptr) {
        object = entry->create();
      } else if (slot.isEntity()) {
        object = new AcDbProxyEntity;
      } else {
        object = new AcDbProxyObject;
      }
    }
    HostObjectAccess::setData(*object, nullptr);
    object->slot_ = &slot;
    state.object = object;
    opened.push_back(&slot);
  }
  return state.object;
}

Acad::ErrorStatus DrawingDatabase::open(AcDbObject*& object, Slot* slot, AcDb::OpenMode mode, bool openErased) {
  if (slot == nullptr) return Acad::eNullObjectId;
  if (slot->isErased() && !openErased) return Acad::eWasErased;
  if (slot->live != nullptr && slot->live->writer) return Acad::eWasOpenForWrite;
  if (mode == AcDb::kForWrite) {
    if (slot->live != nullptr && slot->live->readers > 0) return Acad::eWasOpenForRead;
    if (parts_->refusesChange(*slot)) return Acad::eOnLockedLayer;
    AcDbObject* const made = parts_->objectFor(*slot);
    slot->live->writer = true;
    slot->live->modified = false;
    object = made;
  } else {
    if (slot->live != nullptr && slot->live->readers >= kMostReaders) return Acad::eAtMaxReaders;
    AcDbObject* const made = parts_->objectFor(*slot);
    ++slot->live->readers;
    object = made;
  }
  ++parts_->openCount;
  if (parts_->observer != nullptr) parts_->observer->used(*slot);
  return Acad::eOk;
}

void DrawingDatabase::Parts::parkData(Slot& slot) {
  AcDbObject& object = *slot.live->object;
  if (HostObjectAccess::data(object) == nullptr) return;
  if (!isAsInFile(slot)) {
    HostObjectAccess::setData(object, nullptr);
    return;
  }
  if (std::find(parked.begin(), parked.end(), &slot) != parked.end()) return;
  Slot* const oldest = std::exchange(parked[nextParked], &slot);
  nextParked = (nextParked + 1) % parked.size();
  // One that is open has its data looked at and is parked anew when it is closed.
  if (oldest != nullptr && oldest->live != nullptr && oldest->live->object != nullptr && !isOpen(*oldest->live)) {
    HostObjectAccess::setData(*oldest->live->object, nullptr);
  }
}

void DrawingDatabase::Parts::writeData(Slot& slot, const ObjectData& data) {
  TagWriter writer = self.tagWriter();
  data.write(writer);
  const std::string_view own = arena.keep(writer.str());
  Record& record = edit(slot);
  const RecordLayout layout = layoutOf(record);
  const std::size_t begin = slot.isEntity() ? layout.secondSubclass : layout.firstSubclass;
  const std::size_t from = begin != RecordLayout::npos ? begin : layout.xdata;
  record.replace(from, layout.xdata - from, own);
}

Acad::ErrorStatus DrawingDatabase::Parts::closeObject(AcDbObject& object) {
  Slot& slot = *object.slot_;
  Live* const state = slot.live;
  if (state == nullptr || state->object != &object || (!state->writer && state->readers == 0)) {
    return Acad::eNotOpenForRead;
  }
  --openCount;
  if (!state->writer) {
    if (--state->readers == 0) parkData(slot);
    return Acad::eOk;
  }
  Acad::ErrorStatus status = Acad::eOk;
  if (object.data_ != nullptr && object.data_->changed) {
    try {
      writeData(slot, *object.data_);
    } catch (const std::exception&) {
      // Objects are closed on the way out of failures, where nothing more may fail. The record is the former one; a new
      // object never had a whole one.
      status = Acad::eOutOfMemory;
      ++lostChanges;
      if (state->isAppending) slot.flags |= host::database::kErased;
    }
  }
  const bool appended = state->isAppending;
  const bool modified = state->modified;
  state->writer = false;
  parkData(slot);
  state->isAppending = false;
  state->modified = false;
  if (status != Acad::eOk) return status;
  if (reactors.empty() || (!appended && !modified)) return Acad::eOk;
  tellEach(reactors, [&](AcDbDatabaseReactor& reactor) {
    if (appended) {
      reactor.objectAppended(facade, &object);
    } else {
      reactor.objectModified(facade, &object);
    }
  });
  return Acad::eOk;
}

void DrawingDatabase::Parts::eraseSlot(Slot& slot, bool erasing) {
  // A polyline goes with all of its vertices or stays: what can fail comes first.
  Slot* const firstSub = slot.unmadeVertices() == nullptr ? slot.firstSub() : nullptr;
  const auto goesItself = [](const Slot& sub) { return (sub.flags & host::database::kFollows) == 0; };
  journal(slot);
  for (Slot* sub = firstSub; sub != nullptr; sub = sub->nextSub) {
    if (goesItself(*sub)) journal(*sub);
  }
  // A dictionary forgets an erased object; its entry comes back with undo, as the dictionary's record does.
  if (slot.owner != nullptr && erasing &&
      (slot.owner->type == DxfType::Dictionary || slot.owner->type == DxfType::DictionaryWithDefault)) {
    DictionaryContents& contents = dictionary(*slot.owner);
    const auto found = contents.byObject.find(&slot);
    if (found != contents.byObject.end()) removeDictionaryEntry(*slot.owner, found->second);
  }
  const auto mark = [erasing](Slot& target) {
    target.flags = static_cast<std::uint16_t>(erasing ? target.flags | kErased : target.flags & ~kErased);
  };
  mark(slot);
  for (Slot* sub = firstSub; sub != nullptr; sub = sub->nextSub) {
    if (goesItself(*sub)) mark(*sub);
  }
  host::database::followErasing(slot);
  if (slot.live != nullptr && slot.live->object != nullptr) slot.live->modified = true;
}

int DrawingDatabase::releaseObjects() {
  int stillOpen = 0;
  parts_->parked.fill(nullptr);
  std::vector<Slot*> slots;
  slots.swap(parts_->opened);
  for (Slot* const slot : slots) {
    Live* const live = slot->live;
    if (live == nullptr || live->object == nullptr) continue;
    if (live->writer || live->readers > 0) {
      ++stillOpen;
      while (isOpen(*live)) parts_->closeObject(*live->object);
    }
    delete std::exchange(live->object, nullptr);
    if ((slot->flags & (kNew | kChanged)) == 0) {
      slot->live = nullptr;
      parts_->lives.destroy(live);
    }
  }
  parts_->openCount = 0;
  return stillOpen;
}

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

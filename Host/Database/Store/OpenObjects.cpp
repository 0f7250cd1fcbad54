#include "Database/Store/OpenObjects.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "Database/Store/Parts.h"
#include "Database/Store/SlotStates.h"
#include "dbents.h"

namespace host::database {

namespace {

constexpr int kMostReaders = 256;

/// Whether what was read from the slot's record is what the file says, which never changes.
bool isAsInFile(const Slot& slot) { return slot.isEntity() && (slot.flags & (kNew | kChanged)) == 0; }

bool isOpen(const Live& live) { return live.writer || live.readers > 0; }

/// An object of the slot's class; its constructor makes no record of its own.
AcDbObject* createObject(const Slot& slot) {
  const HostObjectAccess::Binding binding;
  if (slot.type == DxfType::TableHead) {
    AcDbObject* const table = createTable(slot.database().parts().tables.recordTypeOf(slot));
    return table != nullptr ? table : new AcDbProxyObject;
  }
  if (const ClassEntry* const entry = classEntry(slot.type)) return entry->create();
  if (slot.isEntity()) return new AcDbProxyEntity;
  return new AcDbProxyObject;
}

}  // namespace

/// Whether the slot must not be opened for write because of its layer; tells the observer then.
bool OpenObjects::refusesChange(const Slot& slot) {
  if (!slot.isEntity() || !db_.parts().layers.isLocked(slot.layer)) return false;
  db_.tellRefused(slot, WorkObserver::Refusal::Change, "on a locked layer");
  return true;
}

AcDbObject* OpenObjects::objectFor(Slot& slot) {
  Live& live = db_.parts().slots.live(slot);
  // Changed since it was parked, by another way than its object.
  if (live.object != nullptr && !isOpen(live) && !isAsInFile(slot)) HostObjectAccess::setData(*live.object, nullptr);
  if (live.object == nullptr) {
    makeRoom(opened_);
    AcDbObject* const object = createObject(slot);
    HostObjectAccess::setData(*object, nullptr);
    HostObjectAccess::bind(*object, slot);
    live.object = object;
    opened_.push_back(&slot);
  }
  return live.object;
}

Acad::ErrorStatus OpenObjects::open(AcDbObject*& object, Slot* slot, AcDb::OpenMode mode, bool openErased) {
  if (slot == nullptr) return Acad::eNullObjectId;
  db_.parts().watchers.working();
  if (slot->isErased() && !openErased) return Acad::eWasErased;
  if (slot->live != nullptr && slot->live->writer) return Acad::eWasOpenForWrite;
  if (mode == AcDb::kForWrite) {
    if (slot->live != nullptr && slot->live->readers > 0) return Acad::eWasOpenForRead;
    if (refusesChange(*slot)) return Acad::eOnLockedLayer;
    AcDbObject* const made = objectFor(*slot);
    slot->live->writer = true;
    slot->live->modified = false;
    object = made;
  } else {
    if (slot->live != nullptr && slot->live->readers >= kMostReaders) return Acad::eAtMaxReaders;
    AcDbObject* const made = objectFor(*slot);
    ++slot->live->readers;
    object = made;
  }
  checkSlot(*slot);
  db_.parts().watchers.used(*slot);
  return Acad::eOk;
}

Acad::ErrorStatus OpenObjects::upgrade(AcDbObject& object) {
  const Slot& slot = *HostObjectAccess::slot(object);
  Live* const live = slot.live;
  if (live != nullptr && live->writer) return Acad::eWasOpenForWrite;
  if (live == nullptr || live->readers == 0) return Acad::eNotOpenForRead;
  if (live->readers > 1) return Acad::eHadMultipleReaders;
  if (slot.isErased()) return Acad::eWasErased;
  if (refusesChange(slot)) return Acad::eOnLockedLayer;
  live->readers = 0;
  live->writer = true;
  live->modified = false;
  return Acad::eOk;
}

Acad::ErrorStatus OpenObjects::downgrade(AcDbObject& object) {
  const Slot* const slot = HostObjectAccess::slot(object);
  const Acad::ErrorStatus status = close(object);
  if (status == Acad::eOk) slot->live->readers = 1;
  return status;
}

/// At the close of an object: drops its data, or keeps those of an unchanged one for a while.
void OpenObjects::parkData(Slot& slot) {
  AcDbObject& object = *slot.live->object;
  if (HostObjectAccess::data(object) == nullptr) return;
  if (!isAsInFile(slot)) {
    HostObjectAccess::setData(object, nullptr);
    return;
  }
  if (std::find(parked_.begin(), parked_.end(), &slot) != parked_.end()) return;
  Slot* const oldest = std::exchange(parked_[nextParked_], &slot);
  nextParked_ = (nextParked_ + 1) % parked_.size();
  // One that is open has its data looked at and is parked anew when it is closed.
  if (oldest != nullptr && oldest->live != nullptr && oldest->live->object != nullptr && !isOpen(*oldest->live)) {
    HostObjectAccess::setData(*oldest->live->object, nullptr);
  }
}

/// Writes what was changed of an open object's parsed data into its record.
void OpenObjects::writeData(Slot& slot, const ObjectData& data) {
  TagWriter writer = db_.tagWriter();
  data.write(writer);
  const std::string_view own = db_.keep(writer.str());
  Record& record = db_.parts().editor.edit(slot);
  const RecordLayout layout = layoutOf(record);
  const std::size_t begin = slot.isEntity() ? layout.secondSubclass : layout.firstSubclass;
  const std::size_t from = begin != RecordLayout::npos ? begin : layout.xdata;
  record.replace(from, layout.xdata - from, own);
}

Acad::ErrorStatus OpenObjects::close(AcDbObject& object) {
  Slot& slot = *HostObjectAccess::slot(object);
  Live* const live = slot.live;
  if (live == nullptr || live->object != &object || !isOpen(*live)) return Acad::eNotOpenForRead;
  if (!live->writer) {
    if (--live->readers == 0) parkData(slot);
    return Acad::eOk;
  }
  Acad::ErrorStatus status = Acad::eOk;
  const ObjectData* const data = HostObjectAccess::data(object);
  if (data != nullptr && data->changed) {
    try {
      writeData(slot, *data);
    } catch (const std::exception&) {
      // Objects are closed on the way out of failures, where nothing more may fail. The record is the former one; a new
      // object never had a whole one.
      status = Acad::eOutOfMemory;
      ++lostChanges_;
      if (live->isAppending) slot.flags |= kErased;
    }
  }
  const bool appended = live->isAppending;
  const bool modified = live->modified;
  live->writer = false;
  parkData(slot);
  live->isAppending = false;
  live->modified = false;
  checkSlot(slot);
  if (status != Acad::eOk) return status;
  const Watchers& watchers = db_.parts().watchers;
  if (!watchers.hasReactors() || (!appended && !modified)) return Acad::eOk;
  watchers.tellReactors([&](AcDbDatabaseReactor& reactor) {
    if (appended) {
      reactor.objectAppended(db_.facade(), &object);
    } else {
      reactor.objectModified(db_.facade(), &object);
    }
  });
  return Acad::eOk;
}

void OpenObjects::prepareAdoption(Slot& slot) {
  db_.parts().slots.live(slot);
  makeRoom(opened_);
}

void OpenObjects::adopt(AcDbObject& object, Slot& slot) noexcept {
  HostObjectAccess::bind(object, slot);
  slot.live->object = &object;
  slot.live->writer = true;
  slot.live->isAppending = true;
  opened_.push_back(&slot);
}

int OpenObjects::release() {
  int stillOpen = 0;
  parked_.fill(nullptr);
  std::vector<Slot*> slots;
  slots.swap(opened_);
  for (Slot* const slot : slots) {
    Live* const live = slot->live;
    if (live == nullptr || live->object == nullptr) continue;
    if (isOpen(*live)) {
      ++stillOpen;
      while (isOpen(*live)) close(*live->object);
    }
    delete std::exchange(live->object, nullptr);
    if ((slot->flags & (kNew | kChanged)) == 0) db_.parts().slots.dropLive(*slot);
  }
  return stillOpen;
}

int OpenObjects::takeLostChanges() { return std::exchange(lostChanges_, 0); }

}  // namespace host::database

// AcDbBlockTableRecord and its iterator.
#include <memory>

#include "Database/ObjectAccess.h"
#include "Database/Objects/Adoption.h"
#include "Database/Objects/IdWalk.h"
#include "dbents.h"
#include "dbsymtb.h"

using host::database::DxfType;
using host::database::moveOver;
using host::database::Slot;
using host::database::Tag;
using host::database::TagWriter;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbBlockTableRecord, AcDbSymbolTableRecord)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbBlockTableRecordIterator, AcRxObject)

namespace {

[[maybe_unused]] const bool registered = host::database::registerClass(
    {DxfType::BlockRecord, &AcDbBlockTableRecord::desc, []() -> AcDbObject* { return new AcDbBlockTableRecord; }});

}  // namespace

AcDbBlockTableRecord::AcDbBlockTableRecord() {
  const host::text::Codec codec;
  HostObjectAccess::initDetached(
      *this, "BLOCK_RECORD", false,
      TagWriter(codec).raw(100, "AcDbBlockTableRecord").raw(2, "").handle(340, 0).integer(70, 0).take());
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbEntity* entity) {
  AcDbObjectId id;
  return appendAcDbEntity(id, entity);
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity) {
  if (entity == nullptr) return Acad::eNullObjectPointer;
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  const Acad::ErrorStatus status = host::database::appendEntity(*slot_, *entity);
  if (status == Acad::eOk) id = entity->objectId();
  return status;
}

Acad::ErrorStatus AcDbBlockTableRecord::newIterator(AcDbBlockTableRecordIterator*& iterator, bool atBeginning,
                                                    bool skipDeleted) const {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  std::unique_ptr<AcDbBlockTableRecordIterator> made(new AcDbBlockTableRecordIterator);
  if (const host::database::BlockContents* const block = slot_->database().block(slot_)) {
    for (Slot* const slot : block->entities) made->ids_.append(AcDbObjectId(slot));
  }
  made->start(atBeginning, skipDeleted);
  iterator = made.release();
  return Acad::eOk;
}

bool AcDbBlockTableRecord::isLayout() const {
  Tag tag;
  return HostObjectAccess::findTag(*this, "AcDbBlockTableRecord", 340, tag) && tag.handle() != 0;
}

AcDbBlockTableRecordIterator::~AcDbBlockTableRecordIterator() = default;

void AcDbBlockTableRecordIterator::start(bool atBeginning, bool skipDeleted) {
  position_ = atBeginning ? 0 : ids_.length() - 1;
  moveOver(ids_, position_, atBeginning, skipDeleted);
}

bool AcDbBlockTableRecordIterator::done() const { return position_ < 0 || position_ >= ids_.length(); }

void AcDbBlockTableRecordIterator::step(bool forward, bool skipDeleted) {
  position_ += forward ? 1 : -1;
  moveOver(ids_, position_, forward, skipDeleted);
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntityId(AcDbObjectId& id) const {
  if (done()) return Acad::eInvalidIndex;
  id = ids_[position_];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntity(AcDbEntity*& entity, AcDb::OpenMode mode,
                                                          bool openErased) const {
  return done() ? Acad::eInvalidIndex : acdbOpenAcDbEntity(entity, ids_[position_], mode, openErased);
}

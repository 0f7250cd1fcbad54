// AcDbGroup.
#include <algorithm>
#include <memory>

#include "Database/Memory.h"
#include "Database/ObjectAccess.h"
#include "dbgroup.h"
#include "dbobjptr.h"

using host::database::dataOf;
using host::database::dataToChange;
using host::database::DxfType;
using host::database::Slot;
using host::database::Tag;
using host::database::TagCursor;
using host::database::TagWriter;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbGroup, AcDbObject)

namespace {

/// A group's own values. Members are kept as handles, so that those of a damaged file survive as they are.
struct GroupData final : host::database::ObjectData {
  std::wstring description;
  bool isUnnamed = false;
  bool isSelectable = true;
  std::vector<std::uint64_t> members;

  void read(TagCursor tags, const host::text::Codec& codec) {
    bool inside = false;
    Tag tag;
    while (tags.next(tag) && tag.code < 1000) {
      if (tag.code == 100) inside = tag.trimmed() == "AcDbGroup";
      if (!inside) continue;
      if (tag.code == 300) description = codec.decode(tag.value);
      if (tag.code == 70) isUnnamed = tag.integer() != 0;
      if (tag.code == 71) isSelectable = tag.integer() != 0;
      if (tag.code == 340) members.push_back(tag.handle());
    }
  }

  void write(TagWriter& out) const override {
    out.raw(100, "AcDbGroup").text(300, description).integer(70, isUnnamed ? 1 : 0).integer(71, isSelectable ? 1 : 0);
    for (const std::uint64_t member : members) out.handle(340, member);
  }
};

[[maybe_unused]] const bool registered =
    host::database::registerClass({DxfType::Group, &AcDbGroup::desc, []() -> AcDbObject* { return new AcDbGroup; }});

/// Living members as slots.
std::vector<Slot*> membersOf(const AcDbGroup& group) {
  std::vector<Slot*> slots;
  host::database::DrawingDatabase* const db = HostObjectAccess::database(group);
  if (db == nullptr) return slots;
  for (const std::uint64_t handle : dataOf<GroupData>(group).members) {
    Slot* const slot = db->findHandle(handle);
    if (slot != nullptr && !slot->isErased()) slots.push_back(slot);
  }
  return slots;
}

}  // namespace

AcDbGroup::AcDbGroup() : AcDbGroup(ACRX_T("")) {}

AcDbGroup::AcDbGroup(const ACHAR* description, bool selectable) {
  HostObjectAccess::initDetached(*this, "GROUP", false);
  auto data = std::make_unique<GroupData>();
  if (description != nullptr) data->description = description;
  data->isSelectable = selectable;
  HostObjectAccess::setData(*this, data.release());
}

const ACHAR* AcDbGroup::description() const { return dataOf<GroupData>(*this).description.c_str(); }

Acad::ErrorStatus AcDbGroup::setDescription(const ACHAR* description) {
  if (description == nullptr) return Acad::eInvalidInput;
  GroupData* const data = dataToChange<GroupData>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  data->description = description;
  return Acad::eOk;
}

bool AcDbGroup::isSelectable() const { return dataOf<GroupData>(*this).isSelectable; }

Acad::ErrorStatus AcDbGroup::setSelectable(bool selectable) {
  GroupData* const data = dataToChange<GroupData>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  data->isSelectable = selectable;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::append(AcDbObjectId id) {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (id.isNull()) return Acad::eNullObjectId;
  if (!id.slot()->isEntity()) return Acad::eNotAnEntity;
  const AcDbObjectPointer<AcDbEntity> member(id, AcDb::kForWrite);
  if (member.openStatus() != Acad::eOk) return member.openStatus();
  if (member->hasPersistentReactor(objectId())) return Acad::eAlreadyInGroup;
  std::vector<std::uint64_t>& members = dataToChange<GroupData>(*this)->members;
  host::database::makeRoom(members);
  HostObjectAccess::plantReactor(*member, objectId());
  members.push_back(id.slot()->handle);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::append(const AcDbObjectIdArray& ids) {
  Acad::ErrorStatus first = Acad::eOk;
  for (const AcDbObjectId& id : ids) {
    const Acad::ErrorStatus status = append(id);
    if (first == Acad::eOk) first = status;
  }
  return first;
}

Acad::ErrorStatus AcDbGroup::setLayer(const ACHAR* name) {
  AcDbDatabase* const db = database();
  if (db == nullptr) return Acad::eNotInDatabase;
  Slot* const layer = name != nullptr ? db->hostDatabase().findRecord(DxfType::Layer, name) : nullptr;
  return layer != nullptr ? setLayer(AcDbObjectId(layer)) : Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbGroup::setLayer(AcDbObjectId layer) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  Acad::ErrorStatus first = Acad::eOk;
  for (Slot* const slot : membersOf(*this)) {
    const AcDbObjectPointer<AcDbEntity> member(AcDbObjectId(slot), AcDb::kForWrite);
    const Acad::ErrorStatus status = member.openStatus() == Acad::eOk ? member->setLayer(layer) : member.openStatus();
    if (first == Acad::eOk) first = status;
  }
  return first;
}

Adesk::UInt32 AcDbGroup::numEntities() const { return static_cast<Adesk::UInt32>(membersOf(*this).size()); }

bool AcDbGroup::has(const AcDbEntity* entity) const {
  const std::vector<Slot*> members = membersOf(*this);
  return entity != nullptr && HostObjectAccess::slot(*entity) != nullptr &&
         std::find(members.begin(), members.end(), HostObjectAccess::slot(*entity)) != members.end();
}

Adesk::UInt32 AcDbGroup::allEntityIds(AcDbObjectIdArray& ids) const {
  ids.removeAll();
  for (Slot* const slot : membersOf(*this)) ids.append(AcDbObjectId(slot));
  return static_cast<Adesk::UInt32>(ids.length());
}

Acad::ErrorStatus AcDbGroup::clear() {
  GroupData* const data = dataToChange<GroupData>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  for (Slot* const slot : membersOf(*this)) {
    const AcDbObjectPointer<AcDbEntity> member(AcDbObjectId(slot), AcDb::kForWrite);
    if (member.openStatus() == Acad::eOk) member->removePersistentReactor(objectId());
  }
  data->members.clear();
  return Acad::eOk;
}

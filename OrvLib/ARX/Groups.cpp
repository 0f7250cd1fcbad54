#include "OrvLib/ARX/Groups.h"

#include <memory>

#include "OrvLib/ARX/Status.h"

namespace OrvLib {

NumberedGroups::NumberedGroups(const ACHAR* prefix, AcDbDatabase* db) : prefix_(prefix), db_(orWorkingDatabase(db)) {}

Opened<AcDbGroup> NumberedGroups::make(const ACHAR* description) {
  if (db_ == nullptr) return {};
  const auto groups =
      Opened<AcDbDictionary>::by([&](AcDbDictionary*& open) { return db_->getGroupDictionary(open, AcDb::kForWrite); });
  if (!succeeded(groups.status(), prefix_.c_str())) return {};
  std::wstring name = prefix_ + std::to_wstring(next_);
  while (groups->has(name.c_str())) name = prefix_ + std::to_wstring(++next_);
  auto group = std::make_unique<AcDbGroup>();
  AcDbObjectId id;
  if (!succeeded(groups->setAt(name.c_str(), group.get(), id), name.c_str())) return {};
  Opened<AcDbGroup> resident(group.release());
  succeeded(resident->setDescription(description), name.c_str());
  return resident;
}

bool appendToGroup(const Opened<AcDbGroup>& group, const AcDbObjectIdArray& members) {
  return group && succeeded(group->append(members));
}

bool appendToGroup(AcDbObjectId groupId, const AcDbObjectIdArray& members) {
  if (groupId.isNull()) return false;  // NumberedGroups::make has said why
  const Opened<AcDbGroup> group(groupId, AcDb::kForWrite);
  return succeeded(group.status()) && appendToGroup(group, members);
}

}  // namespace OrvLib

#include "OrvLib/ARX/Groups.h"

#include <memory>

#include "OrvLib/ARX/Failures.h"
#include "OrvLib/ARX/Opened.h"

namespace OrvLib {

NumberedGroups::NumberedGroups(const ACHAR* prefix, AcDbDatabase* db) : prefix_(prefix), db_(orWorkingDatabase(db)) {}

Opened<AcDbGroup> NumberedGroups::make(const ACHAR* description) {
  if (db_ == nullptr) return {};
  const auto groups =
      Opened<AcDbDictionary>::by([&](AcDbDictionary*& open) { return db_->getGroupDictionary(open, AcDb::kForWrite); });
  if (!groups) return {};
  std::wstring name = prefix_ + std::to_wstring(next_);
  while (groups->has(name.c_str())) name = prefix_ + std::to_wstring(++next_);
  auto group = std::make_unique<AcDbGroup>();
  AcDbObjectId id;
  if (const Acad::ErrorStatus status = groups->setAt(name.c_str(), group.get(), id); status != Acad::eOk) {
    printFailed(acadErrorStatusText(status), name.c_str());
    return {};
  }
  Opened<AcDbGroup> resident(group.release());
  resident->setDescription(description);
  return resident;
}

bool appendToGroup(const Opened<AcDbGroup>& group, const AcDbObjectIdArray& members) {
  return group && group->append(members) == Acad::eOk;
}

bool appendToGroup(AcDbObjectId groupId, const AcDbObjectIdArray& members) {
  return appendToGroup(Opened<AcDbGroup>(groupId, AcDb::kForWrite), members);
}

}  // namespace OrvLib

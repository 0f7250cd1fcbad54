// Groups: named sets of entities.
#pragma once

#include "dbmain.h"

/// Must be in the group dictionary before anything is appended: it plants itself as reactor on its members.
class ADESK_EXPORT AcDbGroup : public AcDbObject {
  ACRX_DECLARE_MEMBERS(AcDbGroup);

 public:
  AcDbGroup();
  explicit AcDbGroup(const ACHAR* description, bool selectable = true);
  const ACHAR* description() const;
  Acad::ErrorStatus setDescription(const ACHAR* description);
  bool isSelectable() const;
  Acad::ErrorStatus setSelectable(bool selectable);
  /// eNotInDatabase (T: add the group first), eAlreadyInGroup, and the opener's status for the member.
  Acad::ErrorStatus append(AcDbObjectId id);
  /// Appends what can be appended; the status of the first that cannot.
  Acad::ErrorStatus append(const AcDbObjectIdArray& ids);
  /// Every living member.
  Acad::ErrorStatus setLayer(const ACHAR* name);
  Acad::ErrorStatus setLayer(AcDbObjectId layer);
  /// Living members.
  Adesk::UInt32 numEntities() const;
  bool has(const AcDbEntity* entity) const;
  Adesk::UInt32 allEntityIds(AcDbObjectIdArray& ids) const;
  Acad::ErrorStatus clear();
};

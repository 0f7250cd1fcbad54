// Draw order of one block's entities.
#pragma once

#include "dbmain.h"

/// Stands under "ACAD_SORTENTS" in the extension dictionary of its block table record.
class ADESK_EXPORT AcDbSortentsTable : public AcDbObject {
  ACRX_DECLARE_MEMBERS(AcDbSortentsTable);

 public:
  AcDbSortentsTable();
  AcDbObjectId blockId() const;
  Acad::ErrorStatus setBlockId(AcDbObjectId block);
  /// The ids keep their mutual order. eNotInBlock for an id of another block; nothing is then moved.
  Acad::ErrorStatus moveToTop(const AcDbObjectIdArray& ids);
  Acad::ErrorStatus moveToBottom(const AcDbObjectIdArray& ids);
  Acad::ErrorStatus moveAbove(const AcDbObjectIdArray& ids, AcDbObjectId target);
  Acad::ErrorStatus moveBelow(const AcDbObjectIdArray& ids, AcDbObjectId target);
  Acad::ErrorStatus swapOrder(AcDbObjectId first, AcDbObjectId second);
  Acad::ErrorStatus firstEntityIsDrawnBeforeSecond(AcDbObjectId first, AcDbObjectId second, bool& isBefore) const;
  /// Bottom first, erased entities left out.
  Acad::ErrorStatus getFullDrawOrder(AcDbObjectIdArray& ids, Adesk::UInt8 honorSortentsMask = 0) const;
};

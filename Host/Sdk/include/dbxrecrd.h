// Xrecords: data of applications in a dictionary.
#pragma once

#include "dbmain.h"

class ADESK_EXPORT AcDbXrecord : public AcDbObject {
  ACRX_DECLARE_MEMBERS(AcDbXrecord);

 public:
  AcDbXrecord();
  /// A copy of the whole chain, null when empty. Free with acutRelRb.
  Acad::ErrorStatus rbChain(resbuf** chain, AcDbDatabase* auxDb = nullptr) const;
  /// Replaces everything. Codes 1 to 369 but 5 and 105; eInvalidDxfCode.
  Acad::ErrorStatus setFromRbChain(const resbuf& chain, AcDbDatabase* auxDb = nullptr);
};

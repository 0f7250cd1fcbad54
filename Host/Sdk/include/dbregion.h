// Regions: opaque solid data.
#pragma once

#include "dbmain.h"

class ADESK_EXPORT AcDbRegion : public AcDbEntity {
  ACRX_DECLARE_MEMBERS(AcDbRegion);

 public:
  AcDbRegion();
};

// Database operations of the C interface.
#pragma once

#include "acadstrc.h"
#include "adslib.h"

class AcDbObjectId;

/// Registers an application name in the working database. RTNORM when added, RTERROR when it was there or cannot be.
ADESK_EXPORT int acdbRegApp(const ACHAR* name);
/// User to world coordinates of a point (vec false) or direction (vec true).
ADESK_EXPORT int acdbUcs2Wcs(const ads_point p, ads_point q, bool vec);
ADESK_EXPORT int acdbWcs2Ucs(const ads_point p, ads_point q, bool vec);

// Running a host command from code.
#pragma once

#include "adslib.h"

/// Type/value pairs up to 0 or RTNONE; runs the whole command. RTNORM, RTERROR, RTCAN, RTREJ.
ADESK_EXPORT int acedCommandS(int rtype, ...);
ADESK_EXPORT int acedCmdS(const resbuf* chain);

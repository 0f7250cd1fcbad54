// Command-line output and result-buffer chains.
#pragma once

#include "acadstrc.h"
#include "adslib.h"

/// Prints on the command line. The format has Microsoft's wide meaning: %s takes a wide string, %S and %hs a
/// narrow one, %ld a 32-bit integer. No line break is added. Answers RTNORM.
ADESK_EXPORT int acutPrintf(const ACHAR* format, ...);

/// Type/value pairs up to RTNONE or 0 as a new chain, strings copied; null when a type is unknown. Free with acutRelRb.
ADESK_EXPORT resbuf* acutBuildList(int rtype, ...);
/// One empty item of the given type, or null when memory is out.
ADESK_EXPORT resbuf* acutNewRb(int type);
/// Frees a whole chain with its strings; null is harmless.
ADESK_EXPORT int acutRelRb(resbuf* chain);

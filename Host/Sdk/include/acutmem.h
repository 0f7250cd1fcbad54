// Strings owned by result buffers.
#pragma once

#include "acadstrc.h"
#include "adesk.h"

/// `out` becomes a copy of `source` to be freed with acutDelString.
ADESK_EXPORT Acad::ErrorStatus acutNewString(const ACHAR* source, ACHAR*& out);
/// Replaces `inOut` by a copy of `source`, freeing what it held.
ADESK_EXPORT Acad::ErrorStatus acutUpdString(const ACHAR* source, ACHAR*& inOut);
/// Frees and clears; null is harmless.
ADESK_EXPORT void acutDelString(ACHAR*& text);

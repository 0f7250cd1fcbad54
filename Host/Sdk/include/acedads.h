// Questions to the user, selections, system variables.
#pragma once

#include "acadstrc.h"
#include "acdbads.h"
#include "acutads.h"
#include "adslib.h"

/// Selects entities. RTNORM with at least one member; RTERROR for nothing; RTCAN on Esc. No set exists otherwise.
ADESK_EXPORT int acedSSGet(const ACHAR* mode, const void* point1, const void* point2, const resbuf* filter,
                           ads_name set);
ADESK_EXPORT int acedSSLength(const ads_name set, Adesk::Int32* length);
ADESK_EXPORT int acedSSName(const ads_name set, Adesk::Int32 index, ads_name entity);
ADESK_EXPORT int acedSSFree(const ads_name set);
ADESK_EXPORT int acedSSAdd(const ads_name entity, const ads_name set, ads_name result);
ADESK_EXPORT int acedSSDel(const ads_name entity, const ads_name set);
ADESK_EXPORT int acedSSMemb(const ads_name entity, const ads_name set);

/// Picks one entity. RTNORM; RTERROR for a missed pick or Enter (ERRNO 7 or 52 tells them apart); RTCAN on Esc.
ADESK_EXPORT int acedEntSel(const ACHAR* prompt, ads_name entity, ads_point point);
/// RTNORM; RTNONE on Enter; RTCAN on Esc. A base point draws a rubber band and is the origin of "@" answers.
ADESK_EXPORT int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point out);
/// RTNORM; RTNONE on Enter, `out` untouched; RTCAN on Esc.
ADESK_EXPORT int acedGetReal(const ACHAR* prompt, ads_real* out);
ADESK_EXPORT int acedGetInt(const ACHAR* prompt, int* out);
ADESK_EXPORT int acedGetString(int spacesAllowed, const ACHAR* prompt, ACHAR* out, std::size_t size);
ADESK_EXPORT int acedGetKword(const ACHAR* prompt, ACHAR* out, std::size_t size);
ADESK_EXPORT int acedGetInput(ACHAR* out, std::size_t size);
/// Control bits and keywords of the next question only.
ADESK_EXPORT int acedInitGet(int bits, const ACHAR* keywords);

/// A box with the product's name and OK.
ADESK_EXPORT int acedAlert(const ACHAR* text);

/// The value in `out` belongs to the caller (free strings with acutDelString). RTERROR for an unknown name.
ADESK_EXPORT int acedGetVar(const ACHAR* name, resbuf* out);
/// RTERROR for an unknown name, a read-only variable, a wrong type or an impossible value.
ADESK_EXPORT int acedSetVar(const ACHAR* name, const resbuf* in);

/// Shows the drawing anew.
extern "C" ADESK_EXPORT int ads_regen(void);

/// Progress in the status bar. 0 on success, -1 on failure.
ADESK_EXPORT int acedSetStatusBarProgressMeter(const ACHAR* label, int min, int max);
/// Absolute when not negative, otherwise moves on by the magnitude.
ADESK_EXPORT int acedSetStatusBarProgressMeterPos(int position);
ADESK_EXPORT void acedRestoreStatusBar();

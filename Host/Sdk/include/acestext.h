// Names of status values.
#pragma once

#include "acadstrc.h"
#include "adesk.h"

/// The enumerator's name ("eWasErased"), or "Unknown status"; never null, never to be freed.
ADESK_EXPORT const ACHAR* acadErrorStatusText(Acad::ErrorStatus status);

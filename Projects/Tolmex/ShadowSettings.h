// The shadow settings of the current drawing, in and out of its database.
#pragma once

#include "Tolmex/Model/ShadowRecord.h"

namespace OrvLib {

/// Takes the settings stored in the working database into the current document's data when they are others than those
/// seen there last. Ones that are not stored are the defaults.
void readShadowSettings();
/// Stores the current document's settings in the working database, replacing what was stored; a failure is printed on
/// the command line.
void writeShadowSettings();

}  // namespace OrvLib

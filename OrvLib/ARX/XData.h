// Extended data of objects.
#pragma once

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/DataStruct/DataItems.h"

namespace OrvLib {

/// One application's data of an open entity; empty when it has none.
DataItems readXData(const AcDbObject& object, const ACHAR* application);

/// Sets extended data, which begins with its application's name, on an object that is open for write; registers the
/// application in the drawing when the host answers that it does not know it. True when the data was set.
bool setXDataRegistered(AcDbObject& object, const ACHAR* application, const resbuf* chain);

/// Removes one application's data from an open object, which is made writable for it and left open as it was. An object
/// without such data is left untouched. False when the host refuses.
bool removeXData(AcDbObject& object, const ACHAR* application);

}  // namespace OrvLib

// Handles: how data in a drawing names its objects.
#pragma once

#include <string>

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// The handle of an object that is in a drawing as hexadecimal text; "0", which names nothing, for any other.
std::wstring handleText(const AcDbObject& object);

/// The object of the working database that the text names; it may be an erased one. Null id when there is none.
AcDbObjectId objectOfHandle(const std::wstring& handle);

}  // namespace OrvLib

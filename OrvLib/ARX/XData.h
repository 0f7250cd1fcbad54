// Extended data as lists of keys and values.
#pragma once

#include <optional>
#include <string>

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

inline constexpr short kXDataText = 1000;
inline constexpr short kXDataApplication = 1001;
inline constexpr short kXDataControl = 1002;
inline constexpr short kXDataHandle = 1005;

/// The value of a key in one application's chain: the item after the first item of code `keyCode` whose text equals
/// `key`, as text whatever its own code (numbers as "%g" and "%d"). A closing brace between them is stepped over.
/// Nothing when the chain does not begin with the application's name, the key is missing or its value has no text.
std::optional<std::wstring> valueInChain(const resbuf* chain, const ACHAR* application, const ACHAR* key,
                                         short keyCode = kXDataText);

/// The same from an entity that is open.
std::optional<std::wstring> readXDataValue(const AcDbObject& object, const ACHAR* application, const ACHAR* key,
                                           short keyCode = kXDataText);

/// Sets extended data on an object that is open for write; registers `application` in the drawing when the host says
/// that it does not know it. True when the data was set.
bool setXDataRegistered(AcDbObject& object, const ACHAR* application, const resbuf* chain);

/// Removes one application's data from an open object, which is made writable for it and left open as it was. An object
/// without such data is left untouched. False when the host refuses.
bool removeXData(AcDbObject& object, const ACHAR* application);

}  // namespace OrvLib

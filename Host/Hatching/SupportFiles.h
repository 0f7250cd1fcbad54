// Text files on the support path.
#pragma once

#include <optional>
#include <string>

#include "adesk.h"

class AcDbDatabase;

namespace host::hatching {

/// Full path (UTF-8) of a file looked for in the current, the drawing's and the support folders; nothing when there is
/// none.
std::optional<std::string> findSupportFile(const std::wstring& name, AcDbDatabase* db, bool isPatternFile);
/// Its bytes; nothing when it cannot be read.
std::optional<std::string> readTextFile(const std::string& path);

}  // namespace host::hatching

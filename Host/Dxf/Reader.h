// Reading well-formed drawings.
#pragma once

#include <string>

#include "Database/DrawingDatabase.h"

namespace host::dxf {

/// Reads the text of a well-formed drawing AC1015 to AC1032 into an empty database. The first thing that is not as it
/// should be is the problem, without the file; the text then still lies in the database's parts.
Result<> readWellFormed(database::DrawingDatabase& db, std::string text, const std::string& name);

}  // namespace host::dxf

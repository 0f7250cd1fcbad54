// Reading well-formed drawings.
#pragma once

#include <cstddef>
#include <string>

#include "Database/DrawingDatabase.h"

namespace host::dxf {

/// Why a text is no well-formed drawing.
struct ReadError {
  std::size_t line = 0;  // 0 when it is not about one line
  std::string sentence;
};

/// Reads the text of a well-formed drawing AC1015 to AC1032 into an empty database. Throws ReadError at the first thing
/// that is not as it should be; the text then still lies in the database's parts.
void readWellFormed(database::DrawingDatabase& db, std::string text, const std::string& name);

}  // namespace host::dxf

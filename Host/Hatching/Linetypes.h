// Linetypes: dash lists of records, linetype files.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace host::hatching {

struct Linetype {
  std::string name;  // as in the file, UTF-8
  std::string description;
  std::vector<double> dashes;  // positive dash, negative gap, 0 dot; empty: unbroken
};

/// Dashes of an LTYPE record (complex elements keep their lengths only).
std::vector<double> linetypeDashes(database::TagCursor tags);
/// Linetypes of a linetype file's text; `problems` gets one sentence per line that cannot be read, with its number.
std::vector<Linetype> parseLinetypeFile(std::string_view text, std::vector<std::string>& problems);

}  // namespace host::hatching

// Linetypes: dash lists of records, linetype files.
#pragma once

#include <cstdint>
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

/// A text or shape in a linetype, in linetype units.
struct LinetypeMark {
  std::size_t element = 0;  // index of the dash or gap at whose end it stands
  std::string text;         // in the drawing's encoding; empty: a shape
  int shape = 0;            // number of the shape
  std::uint64_t style = 0;  // handle of the text style
  double scale = 1;         // its height, for a style without a height of its own
  double rotationRad = 0;   // against the line, or the drawing's x axis
  bool isUpright = false;   // the latter
  double along = 0, across = 0;
};

/// Dashes of an LTYPE record (complex elements keep their lengths only).
std::vector<double> linetypeDashes(database::TagCursor tags);
/// Texts and shapes of an LTYPE record; those with numbers that are not finite are left out.
std::vector<LinetypeMark> linetypeMarks(database::TagCursor tags);
/// Linetypes of a linetype file's text; `problems` gets one for each line that cannot be read.
std::vector<Linetype> parseLinetypeFile(std::string_view text, std::vector<Problem>& problems);

}  // namespace host::hatching

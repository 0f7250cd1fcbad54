// Which fonts the texts of a drawing name, and what pictures draw them with.
#pragma once

#include <string>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace host::picture {

struct FontUse {
  std::string name;       // as the drawing has it, in small letters; empty: none
  std::string drawnWith;  // family of an outline font or file of a stroke font
  std::size_t texts = 0;
};

/// Of the texts in all spaces and blocks, sorted by name; bold and italic ones count with the others.
std::vector<FontUse> fontsUsed(const database::DrawingDatabase& db);

}  // namespace host::picture

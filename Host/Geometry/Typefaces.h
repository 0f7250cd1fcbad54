// The faces that texts of drawings name.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Database/DrawingDatabase.h"

namespace host::geometry {

/// A face by the number of its font's name; 0 is the font that pictures have of their own.
struct Face {
  std::uint16_t font = 0;
  bool isBold = false, isItalic = false;
  bool operator==(const Face&) const = default;
};

/// The number of a font that a drawing names, the same for the life of the program, without regard to case: a typeface
/// ("Arial") or a file ("simplex.shx"; its folder does not count). 0 for an empty name, for one that no font can have,
/// and when there were thousands of others. May be called by any thread.
std::uint16_t fontNumber(std::wstring_view name);
/// The same of a file's name, which ends in ".shx" when it has no ending.
std::uint16_t fontFileNumber(std::wstring_view name);
/// The name in small letters; empty for 0.
std::wstring fontName(std::uint16_t number);

/// What the record of a text style says: the typeface, or the file when it names none.
Face faceOfStyle(const database::Slot& style);

}  // namespace host::geometry

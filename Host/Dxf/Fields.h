// Which kind of value a group code announces.
#pragma once

namespace host::dxf {

enum class Field { Text, Real, Int16, Int32, Int64, Byte, Chunk };

constexpr Field fieldOf(int code) {
  struct Range {
    int first, last;
    Field field;
  };
  constexpr Range kRanges[] = {
      {10, 59, Field::Real},     {60, 79, Field::Int16},     {90, 99, Field::Int32},    {110, 149, Field::Real},
      {160, 169, Field::Int64},  {170, 179, Field::Int16},   {210, 239, Field::Real},   {270, 289, Field::Int16},
      {290, 299, Field::Byte},   {310, 319, Field::Chunk},   {370, 389, Field::Int16},  {400, 409, Field::Int16},
      {420, 429, Field::Int32},  {440, 459, Field::Int32},   {460, 469, Field::Real},   {1004, 1004, Field::Chunk},
      {1010, 1059, Field::Real}, {1060, 1070, Field::Int16}, {1071, 1071, Field::Int32}};
  for (const Range& range : kRanges) {
    if (code >= range.first && code <= range.last) return range.field;
  }
  return Field::Text;
}

/// Group codes that drawings have.
constexpr bool isGroupCode(int code) { return code >= -5 && code <= 1071; }

}  // namespace host::dxf

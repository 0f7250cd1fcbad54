#include "OrvLib/ARX/DataChain.h"

#include <iterator>

namespace OrvLib {
namespace {

enum class ValueType { None, Text, Real, Short, Long };

/// Group codes with one type of value, first and last.
struct CodeRange {
  short first;
  short last;
  ValueType type;
};
// 1004 is a run of bytes, 1010 to 1033 are points.
constexpr CodeRange kRanges[] = {
    {0, 9, ValueType::Text},       {38, 59, ValueType::Real},      {60, 79, ValueType::Short},
    {90, 99, ValueType::Long},     {1000, 1003, ValueType::Text},  {1005, 1005, ValueType::Text},
    {1040, 1042, ValueType::Real}, {1070, 1070, ValueType::Short}, {1071, 1071, ValueType::Long},
};

ValueType typeOf(short code) {
  for (const CodeRange& range : kRanges) {
    if (code >= range.first && code <= range.last) return range.type;
  }
  return ValueType::None;
}

DataItem itemOf(const resbuf& buffer) {
  DataItem item(buffer.restype);
  switch (typeOf(buffer.restype)) {
    case ValueType::Text:
      if (buffer.resval.rstring != nullptr) item.value.emplace<std::wstring>(buffer.resval.rstring);
      break;
    case ValueType::Real:
      item.value = buffer.resval.rreal;
      break;
    case ValueType::Short:
      item.value = static_cast<std::int16_t>(buffer.resval.rint);
      break;
    case ValueType::Long:
      item.value = static_cast<std::int32_t>(buffer.resval.rlong);
      break;
    case ValueType::None:
      break;
  }
  return item;
}

}  // namespace

DataItems itemsOf(const resbuf* chain) {
  DataItems items;
  for (const resbuf* buffer = chain; buffer != nullptr; buffer = buffer->rbnext) items.push_back(itemOf(*buffer));
  return items;
}

}  // namespace OrvLib

#include "Tolmex/Model/ColorScheme.h"

#include <optional>
#include <string_view>

#include "OrvLib/DataStruct/Ordering.h"
#include "OrvLib/DataStruct/Text.h"
#include "Tolmex/Model/Catalogue.h"

namespace OrvLib {
namespace {

std::optional<std::wstring_view> valueOf(const std::vector<std::wstring>& lines, std::wstring_view key) {
  for (const std::wstring& line : lines) {
    const std::vector<std::wstring_view> parts = words(line);
    if (parts.size() >= 2 && equalsIgnoringCase(parts[0], key)) return parts[1];
  }
  return std::nullopt;
}

}  // namespace

void readSchemeLines(const std::vector<std::wstring>& lines, ColorScheme& scheme) {
  for (const SchemeColor& color : kSchemeColors) {
    if (const auto value = valueOf(lines, color.key)) scheme.*color.field = toInt(leadingNumber(*value));
  }
}

std::wstring schemeText(const ColorScheme& scheme) {
  std::wstring text;
  for (const SchemeColor& color : kSchemeColors) {
    text.append(color.key).append(L"\t").append(std::to_wstring(scheme.*color.field)).append(L"\n");
  }
  return text;
}

}  // namespace OrvLib

// Numbers with a decimal comma, as people write them who are not asked for a point.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "Editor/Answers.h"

namespace host::editor {

/// "2,8" as "2.8": digits on both sides of one comma; nothing for other texts.
inline std::optional<std::wstring> withDecimalPoint(std::wstring_view text) {
  const std::size_t comma = text.find(L',');
  if (comma == std::wstring_view::npos || comma + 1 == text.size()) return std::nullopt;
  const std::wstring_view decimals = text.substr(comma + 1);
  if (decimals.find_first_not_of(L"0123456789") != std::wstring_view::npos || !parseWhole(text.substr(0, comma)))
    return std::nullopt;
  std::wstring pointed(text);
  pointed[comma] = L'.';
  return pointed;
}

}  // namespace host::editor

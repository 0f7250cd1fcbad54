// How texts compare.
#pragma once

#include <algorithm>
#include <compare>
#include <string_view>

#include "OrvLib/DataStruct/Text.h"

namespace OrvLib {

/// Order of the letters' codes without regard to the case of A to Z, Å, Ä and Ö; a text comes after its own beginning.
inline std::weak_ordering compareIgnoringCase(std::wstring_view a, std::wstring_view b) {
  return std::lexicographical_compare_three_way(
      a.begin(), a.end(), b.begin(), b.end(),
      [](wchar_t x, wchar_t y) -> std::weak_ordering { return lowerCase(x) <=> lowerCase(y); });
}

inline bool equalsIgnoringCase(std::wstring_view a, std::wstring_view b) {
  return a.size() == b.size() && std::is_eq(compareIgnoringCase(a, b));
}

}  // namespace OrvLib

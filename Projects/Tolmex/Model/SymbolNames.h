// Names of symbol files, and where the path file says that they are. A symbol is a set of drawings in one directory,
// named "puu_2vt.dwg": base name, size, the variant's letters.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace OrvLib {

struct SymbolVariant {
  int size = 0;  // 0 none, 1 small, 2 medium, 3 large
  bool shadow = false;
  bool fill = false;

  /// What the names of its files end in, "_2vt.dwg".
  std::wstring fileTail() const;
};

/// Layer of the symbols of one base name and size, "puu_2".
std::wstring symbolLayer(std::wstring_view baseName, const SymbolVariant& variant);

/// Those of the file names that belong to the variant, in their order, without regard to case.
std::vector<std::wstring> symbolFiles(const std::vector<std::wstring>& names, const SymbolVariant& variant);

/// The file name without the variant's tail.
std::wstring baseName(std::wstring_view fileName, const SymbolVariant& variant);

/// The symbol directory by the lines of orvpath.cfg; empty when they do not tell. In a line of two words or more the
/// first is the key, and the value is the longest other one of at least three characters (the last of equally long
/// ones); the last line with the key holds.
std::wstring symbolDirectoryIn(const std::vector<std::wstring>& pathLines);

}  // namespace OrvLib

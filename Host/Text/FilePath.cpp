#include "FilePath.h"

#include <algorithm>

#include "Platform/Paths.h"
#include "Text.h"

namespace host::text {

std::filesystem::path toPath(std::wstring_view path) {
  std::filesystem::path asWritten = platform::pathOf(toUtf8(path));
  std::error_code error;
  if (path.find(L'\\') == std::wstring_view::npos || std::filesystem::exists(asWritten, error)) return asWritten;
  std::wstring withSlashes(path);
  std::replace(withSlashes.begin(), withSlashes.end(), L'\\', L'/');
  return platform::pathOf(toUtf8(withSlashes));
}

bool namesDrive(std::wstring_view path) {
  const auto isLetter = [](wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z'); };
  return path.size() >= 2 && path[1] == L':' && isLetter(path[0]);
}

}  // namespace host::text

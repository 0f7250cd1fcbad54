#include "FilePath.h"

#ifndef _WIN32
#include <dirent.h>
#endif

#include <algorithm>
#include <cerrno>
#include <memory>

#include "Text.h"

namespace host::text {

std::filesystem::path toPath(std::wstring_view path) {
  std::filesystem::path asWritten = toUtf8(path);
  std::error_code error;
  if (path.find(L'\\') == std::wstring_view::npos || std::filesystem::exists(asWritten, error)) return asWritten;
  std::wstring withSlashes(path);
  std::replace(withSlashes.begin(), withSlashes.end(), L'\\', L'/');
  return toUtf8(withSlashes);
}

#ifdef _WIN32
std::vector<std::filesystem::path> namesIn(const std::filesystem::path& folder, std::error_code& error) {
  std::vector<std::filesystem::path> names;
  for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
    names.push_back(it->path().filename());
  return names;
}
#else
// The directory iterators of libstdc++ 12 end the program when there is no memory for a name.
std::vector<std::filesystem::path> namesIn(const std::filesystem::path& folder, std::error_code& error) {
  std::vector<std::filesystem::path> names;
  error.clear();
  struct Closer {
    void operator()(DIR* open) const { ::closedir(open); }
  };
  const std::unique_ptr<DIR, Closer> open(::opendir(folder.c_str()));
  while (open != nullptr) {
    errno = 0;
    const dirent* const entry = ::readdir(open.get());  // NOLINT(concurrency-mt-unsafe): the stream is not shared
    if (entry == nullptr) break;
    const std::string_view name = static_cast<const char*>(entry->d_name);
    if (name != "." && name != "..") names.emplace_back(name);
  }
  if (errno != 0) error.assign(errno, std::generic_category());
  return names;
}
#endif

bool namesDrive(std::wstring_view path) {
  const auto isLetter = [](wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z'); };
  return path.size() >= 2 && path[1] == L':' && isLetter(path[0]);
}

}  // namespace host::text

// Searching folders, with the names of Windows and those of this system.
#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Editor/DialogInput.h"
#include "Platform/Files.h"
#include "Text/FilePath.h"
#include "Text/Text.h"
#include "fileapi.h"
#include "windows.h"

namespace {

struct Entry {
  std::wstring name;
  std::wstring folded;
  bool isFolder;
};

struct FolderSearch {
  std::vector<Entry> entries;
  std::size_t next = 0;
};

/// Searches that are open; handles come from plug-ins and may be stale.
std::set<FolderSearch*>& openSearches() {
  static auto& all = *new std::set<FolderSearch*>;
  return all;
}

/// The pattern in the host's own language: everything but * and ? stands for itself.
std::wstring quoted(std::wstring_view pattern) {
  std::wstring out;
  for (const wchar_t c : pattern) {
    if (c != L'*' && c != L'?') out += L'`';
    out += c;
  }
  return out;
}

std::vector<Entry> matching(const std::filesystem::path& folder, std::wstring_view pattern, std::error_code& error) {
  std::vector<Entry> entries;
  const std::wstring wanted = quoted(pattern);
  for (const std::filesystem::path& entry : host::platform::namesIn(folder, error)) {
    std::wstring name = host::text::fromUtf8(entry.string());
    if (name.size() >= MAX_PATH || !host::text::matchesWildcard(name, wanted)) continue;
    std::error_code ignored;
    std::wstring folded = host::text::folded(name);
    entries.push_back({std::move(name), std::move(folded), std::filesystem::is_directory(folder / entry, ignored)});
  }
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return std::tie(a.folded, a.name) < std::tie(b.folded, b.name); });
  return entries;
}

/// "puu\*.dwg" as folder and pattern.
std::pair<std::wstring_view, std::wstring_view> splitPath(std::wstring_view path) {
  const std::size_t end = path.find_last_of(L"/\\");
  if (end == std::wstring_view::npos) return {L".", path};
  return {path.substr(0, std::max<std::size_t>(end, 1)), path.substr(end + 1)};
}

/// Why a folder cannot be searched, in one sentence.
std::string reasonOf(const std::error_code& error, std::wstring_view folder) {
  if (host::text::namesDrive(folder))
    return host::text::toUtf8(folder) + ": the folder cannot be found: there is no drive " +
           host::text::toUtf8(folder.substr(0, 2)) + " here";
  const std::string name = host::text::toPath(folder).string();
  if (error == std::errc::no_such_file_or_directory) return name + ": the folder cannot be found";
  return name + ": the folder cannot be read: " + error.message();
}

}  // namespace

HANDLE FindFirstFileW(LPCWSTR pattern, WIN32_FIND_DATAW* found) {
  if (pattern == nullptr || found == nullptr) {
    SetLastError(ERROR_INVALID_DATA);
    return INVALID_HANDLE_VALUE;
  }
  const auto [folder, names] = splitPath(pattern);
  auto search = std::make_unique<FolderSearch>();
  std::error_code error;
  search->entries = matching(host::text::toPath(folder), names, error);
  if (search->entries.empty()) {
    if (error) host::editor::reportDialogProblem(host::problemOf(host::Code::FilePassedOver, reasonOf(error, folder)));
    SetLastError(error ? ERROR_PATH_NOT_FOUND : ERROR_FILE_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
  }
  openSearches().insert(search.get());
  FolderSearch* const handle = search.release();
  FindNextFileW(handle, found);
  return handle;
}

BOOL FindNextFileW(HANDLE handle, WIN32_FIND_DATAW* found) {
  auto* const search = static_cast<FolderSearch*>(handle);
  if (found == nullptr || openSearches().count(search) == 0) {
    SetLastError(ERROR_INVALID_DATA);
    return FALSE;
  }
  if (search->next == search->entries.size()) {
    SetLastError(ERROR_NO_MORE_FILES);
    return FALSE;
  }
  const Entry& entry = search->entries[search->next++];
  *found = {};
  found->dwFileAttributes = entry.isFolder ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
  std::copy(entry.name.begin(), entry.name.end(), found->cFileName);
  return TRUE;
}

BOOL FindClose(HANDLE handle) {
  auto* const search = static_cast<FolderSearch*>(handle);
  if (openSearches().erase(search) == 0) return FALSE;
  delete search;
  return TRUE;
}

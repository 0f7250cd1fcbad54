#include "Platform/ReplacingFile.h"

#include <algorithm>
#include <utility>

#include "Platform/windows/Windows.h"

namespace host::platform {

namespace {

constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
// Scanners for viruses and programs that index open new files for a moment.
constexpr int kTries = 10;
constexpr DWORD kPauseMs = 50;

HANDLE handleOf(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

bool isPassing(DWORD error) {
  return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION || error == ERROR_ACCESS_DENIED;
}

/// The old file's rights and attributes stay with its name where the system can keep them.
bool replace(const std::wstring& target, const std::wstring& replacement) {
  constexpr DWORD kFlags = REPLACEFILE_WRITE_THROUGH | REPLACEFILE_IGNORE_MERGE_ERRORS | REPLACEFILE_IGNORE_ACL_ERRORS;
  const bool isThere = ::GetFileAttributesW(target.c_str()) != INVALID_FILE_ATTRIBUTES;
  if (isThere && ::ReplaceFileW(target.c_str(), replacement.c_str(), nullptr, kFlags, nullptr, nullptr) != 0)
    return true;
  // Network drives may not know that call; one that fails on its way may have taken the old name away already.
  return ::MoveFileExW(replacement.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

}  // namespace

std::string whyUnwritable(const std::filesystem::path& file) {
  const DWORD attributes = ::GetFileAttributesW(systemPath(file).c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
    return reasonOf(ERROR_ACCESS_DENIED);
  const HANDLE open =
      ::CreateFileW(systemPath(file).c_str(), GENERIC_WRITE | DELETE, kShared, nullptr, OPEN_EXISTING, 0, nullptr);
  if (open != INVALID_HANDLE_VALUE) {
    ::CloseHandle(open);
    return {};
  }
  const DWORD error = ::GetLastError();
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ? std::string() : reasonOf(error);
}

ReplacingFile::ReplacingFile(const std::filesystem::path& target)
    : target_(target), folder_(target.has_parent_path() ? target.parent_path() : ".") {
  for (unsigned attempt = 0; attempt < 100 && !isOpen(); ++attempt) {
    std::filesystem::path name =
        folder_ / (".tolmex-" + std::to_string(::GetCurrentProcessId()) + "-" + std::to_string(attempt));
    const HANDLE made = ::CreateFileW(systemPath(name).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                      nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (made != INVALID_HANDLE_VALUE) {
      handle_ = reinterpret_cast<std::intptr_t>(made);
      name_ = std::move(name);
    } else {
      failed();
      if (error_ != ERROR_FILE_EXISTS && error_ != ERROR_ALREADY_EXISTS) break;
    }
  }
}

ReplacingFile::~ReplacingFile() {
  close();
  if (!name_.empty()) ::DeleteFileW(systemPath(name_).c_str());
}

std::string ReplacingFile::reason() const { return reasonOf(error_); }

bool ReplacingFile::commit() {
  if (::FlushFileBuffers(handleOf(handle_)) == 0) return failed();
  if (::CloseHandle(handleOf(std::exchange(handle_, kNone))) == 0) return failed();
  const std::wstring target = systemPath(target_), name = systemPath(name_);
  for (int left = kTries; !replace(target, name); --left) {
    failed();
    if (left == 1 || !isPassing(static_cast<DWORD>(error_))) return false;
    ::Sleep(kPauseMs);
  }
  name_.clear();
  return true;
}

bool ReplacingFile::writeBytes(std::string_view bytes) {
  constexpr std::size_t kMost = std::size_t{1} << 28;
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto count = static_cast<DWORD>(std::min(bytes.size(), kMost));
    if (::WriteFile(handleOf(handle_), bytes.data(), count, &written, nullptr) == 0 || written == 0) return failed();
    bytes.remove_prefix(written);
  }
  return true;
}

bool ReplacingFile::failed() {
  error_ = ::GetLastError();
  return false;
}

void ReplacingFile::close() {
  if (handle_ != kNone) ::CloseHandle(handleOf(std::exchange(handle_, kNone)));
}

}  // namespace host::platform

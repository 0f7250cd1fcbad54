#include "Platform/Files.h"

#include <share.h>

#include <cerrno>
#include <cstring>

#include "Platform/windows/Windows.h"

namespace host::platform {

FileFacts factsOf(const std::filesystem::path& file) {
  constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  // Folders are opened too.
  const HANDLE open =
      ::CreateFileW(systemPath(file).c_str(), 0, kShared, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (open == INVALID_HANDLE_VALUE) return {};
  BY_HANDLE_FILE_INFORMATION info{};
  const bool isKnown = ::GetFileInformationByHandle(open, &info) != 0;
  ::CloseHandle(open);
  if (!isKnown) return {};
  const auto joined = [](DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; };
  constexpr std::uint64_t kTicks = 10'000'000;  // of 100 ns in a second
  const std::uint64_t changed = joined(info.ftLastWriteTime.dwHighDateTime, info.ftLastWriteTime.dwLowDateTime);
  return {true,
          info.dwVolumeSerialNumber,
          joined(info.nFileIndexHigh, info.nFileIndexLow),
          static_cast<std::int64_t>(joined(info.nFileSizeHigh, info.nFileSizeLow)),
          static_cast<std::int64_t>(changed / kTicks),
          static_cast<std::int64_t>(changed % kTicks * 100)};
}

std::vector<std::filesystem::path> namesIn(const std::filesystem::path& folder, std::error_code& error) {
  std::vector<std::filesystem::path> names;
  error.clear();
  WIN32_FIND_DATAW found{};
  const HANDLE search = ::FindFirstFileW(systemPath(folder / "*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) {
    error.assign(static_cast<int>(::GetLastError()), std::system_category());
    return names;
  }
  do {
    const std::wstring_view name = found.cFileName;
    if (name != L"." && name != L"..") names.emplace_back(name);
  } while (::FindNextFileW(search, &found) != 0);
  ::FindClose(search);
  return names;
}

std::filesystem::path pathOfSystemText(const std::string& text) {
  const int length = static_cast<int>(text.size());
  std::wstring wide(static_cast<std::size_t>(::MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0)), 0);
  ::MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::FILE* openShared(const std::filesystem::path& file, std::string mode) {
  // Bytes are bytes; not for the programs that this one starts.
  if (mode.find('b') == std::string::npos) mode += 'b';
  return ::_wfsopen(systemPath(file).c_str(), toWide(mode + "N").c_str(), _SH_DENYNO);
}

int access(const std::filesystem::path& file, int mode) { return ::_waccess(systemPath(file).c_str(), mode & 6); }

std::string openingFault() {
  const unsigned long error = ::GetLastError();
  if (error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION) return reasonOf(error);
  return std::strerror(errno);
}

// Files in a user's own folder are the user's alone there.
PrivateFiles::PrivateFiles() = default;
PrivateFiles::~PrivateFiles() = default;

}  // namespace host::platform

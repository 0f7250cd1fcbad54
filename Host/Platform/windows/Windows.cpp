#include "Platform/windows/Windows.h"

#include <array>

namespace host::platform {

std::wstring systemPath(const std::filesystem::path& path) {
  std::filesystem::path native = path;
  native.make_preferred();
  std::wstring text = native.wstring();
  constexpr std::size_t kSafe = 240;  // folders have to leave room for a file's name
  if (text.size() < kSafe && path.is_absolute()) return text;
  if (text.starts_with(L"\\\\?\\")) return text;
  // The standard library does not take the name of a server for a root.
  if (text.starts_with(L"\\\\")) return text.size() < kSafe ? text : L"\\\\?\\UNC" + text.substr(1);
  std::error_code error;
  std::filesystem::path full = std::filesystem::absolute(native, error);
  if (error || full.wstring().size() < kSafe) return text;
  full = full.lexically_normal();  // the long form takes no "." and ".."
  full.make_preferred();
  text = full.wstring();
  return L"\\\\?\\" + text;
}

std::string reasonOf(unsigned long error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      return "No such file or directory";
    case ERROR_ACCESS_DENIED:
      return "Permission denied";
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_USER_MAPPED_FILE:
      return "another program has it open";
    case ERROR_WRITE_PROTECT:
      return "the disk is write-protected";
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return "No space left on device";
    case ERROR_BROKEN_PIPE:
    case ERROR_NO_DATA:
      return "Broken pipe";
    default:
      break;
  }
  std::array<wchar_t, 512> buffer{};
  const DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
                                        buffer.data(), static_cast<DWORD>(buffer.size()), nullptr);
  std::wstring text(buffer.data(), length);
  while (!text.empty() && (text.back() <= L' ' || text.back() == L'.')) text.pop_back();
  return text.empty() ? "error " + std::to_string(error) : toUtf8(text);
}

std::string toUtf8(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  std::string out(
      static_cast<std::size_t>(::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr)),
      0);
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, out.data(), static_cast<int>(out.size()), nullptr, nullptr);
  return out;
}

std::wstring toWide(std::string_view text) {
  const int length = static_cast<int>(text.size());
  std::wstring out(static_cast<std::size_t>(::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0)), 0);
  ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, out.data(), static_cast<int>(out.size()));
  return out;
}

}  // namespace host::platform

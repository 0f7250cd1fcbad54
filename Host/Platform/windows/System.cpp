#include "Platform/System.h"

#include "Platform/Paths.h"
#include "Platform/windows/Windows.h"

namespace host::platform {

std::optional<std::string> environment(const std::string& name) {
  const std::wstring wide = toWide(name);
  std::wstring value(256, 0);
  for (;;) {
    ::SetLastError(ERROR_SUCCESS);
    const DWORD length = ::GetEnvironmentVariableW(wide.c_str(), value.data(), static_cast<DWORD>(value.size()));
    if (length == 0 && ::GetLastError() != ERROR_SUCCESS) return std::nullopt;
    if (length < value.size()) return toUtf8(std::wstring_view(value).substr(0, length));
    value.resize(length);
  }
}

std::uint32_t processId() { return ::GetCurrentProcessId(); }

std::string processStart(std::int64_t process) {
  const HANDLE open = ::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(process));
  if (open == nullptr) return {};
  FILETIME start{}, end{}, kernel{}, user{};
  DWORD status = 0;
  const bool runs = ::GetExitCodeProcess(open, &status) != 0 && status == STILL_ACTIVE &&
                    ::GetProcessTimes(open, &start, &end, &kernel, &user) != 0;
  ::CloseHandle(open);
  if (!runs) return {};
  return std::to_string(std::uint64_t{start.dwHighDateTime} << 32 | start.dwLowDateTime);
}

LocalTime localTime() {
  SYSTEMTIME now{};
  ::GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDayOfWeek, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds};
}

std::optional<SystemVersion> systemVersion() {
  // The documented call answers the version that the program's manifest names; the library beneath answers the true
  // one.
  using Ask = LONG(WINAPI*)(OSVERSIONINFOW*);
  const HMODULE library = ::GetModuleHandleW(L"ntdll.dll");
  const auto ask = library != nullptr
                       ? reinterpret_cast<Ask>(reinterpret_cast<void*>(::GetProcAddress(library, "RtlGetVersion")))
                       : nullptr;
  OSVERSIONINFOW info{};
  info.dwOSVersionInfoSize = sizeof(info);
  if (ask == nullptr || ask(&info) != 0) return std::nullopt;
  return SystemVersion{true, {info.dwMajorVersion, info.dwMinorVersion, info.dwBuildNumber}, "Windows"};
}

std::filesystem::path stateFolder() {
  const auto local = environment("LOCALAPPDATA");
  return local && !local->empty() ? pathOf(*local) / "Tolmex" : std::filesystem::path();
}

bool hasDisplay() { return true; }

std::vector<std::filesystem::path> fontFolders() {
  std::vector<std::filesystem::path> folders;
  if (const auto local = environment("LOCALAPPDATA")) folders.push_back(pathOf(*local) / "Microsoft/Windows/Fonts");
  if (const auto windows = environment("WINDIR")) folders.push_back(pathOf(*windows) / "Fonts");
  return folders;
}

std::string fontConfiguration() {
  for (const char* const name : {"FONTCONFIG_FILE", "FONTCONFIG_PATH"}) {
    if (const auto value = environment(name); value && !value->empty()) return {};
  }
  // Fontconfig knows these names; the user's folder only behind the system's, with which it loads what it asks.
  return "<fontconfig><dir>CUSTOMFONTDIR</dir><dir>WINDOWSFONTDIR</dir><dir>WINDOWSUSERFONTDIR</dir>"
         "<cachedir>LOCAL_APPDATA_FONTCONFIG_CACHE</cachedir>"
         "<cachedir>WINDOWSTEMPDIR_FONTCONFIG_CACHE</cachedir></fontconfig>";
}

std::vector<std::filesystem::path> strokeFontFolders() {
  std::vector<std::filesystem::path> folders;
  for (const char* const name : {"ProgramFiles", "ProgramFiles(x86)"})
    if (const auto programs = environment(name)) folders.push_back(pathOf(*programs) / "LibreCAD/resources/fonts");
  return folders;
}

bool Console::open() {
  // A program of windows has none of its own.
  if (::GetConsoleWindow() == nullptr && ::AllocConsole() == 0) return false;
  const HANDLE made = ::CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, OPEN_EXISTING, 0, nullptr);
  handle_ = made != INVALID_HANDLE_VALUE ? reinterpret_cast<std::intptr_t>(made) : -1;
  return isOpen();
}

void Console::close() {
  if (isOpen()) ::CloseHandle(reinterpret_cast<HANDLE>(handle_));
  handle_ = -1;
}

void Console::setTitle(std::wstring_view title) const { ::SetConsoleTitleW(std::wstring(title).c_str()); }

bool Console::write(std::string_view utf8) const {
  const std::wstring text = toWide(utf8);
  DWORD written = 0;
  return text.empty() || ::WriteConsoleW(reinterpret_cast<HANDLE>(handle_), text.data(),
                                         static_cast<DWORD>(text.size()), &written, nullptr) != 0;
}

}  // namespace host::platform

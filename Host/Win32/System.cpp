// The system around the process, under its Windows names.
#include "Platform/System.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Library.h"
#include "Platform/Memory.h"
#include "Text/Text.h"
#include "windows.h"

namespace {

DWORD copyCut(std::wstring_view text, LPWSTR out, DWORD size) {
  const std::size_t count = std::min(text.size(), static_cast<std::size_t>(size) - 1);
  std::copy_n(text.data(), count, out);
  out[count] = 0;
  return static_cast<DWORD>(count);
}

struct ErrorText {
  DWORD code;
  const wchar_t* text;
};
// The errors that calls here set.
constexpr ErrorText kErrorTexts[] = {
    {ERROR_SUCCESS, L"The operation completed successfully."},
    {ERROR_ACCESS_DENIED, L"Access is denied."},
    {ERROR_INVALID_HANDLE, L"The handle is invalid."},
    {ERROR_NOT_ENOUGH_MEMORY, L"Not enough memory resources are available to process this command."},
    {ERROR_INVALID_DATA, L"The data is invalid."},
    {ERROR_GEN_FAILURE, L"A device attached to the system is not functioning."},
    {ERROR_INVALID_PARAMETER, L"The parameter is incorrect."},
    {ERROR_INSUFFICIENT_BUFFER, L"The data area passed to a system call is too small."},
    {ERROR_MOD_NOT_FOUND, L"The specified module could not be found."},
    {ERROR_ENVVAR_NOT_FOUND, L"The system could not find the environment option that was entered."},
    {ERROR_INVALID_WINDOW_HANDLE, L"Invalid window handle."},
    {ERROR_INVALID_MSGBOX_STYLE, L"Invalid message box style."},
    {ERROR_RESOURCE_TYPE_NOT_FOUND, L"The specified resource type cannot be found in the image file."},
    {ERROR_RESOURCE_NAME_NOT_FOUND, L"The specified resource name cannot be found in the image file."},
};

DWORD refused(DWORD error) {
  SetLastError(error);
  return 0;
}

}  // namespace

// ---- the process ----------------------------------------------------------------------------------------------------

DWORD GetModuleFileNameW(HMODULE module, LPWSTR path, DWORD size) {
  if (path == nullptr || size == 0) return refused(ERROR_INVALID_PARAMETER);
  std::filesystem::path file;
  if (module == nullptr) {
    file = host::platform::programFile();
  } else if (host::platform::baseOf(module) == module) {
    file = host::platform::fileOf(module);
  }
  if (file.empty()) return refused(ERROR_MOD_NOT_FOUND);
  const std::wstring wide = host::text::fromUtf8(file.string());
  const DWORD copied = copyCut(wide, path, size);
  if (copied == wide.size()) return copied;
  SetLastError(ERROR_INSUFFICIENT_BUFFER);
  return size;
}

DWORD GetCurrentProcessId() { return host::platform::processId(); }

DWORD GetEnvironmentVariableW(LPCWSTR name, LPWSTR value, DWORD size) {
  std::optional<std::string> found;
  if (name != nullptr) found = host::platform::environment(host::text::toUtf8(name));
  if (!found) return refused(ERROR_ENVVAR_NOT_FOUND);
  const std::wstring text = host::text::fromUtf8(*found);
  if (value == nullptr || text.size() >= size) return static_cast<DWORD>(text.size()) + 1;
  SetLastError(ERROR_SUCCESS);  // an empty one answers 0 as well
  return copyCut(text, value, size);
}

void GetLocalTime(SYSTEMTIME* time) {
  if (time == nullptr) return;
  const host::platform::LocalTime now = host::platform::localTime();
  *time = {static_cast<WORD>(now.year),   static_cast<WORD>(now.month),      static_cast<WORD>(now.weekday),
           static_cast<WORD>(now.day),    static_cast<WORD>(now.hour),       static_cast<WORD>(now.minute),
           static_cast<WORD>(now.second), static_cast<WORD>(now.millisecond)};
}

BOOL GetVersionExW(OSVERSIONINFOW* version) {
  const std::optional<host::platform::SystemVersion> system = host::platform::systemVersion();
  if (version == nullptr || version->dwOSVersionInfoSize != sizeof(*version) || !system) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  version->dwMajorVersion = system->numbers[0];
  version->dwMinorVersion = system->numbers[1];
  version->dwBuildNumber = system->numbers[2];
  version->dwPlatformId = system->isWindows ? VER_PLATFORM_WIN32_NT : VER_PLATFORM_HOST;
  copyCut(system->isWindows ? std::wstring() : host::text::fromUtf8(system->name), version->szCSDVersion,
          static_cast<DWORD>(std::size(version->szCSDVersion)));
  return TRUE;
}

// ---- memory ---------------------------------------------------------------------------------------------------------

BOOL GlobalMemoryStatusEx(MEMORYSTATUSEX* status) {
  if (status == nullptr || status->dwLength != sizeof(*status)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const host::platform::MemoryFacts facts = host::platform::memoryFacts();
  const std::uint64_t total = facts.total, available = facts.available;
  status->dwMemoryLoad = total > 0 ? static_cast<DWORD>((total - std::min(available, total)) * 100 / total) : 0;
  status->ullTotalPhys = total;
  status->ullAvailPhys = available;
  status->ullTotalPageFile = total + facts.swap;
  status->ullAvailPageFile = available + facts.freeSwap;
  status->ullTotalVirtual = facts.space;
  status->ullAvailVirtual = facts.space - std::min(facts.usedSpace, facts.space);
  status->ullAvailExtendedVirtual = 0;
  return TRUE;
}

// ---- error texts ----------------------------------------------------------------------------------------------------

DWORD FormatMessageW(DWORD flags, const void*, DWORD message, DWORD, LPWSTR buffer, DWORD size, void*) {
  if (flags != (FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS) || buffer == nullptr)
    return refused(ERROR_INVALID_PARAMETER);
  constexpr std::wstring_view kLineEnd = L"\r\n";
  for (const ErrorText& each : kErrorTexts) {
    if (each.code != message) continue;
    const std::wstring_view text = each.text;
    if (text.size() + kLineEnd.size() >= size) return refused(ERROR_INSUFFICIENT_BUFFER);
    std::copy(kLineEnd.begin(), kLineEnd.end(), std::copy(text.begin(), text.end(), buffer));
    buffer[text.size() + kLineEnd.size()] = 0;
    return static_cast<DWORD>(text.size() + kLineEnd.size());
  }
  return refused(ERROR_RESOURCE_NAME_NOT_FOUND);
}

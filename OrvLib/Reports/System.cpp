#include "OrvLib/Reports/System.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace OrvLib {

std::wstring programFile() {
  ACHAR path[1024 + 1];
  const DWORD length = GetModuleFileNameW(nullptr, path, static_cast<DWORD>(std::size(path)));
  return {path, std::min<std::size_t>(length, std::size(path) - 1)};
}

std::wstring environmentVariable(const wchar_t* name) {
  std::wstring value(static_cast<std::size_t>(MAX_PATH), L'\0');
  for (;;) {
    const DWORD length = GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size()));
    const bool fits = length < value.size();
    value.resize(length);
    if (fits) return value;
  }
}

std::wstring systemVersion() {
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof(version);
  if (GetVersionExW(&version) == FALSE) return L"unknown";
  const bool isWindows = version.dwPlatformId == VER_PLATFORM_WIN32_NT;
  return formatText(L"%s %u.%u.%u", isWindows ? L"Windows" : version.szCSDVersion, version.dwMajorVersion,
                    version.dwMinorVersion, version.dwBuildNumber);
}

std::wstring timeText(TimeText precision) {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  std::wstring text = formatText(L"%02i.%02i.%04i %02i:%02i:%02i", now.wDay, now.wMonth, now.wYear, now.wHour,
                                 now.wMinute, now.wSecond);
  if (precision == TimeText::Milliseconds) text += formatText(L".%03i", now.wMilliseconds);
  return text;
}

std::wstring memorySummary(DWORD systemError) {
  constexpr int kWidth = 5;
  constexpr std::uint64_t kLargestShown = 99999;  // as many digits as the width has
  constexpr const wchar_t* kPrefixes[] = {L"", L"K", L"M", L"G", L"T", L"P", L"E"};

  MEMORYSTATUSEX status{};
  status.dwLength = sizeof(status);
  GlobalMemoryStatusEx(&status);
  std::wstring text = formatText(L"%ld percent of memory is in use.\n", static_cast<int>(status.dwMemoryLoad));
  struct Line {
    const wchar_t* format;
    std::uint64_t bytes;
  };
  for (const Line& line : {Line{L"%*d %sB total physical memory.\n", status.ullTotalPhys},
                           Line{L"%*d %sB of physical memory free.\n", status.ullAvailPhys},
                           Line{L"%*d %sB total paging file size.\n", status.ullTotalPageFile},
                           Line{L"%*d %sB of paging file free.\n", status.ullAvailPageFile},
                           Line{L"%*d %sB total virtual memory.\n", status.ullTotalVirtual},
                           Line{L"%*d %sB of virtual memory free.\n\n", status.ullAvailVirtual}}) {
    std::uint64_t amount = line.bytes;
    std::size_t prefix = 0;
    for (; amount > kLargestShown; ++prefix) amount /= 1024;
    text += formatText(line.format, kWidth, static_cast<int>(amount), kPrefixes[prefix]);
  }

  ACHAR error[512];
  DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, systemError, 0,
                                error, static_cast<DWORD>(std::size(error)), nullptr);
  while (length > 0 && (error[length - 1] == L'\r' || error[length - 1] == L'\n')) --length;
  const std::wstring errorText =
      length > 0 ? std::wstring(error, length) : formatText(L"error %u", static_cast<unsigned>(systemError));
  return text + formatText(L"WIN32 last error code was:\n   %s\n\n", errorText.c_str());
}

std::wstring formatText(const wchar_t* format, std::va_list arguments) {
  constexpr std::size_t kLongest = std::size_t{16} * 1024 * 1024;  // a format that never fits must end too
  std::wstring text(512, L'\0');
  for (;;) {
    std::va_list copy;
    va_copy(copy, arguments);
    const int length = _vsnwprintf(text.data(), text.size(), format, copy);
    va_end(copy);
    if (length >= 0 && static_cast<std::size_t>(length) < text.size()) {
      text.resize(static_cast<std::size_t>(length));
      return text;
    }
    if (text.size() >= kLongest) {
      text.pop_back();  // the terminator
      return text;
    }
    text.resize(text.size() * 4);
  }
}

std::wstring formatText(const wchar_t* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::wstring text;
  try {
    text = formatText(format, arguments);
  } catch (...) {
    va_end(arguments);
    throw;
  }
  va_end(arguments);
  return text;
}

}  // namespace OrvLib

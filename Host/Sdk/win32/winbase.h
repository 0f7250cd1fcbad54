// The system around a program: its file, environment and clock, versions, memory, error texts, debugger and console.
// Where this is not Windows the same names answer from what the system has instead; each says so.
#pragma once

#include "windows.h"

// ---- the process ----------------------------------------------------------------------------------------------------
inline constexpr DWORD MAX_PATH = 260;
inline constexpr DWORD DLL_PROCESS_DETACH = 0;
inline constexpr DWORD DLL_PROCESS_ATTACH = 1;
inline constexpr DWORD VER_PLATFORM_WIN32_NT = 2;
/// Not Windows: the name of the system stands in szCSDVersion.
inline constexpr DWORD VER_PLATFORM_HOST = 0x100;

struct SYSTEMTIME {
  WORD wYear;
  WORD wMonth;  // from 1
  WORD wDayOfWeek;
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
};

struct OSVERSIONINFOW {
  DWORD dwOSVersionInfoSize;  // set before the call
  DWORD dwMajorVersion;
  DWORD dwMinorVersion;
  DWORD dwBuildNumber;
  DWORD dwPlatformId;
  wchar_t szCSDVersion[128];
};

/// Path of a module, of the program for null. Characters copied; `size` and a cut text when it does not fit; 0 on
/// failure.
ADESK_EXPORT DWORD GetModuleFileNameW(HMODULE module, LPWSTR path, DWORD size);
ADESK_EXPORT DWORD GetCurrentProcessId();
/// Characters copied; the size needed, terminator included, when it does not fit; 0 for a variable that is not set.
ADESK_EXPORT DWORD GetEnvironmentVariableW(LPCWSTR name, LPWSTR value, DWORD size);
ADESK_EXPORT void GetLocalTime(SYSTEMTIME* time);
ADESK_EXPORT BOOL GetVersionExW(OSVERSIONINFOW* version);

// ---- memory ---------------------------------------------------------------------------------------------------------
struct MEMORYSTATUSEX {
  DWORD dwLength;              // set before the call
  DWORD dwMemoryLoad;          // percent of the physical memory in use
  std::uint64_t ullTotalPhys;  // bytes, as the rest
  std::uint64_t ullAvailPhys;
  std::uint64_t ullTotalPageFile;  // physical memory and swap together
  std::uint64_t ullAvailPageFile;
  std::uint64_t ullTotalVirtual;  // address space of the process
  std::uint64_t ullAvailVirtual;
  std::uint64_t ullAvailExtendedVirtual;  // always 0
};

/// From the kernel's own figures.
ADESK_EXPORT BOOL GlobalMemoryStatusEx(MEMORYSTATUSEX* status);

// ---- error texts ----------------------------------------------------------------------------------------------------
inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_INVALID_HANDLE = 6;
inline constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr DWORD ERROR_GEN_FAILURE = 31;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr DWORD ERROR_ENVVAR_NOT_FOUND = 203;
inline constexpr DWORD FORMAT_MESSAGE_IGNORE_INSERTS = 0x200;
inline constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;

/// Text of a system error, with a line end; characters copied, 0 when there is none or it does not fit. Both flags must
/// be given, and no others.
ADESK_EXPORT DWORD FormatMessageW(DWORD flags, const void* source, DWORD message, DWORD language, LPWSTR buffer,
                                  DWORD size, void* arguments);

// ---- debugger and console -------------------------------------------------------------------------------------------
inline constexpr DWORD STD_OUTPUT_HANDLE = static_cast<DWORD>(-11);

/// There is no debugger that listens: lines go to standard error, each after "debugger: ".
ADESK_EXPORT void OutputDebugStringW(LPCWSTR text);
/// The console is the controlling terminal. False when the process has taken it already, or when there is none.
ADESK_EXPORT BOOL AllocConsole();
ADESK_EXPORT BOOL FreeConsole();
/// True when there is a console. The terminal belongs to the user and keeps its title.
ADESK_EXPORT BOOL SetConsoleTitleW(LPCWSTR title);
/// For STD_OUTPUT_HANDLE: the console that was allocated; null without one.
ADESK_EXPORT HANDLE GetStdHandle(DWORD which);
/// A terminal that takes nothing for a second is given up.
ADESK_EXPORT BOOL WriteConsoleW(HANDLE console, const void* text, DWORD count, DWORD* written, LPVOID reserved);

// Searching folders.
#pragma once

#include "windows.h"

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))  // NOLINT(performance-no-int-to-ptr)
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
inline constexpr DWORD ERROR_NO_MORE_FILES = 18;

struct WIN32_FIND_DATAW {
  DWORD dwFileAttributes;
  DWORD nFileSizeHigh;
  DWORD nFileSizeLow;
  wchar_t cFileName[MAX_PATH];
};

/// The first entry of a folder that matches "folder\pattern"; the pattern knows * and ?, case is ignored. Entries come
/// sorted by name. INVALID_HANDLE_VALUE when nothing matches or the folder is not there.
ADESK_EXPORT HANDLE FindFirstFileW(LPCWSTR pattern, WIN32_FIND_DATAW* found);
ADESK_EXPORT BOOL FindNextFileW(HANDLE search, WIN32_FIND_DATAW* found);
ADESK_EXPORT BOOL FindClose(HANDLE search);

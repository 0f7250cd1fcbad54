// Searching folders, deleting and replacing files.
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

ADESK_EXPORT BOOL DeleteFileW(LPCWSTR file);
/// Puts `replacement` in the place of `replaced`, a file that is there and keeps its permissions; it is the old file or
/// the new one at any time. Here neither a backup nor flags are known: null and 0.
ADESK_EXPORT BOOL ReplaceFileW(LPCWSTR replaced, LPCWSTR replacement, LPCWSTR backup, DWORD flags, LPVOID exclude,
                               LPVOID reserved);

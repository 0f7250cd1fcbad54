// The system's question for a file.
#pragma once

#include "windows.h"

inline constexpr DWORD OFN_OVERWRITEPROMPT = 0x2;
inline constexpr DWORD OFN_HIDEREADONLY = 0x4;
inline constexpr DWORD OFN_PATHMUSTEXIST = 0x800;
inline constexpr DWORD OFN_FILEMUSTEXIST = 0x1000;

/// The fields that are used; the others of Windows' structure are not here.
struct OPENFILENAMEW {
  DWORD lStructSize;
  HWND hwndOwner;
  LPCWSTR lpstrFilter;  // pairs of a text and its patterns ("*.log;*.txt"), each with a terminator; an empty text ends
  LPWSTR lpstrFile;     // the name to begin with, then the chosen path
  DWORD nMaxFile;       // characters that lpstrFile holds
  LPCWSTR lpstrTitle;   // null: the system's own
  DWORD Flags;          // of OFN_OVERWRITEPROMPT, others change nothing
  LPCWSTR lpstrDefExt;  // added to a name without one, no matter whether it begins with a dot; null: nothing is added
};

/// Asks for a file to be written. A script answers with one line, the path; a relative one lies in the current folder.
/// False when the question was cancelled or the path does not fit.
ADESK_EXPORT BOOL GetSaveFileNameW(OPENFILENAMEW* question);

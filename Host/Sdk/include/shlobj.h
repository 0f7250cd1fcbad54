// Asking for a folder.
#pragma once

#include "windows.h"

/// Names a place of the file system; freed with CoTaskMemFree.
struct ITEMIDLIST;

struct BROWSEINFOW {
  HWND hwndOwner;
  const ITEMIDLIST* pidlRoot;
  LPWSTR pszDisplayName;
  LPCWSTR lpszTitle;
  UINT ulFlags;
  void* lpfn;
  LPARAM lParam;
  int iImage;
};
inline constexpr UINT BIF_RETURNONLYFSDIRS = 0x1;
inline constexpr UINT BIF_NEWDIALOGSTYLE = 0x40;

/// Only the owner and the title count here. Null when no folder is given.
ADESK_EXPORT ITEMIDLIST* SHBrowseForFolderW(BROWSEINFOW* question);
/// False when the path does not fit into `size` characters.
ADESK_EXPORT BOOL SHGetPathFromIDListEx(const ITEMIDLIST* list, LPWSTR path, DWORD size, int options);
ADESK_EXPORT void CoTaskMemFree(void* memory);

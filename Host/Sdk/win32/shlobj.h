// Asking for a folder.
#pragma once

#include "windows.h"

// Microsoft's x64 headers qualify pointers to these lists; a pointer type that drops the qualifier does not compile
// there. Another qualifier stands for it, which is as strict.
#ifndef __unaligned
#define __unaligned volatile  // NOLINT(bugprone-reserved-identifier)
#endif

/// Names a place of the file system; freed with CoTaskMemFree.
struct ITEMIDLIST;
using LPITEMIDLIST = ITEMIDLIST __unaligned*;
using LPCITEMIDLIST = const ITEMIDLIST __unaligned*;

struct BROWSEINFOW {
  HWND hwndOwner;
  LPCITEMIDLIST pidlRoot;
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
ADESK_EXPORT LPITEMIDLIST SHBrowseForFolderW(BROWSEINFOW* question);
/// False when the path does not fit into `size` characters.
ADESK_EXPORT BOOL SHGetPathFromIDListEx(LPCITEMIDLIST list, LPWSTR path, DWORD size, int options);
ADESK_EXPORT void CoTaskMemFree(volatile void* memory);

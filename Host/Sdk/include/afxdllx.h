// What an MFC extension library does when it is loaded and unloaded. The embedded host loads modules without it: only
// the names are declared.
#pragma once

#include "afxwin.h"

struct AFX_EXTENSION_MODULE {
  BOOL bInitialized;
  HMODULE hModule;
};

/// Adds a library to those in which MFC looks for resources; MFC owns it.
class CDynLinkLibrary {
 public:
  explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& library, BOOL system = FALSE);
};

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& library, HMODULE module);
void AfxTermExtensionModule(AFX_EXTENSION_MODULE& library, BOOL all = FALSE);

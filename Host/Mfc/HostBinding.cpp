// Where windows as objects meet the embedded host: its frame, its name, the resources it has been given.
#include <string>

#include "Editor/DialogInput.h"
#include "rxmfcapi.h"

CWnd* acedGetAcadFrame() {
  static CWnd& frame = *new CWnd;
  return &frame;
}

// Dialogs of plug-ins come from their own resources; the host has none.
HINSTANCE acedGetAcadResourceInstance() { return nullptr; }

LPCWSTR AfxGetAppName() {
  static std::wstring name;
  name = host::editor::programName();
  return name.c_str();
}

int AfxMessageBox(LPCWSTR text, UINT type, UINT) {
  if ((type & MB_ICONMASK) == 0) type |= MB_ICONEXCLAMATION;
  return MessageBoxW(nullptr, text, AfxGetAppName(), type);
}

HINSTANCE AfxGetResourceHandle() { return host::editor::topResource(); }

void AfxSetResourceHandle(HINSTANCE module) { host::editor::setTopResource(module); }

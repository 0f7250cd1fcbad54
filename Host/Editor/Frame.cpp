// The host's main frame as a window object.
#include <map>
#include <memory>

#include "rxmfcapi.h"

CWnd::~CWnd() = default;

CWnd* CWnd::FromHandle(HWND window) {
  static auto& objects = *new std::map<HWND, std::unique_ptr<CWnd>>;
  if (window == nullptr) return nullptr;
  std::unique_ptr<CWnd>& object = objects[window];
  if (object == nullptr) {
    object = std::make_unique<CWnd>();
    object->m_hWnd = window;
  }
  return object.get();
}

CWnd* acedGetAcadFrame() {
  static CWnd& frame = *new CWnd;
  return &frame;
}

// Dialogs of plug-ins come from their own resources; the host has none.
HINSTANCE acedGetAcadResourceInstance() { return nullptr; }

#include "OrvLib/ARX/ParentWindow.h"

namespace OrvLib {
namespace {

HWND keptWindow = nullptr;

HWND mainFrameHandle() {
  static const HWND handle = [] {
    const CWnd* const frame = acedGetAcadFrame();
    return frame != nullptr ? frame->GetSafeHwnd() : nullptr;
  }();
  return handle;
}

}  // namespace

void keepParentWindow() { keptWindow = mainFrameHandle(); }

// The object of a handle may be a passing one that idle time destroys, so each use asks anew.
CWnd* parentWindow() { return CWnd::FromHandle(keptWindow); }

}  // namespace OrvLib

#include "OrvLib/ARX/ParentWindow.h"

namespace OrvLib {
namespace {

CWnd* keptWindow = nullptr;

HWND mainFrameHandle() {
  static const HWND handle = [] {
    const CWnd* const frame = acedGetAcadFrame();
    return frame != nullptr ? frame->GetSafeHwnd() : nullptr;
  }();
  return handle;
}

}  // namespace

void keepParentWindow() { keptWindow = CWnd::FromHandle(mainFrameHandle()); }

CWnd* parentWindow() { return keptWindow; }

}  // namespace OrvLib

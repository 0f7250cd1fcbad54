// The part of MFC that the host interface needs so far: windows as objects.
#pragma once

#include "adesk.h"

using HWND = void*;
using HINSTANCE = void*;

/// A window. Objects from FromHandle live as long as the process.
class ADESK_EXPORT CWnd {
 public:
  CWnd() = default;
  virtual ~CWnd();
  CWnd(const CWnd&) = delete;
  CWnd& operator=(const CWnd&) = delete;

  /// The object of a window handle; the same one each time.
  static CWnd* FromHandle(HWND window);
  HWND GetSafeHwnd() const { return m_hWnd; }

  HWND m_hWnd = nullptr;
};

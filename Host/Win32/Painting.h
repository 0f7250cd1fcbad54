// What the handles of painting point to.
#pragma once

#include "Win32/Widget.h"

struct HostDeviceContext {
  host::win32::Canvas* canvas = nullptr;
  COLORREF textColor = 0;
};

struct HostBrush {
  COLORREF color = 0;
};

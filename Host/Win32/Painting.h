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

namespace host::win32 {

/// Shows a picture in a window until it is invalidated; rows of 0xAARRGGBB from the top.
void showPicture(HWND window, int width, int height, const std::uint32_t* pixels);

}  // namespace host::win32

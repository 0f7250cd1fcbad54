// The host's windows as MFC objects.
#pragma once

#include "afxwin.h"

/// The host's main frame; a permanent object. Its window handle is null when the host runs without a window.
ADESK_EXPORT CWnd* acedGetAcadFrame();
/// Shows a small picture of the drawing file in a child window: of what it draws, or the one kept in the file when it
/// cannot be drawn. `window` is a CWnd*, `background` 0x00BBGGRR, white without one. To be called while the parent
/// paints; the picture stays until the window is invalidated. False when there is nothing to show.
ADESK_EXPORT bool acdbDisplayPreviewFromDwg(const ACHAR* dwgFile, void* window, Adesk::UInt32* background = nullptr);
/// Resources of the host itself.
ADESK_EXPORT HINSTANCE acedGetAcadResourceInstance();

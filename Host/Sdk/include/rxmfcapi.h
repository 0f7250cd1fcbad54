// The host's windows as MFC objects.
#pragma once

#include "afxwin.h"

/// The host's main frame; a permanent object. Its window handle is null when the host runs without a window.
ADESK_EXPORT CWnd* acedGetAcadFrame();
/// Resources of the host itself.
ADESK_EXPORT HINSTANCE acedGetAcadResourceInstance();

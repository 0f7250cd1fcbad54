// The window above which dialogs and messages stand.
#pragma once

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// Takes the host's main frame as the parent window; called once when the module is loaded.
void keepParentWindow();

/// The kept window, null before keepParentWindow. Its handle is null when the host runs without a window.
CWnd* parentWindow();

}  // namespace OrvLib

// What the host and a plug-in say to each other at the module's door.
#pragma once

#include "adesk.h"

namespace AcRx {

enum AppMsgCode {
  kNullMsg = 0,
  kInitAppMsg = 1,
  kUnloadAppMsg = 2,
  kLoadDwgMsg = 3,
  kUnloadDwgMsg = 4,
  kInvkSubrMsg = 5,
  kCfgMsg = 6,
  kEndMsg = 7,
  kQuitMsg = 8,
  kSaveMsg = 9,
  kDependencyMsg = 10,
  kNoDependencyMsg = 11,
  kOleUnloadAppMsg = 12,
  kPreQuitMsg = 13,
  kInitDialogMsg = 14,
  kEndDialogMsg = 15
};

enum AppRetCode { kRetOK = 0, kRetError = 3 };

}  // namespace AcRx

/// Interface version a module answers from acrxGetApiVersion; the embedded host refuses any other.
inline constexpr int ACRX_API_VERSION = 20;

// The module's own resources.
#pragma once

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// The module that this code is part of.
HINSTANCE moduleInstance();

/// Lets the host look dialogs and strings up in this module as long as it lives.
class OwnResources {
 public:
  OwnResources() { acDocManager->pushResourceHandle(moduleInstance()); }
  OwnResources(const OwnResources&) = delete;
  OwnResources& operator=(const OwnResources&) = delete;
  ~OwnResources() { acDocManager->popResourceHandle(); }
};

}  // namespace OrvLib

// The service that loads and unloads modules.
#pragma once

#include "rxdict.h"

class ADESK_EXPORT AcRxDynamicLinker : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcRxDynamicLinker);

 public:
  /// Lets the user unload the application; applications start locked. False for an unknown handle.
  virtual bool unlockApplication(void* appId) const = 0;
  virtual bool lockApplication(void* appId) const = 0;
  /// Declares that the application works with several open drawings.
  virtual bool registerAppMDIAware(void* appId) const = 0;
  virtual bool registerAppNotMDIAware(void* appId) const = 0;
};

#define ACRX_DYNAMIC_LINKER ACRX_T("DynamicLinker")
#define acrxDynamicLinker AcRxDynamicLinker::cast(acrxSysRegistry()->at(ACRX_DYNAMIC_LINKER))

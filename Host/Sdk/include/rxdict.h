// Dictionary of services by name.
#pragma once

#include "rxobject.h"

class ADESK_EXPORT AcRxDictionary : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcRxDictionary);

 public:
  /// The service under the key, or null.
  virtual AcRxObject* at(const ACHAR* key) const = 0;
};

/// Services of the host: "DynamicLinker", "ACAD_REGISTERED_COMMANDS", "AcEditor".
ADESK_EXPORT AcRxDictionary* acrxSysRegistry();

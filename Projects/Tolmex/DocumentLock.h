// The right to change the current drawing.
#pragma once

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// Locks the current document for writing as long as it lives; a refusal is printed on the command line.
class DocumentLock {
 public:
  DocumentLock() {
    if (!*this) acutPrintf(L"\nUnable to lock document for modification.");
  }
  DocumentLock(const DocumentLock&) = delete;
  DocumentLock& operator=(const DocumentLock&) = delete;

  explicit operator bool() const { return lock_.lockStatus() == Acad::eOk; }

 private:
  AcAxDocLock lock_;
};

}  // namespace OrvLib

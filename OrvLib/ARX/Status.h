// Answers of host calls.
#pragma once

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/Reports/Failures.h"

namespace OrvLib {

/// Whether a host call succeeded. Any other status is printed on the command line (printFailed) with its name and
/// `what` the call was about: a layer, a handle.
inline bool succeeded(Acad::ErrorStatus status, const ACHAR* what = nullptr,
                      SourcePlace place = SourcePlace::current()) {
  if (status != Acad::eOk) printFailed(acadErrorStatusText(status), what, place);
  return status == Acad::eOk;
}

}  // namespace OrvLib

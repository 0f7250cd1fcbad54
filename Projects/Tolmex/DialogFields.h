// Fields of dialogs that hold numbers.
#pragma once

#include <string>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/DataStruct/Text.h"

namespace OrvLib {

inline std::wstring fieldText(const CWnd& field) {
  CString text;
  field.GetWindowText(text);
  return text.GetString();
}

/// Whether the field holds a number; blanks are none.
inline bool hasNumber(CAcUiEdit& field) { return field.Validate() != FALSE && !words(fieldText(field)).empty(); }

inline double fieldNumber(const CWnd& field) { return leadingNumber(fieldText(field)); }

}  // namespace OrvLib

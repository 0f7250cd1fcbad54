// Fields of dialogs that hold numbers.
#pragma once

#include <string>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/DataStruct/Text.h"
#include "Tolmex/MessageBoxes.h"

namespace OrvLib {

inline std::wstring fieldText(const CWnd& field) {
  CString text;
  field.GetWindowText(text);
  return text.GetString();
}

/// Whether the field holds a number; blanks are none.
inline bool hasNumber(CAcUiEdit& field) { return field.Validate() != FALSE && !words(fieldText(field)).empty(); }

/// Tells the user what the field needs and leaves the cursor in it.
inline void refuseField(CWnd& field, const wchar_t* what) {
  showMessage(what);
  field.SetFocus();
}

inline double fieldNumber(const CWnd& field) { return leadingNumber(fieldText(field)); }

}  // namespace OrvLib

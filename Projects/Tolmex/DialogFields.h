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

/// Whether the field holds a number; blanks are none. Asks the class of the field itself, for its base may not be able
/// to.
template <class NumberEdit>
bool hasNumber(NumberEdit& field) {
  return field.Validate() != FALSE && !words(fieldText(field)).empty();
}

/// Tells the user what the field needs and leaves the cursor in it.
inline void refuseField(CWnd& field, const wchar_t* what) {
  showMessage(what);
  field.SetFocus();
}

/// Selects a colour, which becomes one of the list if it is none. The host does not promise that adding answers the
/// item.
inline void selectColor(CAcUiColorComboBox& box, int colorIndex) {
  box.AddColorToMRU(colorIndex);
  box.SetCurSel(box.FindItemByColorIndex(colorIndex));
}

inline double fieldNumber(const CWnd& field) { return leadingNumber(fieldText(field)); }

}  // namespace OrvLib

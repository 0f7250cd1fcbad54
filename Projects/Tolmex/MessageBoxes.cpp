#include "Tolmex/MessageBoxes.h"

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/ARX/ParentWindow.h"

namespace OrvLib {

void showMessage(const std::wstring& text) { AfxMessageBox(text.c_str()); }

bool askYesNo(const std::wstring& text) {
  const CWnd* const parent = parentWindow();
  return MessageBoxW(parent != nullptr ? parent->GetSafeHwnd() : nullptr, text.c_str(), L"Tolmex", MB_YESNO) == IDYES;
}

}  // namespace OrvLib

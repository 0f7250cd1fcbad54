// The system's own dialogs as MFC objects.
#pragma once

#include <string>

#include "afxwin.h"
#include "commdlg.h"

/// Asks for the name of a file to be written; `openFileDialog` must be FALSE. The filter is "text|pattern|...||".
class ADESK_EXPORT CFileDialog : public CDialog {
 public:
  explicit CFileDialog(BOOL openFileDialog, LPCWSTR defaultExtension = nullptr, LPCWSTR fileName = nullptr,
                       DWORD flags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT, LPCWSTR filter = nullptr,
                       CWnd* parent = nullptr);
  /// IDOK or IDCANCEL.
  INT_PTR DoModal() override;
  CString GetPathName() const { return path_; }

 private:
  BOOL isOpen_;
  CString extension_;
  CString path_;
  std::wstring filter_;
  DWORD flags_;
  CWnd* owner_;
};

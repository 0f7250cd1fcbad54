// Dialogs in the style of the host.
#pragma once

#include "afxwin.h"

/// Asks a window whether it keeps the keyboard focus; TRUE keeps it.
inline constexpr UINT WM_ACAD_KEEPFOCUS = 0x7101;

class ADESK_EXPORT CAdUiBaseDialog : public CDialog {
 public:
  explicit CAdUiBaseDialog(UINT templateId, CWnd* parent = nullptr, HINSTANCE resources = nullptr)
      : CDialog(templateId, parent), resources_(resources) {}

  /// With resources of its own the dialog is looked up there.
  INT_PTR DoModal() override;

 private:
  HINSTANCE resources_;
};

class ADESK_EXPORT CAdUiDialog : public CAdUiBaseDialog {
 public:
  using CAdUiBaseDialog::CAdUiBaseDialog;
};

class ADESK_EXPORT CAdUiEdit : public CEdit {
 public:
  /// Whether the text is what the control takes; blank text is.
  virtual BOOL Validate() { return TRUE; }
};

class ADESK_EXPORT CAdUiComboBox : public CComboBox {};

// Modal dialogs from templates.
#include "afxwin.h"

namespace {

/// The dialog whose window is about to be made; its window is the first one that comes.
CDialog* comingDialog = nullptr;

}  // namespace

BEGIN_MESSAGE_MAP(CDialog, CWnd)
ON_COMMAND(IDOK, &CDialog::OnOK)
ON_COMMAND(IDCANCEL, &CDialog::OnCancel)
END_MESSAGE_MAP()

BOOL CDialog::InitModalIndirect(LPCDLGTEMPLATE dialogTemplate, CWnd* parent) {
  template_ = dialogTemplate;
  parent_ = parent;
  return dialogTemplate != nullptr ? TRUE : FALSE;
}

LRESULT CALLBACK CDialog::createHook(int code, WPARAM wParam, LPARAM) {
  if (code != HCBT_CREATEWND || comingDialog == nullptr) return 0;
  CDialog* const dialog = comingDialog;
  comingDialog = nullptr;
  dialog->attach(reinterpret_cast<HWND>(wParam));
  return 0;
}

INT_PTR CALLBACK CDialog::dialogProcedure(HWND window, UINT message, WPARAM, LPARAM) {
  if (message != WM_INITDIALOG) return FALSE;
  auto* const dialog = dynamic_cast<CDialog*>(attached(window));
  return dialog != nullptr ? dialog->OnInitDialog() : TRUE;
}

INT_PTR CDialog::DoModal() {
  LPCDLGTEMPLATE dialogTemplate = template_;
  const HINSTANCE module = AfxGetResourceHandle();
  if (dialogTemplate == nullptr) {
    const HRSRC resource = FindResourceW(module, templateName_, RT_DIALOG);
    if (resource != nullptr) dialogTemplate = static_cast<LPCDLGTEMPLATE>(LockResource(LoadResource(module, resource)));
  }
  if (dialogTemplate == nullptr) return -1;
  comingDialog = this;
  const HHOOK hook = SetWindowsHookExW(WH_CBT, &CDialog::createHook, nullptr, 0);
  const INT_PTR result = DialogBoxIndirectParamW(
      module, dialogTemplate, parent_ != nullptr ? parent_->GetSafeHwnd() : nullptr, &CDialog::dialogProcedure, 0);
  UnhookWindowsHookEx(hook);
  comingDialog = nullptr;
  return result;
}

BOOL CDialog::CreateIndirect(LPCDLGTEMPLATE dialogTemplate, CWnd* parent) {
  comingDialog = this;
  const HHOOK hook = SetWindowsHookExW(WH_CBT, &CDialog::createHook, nullptr, 0);
  const HWND window =
      CreateDialogIndirectParamW(AfxGetResourceHandle(), dialogTemplate,
                                 parent != nullptr ? parent->GetSafeHwnd() : nullptr, &CDialog::dialogProcedure, 0);
  UnhookWindowsHookEx(hook);
  comingDialog = nullptr;
  return window != nullptr ? TRUE : FALSE;
}

BOOL CDialog::OnInitDialog() {
  if (UpdateData(FALSE) != FALSE) return TRUE;
  EndDialog(-1);
  return FALSE;
}

void CDialog::OnOK() {
  if (UpdateData(TRUE) != FALSE) EndDialog(IDOK);
}

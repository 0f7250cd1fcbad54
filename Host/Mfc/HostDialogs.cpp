// Dialogs and controls in the style of the host.
#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

#include "Win32/WindowObject.h"
#include "acui.h"

namespace {

/// The current resources, changed as long as it lives.
class ResourceOverride {
 public:
  explicit ResourceOverride(HINSTANCE module) : former_(AfxGetResourceHandle()) { AfxSetResourceHandle(module); }
  ResourceOverride(const ResourceOverride&) = delete;
  ResourceOverride& operator=(const ResourceOverride&) = delete;
  ~ResourceOverride() { AfxSetResourceHandle(former_); }

 private:
  HINSTANCE former_;
};

bool isDecimalNumber(std::wstring_view text) {
  std::string narrow;
  for (const wchar_t c : text) {
    if (std::wstring_view(L"0123456789.+-eE").find(c) == std::wstring_view::npos) return false;
    narrow += static_cast<char>(c);
  }
  const bool hasPlus = narrow.starts_with('+');
  if (hasPlus && narrow.starts_with("+-")) return false;
  const char* const begin = narrow.data() + (hasPlus ? 1 : 0);
  const char* const end = narrow.data() + narrow.size();
  double value = 0;
  const auto [read, error] = std::from_chars(begin, end, value);
  return error == std::errc() && read == end && std::isfinite(value);
}

bool isBlankOrNumber(const CEdit& edit) {
  CString text;
  edit.GetWindowText(text);
  text.Trim();
  return text.IsEmpty() || isDecimalNumber(text.GetString());
}

}  // namespace

INT_PTR CAdUiBaseDialog::DoModal() {
  if (resources_ == nullptr) return CDialog::DoModal();
  const ResourceOverride override(resources_);
  return CDialog::DoModal();
}

void CAcUiDialog::BeginEditorCommand() { ShowWindow(SW_HIDE); }

void CAcUiDialog::CompleteEditorCommand(BOOL restoreDialogs) {
  if (restoreDialogs != FALSE) ShowWindow(SW_SHOW);
}

void CAcUiDialog::CancelEditorCommand() { EndDialog(IDCANCEL); }

void CAcUiNumericEdit::PreSubclassWindow() { m_hWnd->widget->setNumeric(); }

void CAcUiAngleEdit::PreSubclassWindow() { m_hWnd->widget->setNumeric(); }

BOOL CAcUiNumericEdit::Validate() { return isBlankOrNumber(*this) ? TRUE : FALSE; }

BOOL CAcUiAngleEdit::Validate() { return isBlankOrNumber(*this) ? TRUE : FALSE; }

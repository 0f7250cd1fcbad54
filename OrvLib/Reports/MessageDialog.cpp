#include "OrvLib/Reports/MessageDialog.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "OrvLib/Reports/DialogTemplate.h"

namespace OrvLib {
namespace {

struct Button {
  MessageButtons button;
  const wchar_t* caption;
  int id;
};
constexpr std::array<Button, 4> kButtons{{{kYesButton, L"Yes", IDYES},
                                          {kCancelButton, L"Cancel", IDCANCEL},
                                          {kContinueButton, L"Continue", IDCONTINUE},
                                          {kExitButton, L"Exit", 1001}}};
constexpr int kTextId = 1002;
constexpr int kNeverAgainId = 1003;

// In characters and lines, then in dialog units of the font.
constexpr std::size_t kFewestColumns = 40;
constexpr std::size_t kMostColumns = 80;
constexpr std::size_t kMostLines = 30;
constexpr int kColumn = 4;
constexpr int kLine = 8;
constexpr int kMargin = 7;
constexpr int kFrame = 14;  // around the text, with its scroll bar
constexpr int kButtonWidth = 50;
constexpr int kButtonHeight = 14;

struct Extent {
  std::size_t columns;
  std::size_t lines;
};

Extent extentOf(std::wstring_view text) {
  Extent extent{kFewestColumns, 0};
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find(L'\n', at), text.size());
    extent.columns = std::clamp(end - at, extent.columns, kMostColumns);
    extent.lines += 1 + (end - at) / kMostColumns;
    at = end + 1;
  }
  return extent;
}

std::wstring withLineEnds(const std::wstring& text) {
  std::wstring all;
  for (const wchar_t each : text) all += each == L'\n' ? std::wstring(L"\r\n") : std::wstring(1, each);
  return all;
}

class MessageDialog : public CDialog {
 public:
  MessageDialog(const std::wstring& title, const std::wstring& text, const MessageDialogForm& form, CWnd* parent)
      : text_(withLineEnds(text)), template_(made(title, text, form, offered_)) {
    answer_.button = offered_.empty() ? kCancelButton : offered_.back().button;
    if ((form.buttons & kCancelButton) != 0) answer_.button = kCancelButton;
    InitModalIndirect(template_.get(), parent);
  }
  const MessageDialogAnswer& answer() const { return answer_; }

 protected:
  BOOL OnInitDialog() override {
    const BOOL result = CDialog::OnInitDialog();
    SetDlgItemText(kTextId, text_.c_str());
    return result;
  }
  BOOL OnCommand(WPARAM wParam, LPARAM lParam) override {
    for (const Button& each : offered_) {
      if (LOWORD(wParam) != each.id || HIWORD(wParam) != BN_CLICKED) continue;
      answer_.button = each.button;
      OnCancel();
      return TRUE;
    }
    return CDialog::OnCommand(wParam, lParam);
  }
  void OnOK() override {}
  void OnCancel() override {
    const HWND never = ::GetDlgItem(m_hWnd, kNeverAgainId);
    answer_.neverAgain = never != nullptr && ::SendMessageW(never, BM_GETCHECK, 0, 0) == BST_CHECKED;
    EndDialog(IDOK);
  }

 private:
  static DialogTemplate made(const std::wstring& title, const std::wstring& text, const MessageDialogForm& form,
                             std::vector<Button>& offered) {
    for (const Button& each : kButtons) {
      if ((form.buttons & each.button) != 0) offered.push_back(each);
    }
    const Extent extent = extentOf(text);
    const int buttons = static_cast<int>(offered.size()) * (kButtonWidth + kMargin) - kMargin;
    const int width = std::max(static_cast<int>(extent.columns) * kColumn + kFrame, buttons);
    const int height = static_cast<int>(std::min(extent.lines, kMostLines)) * kLine + kFrame;
    const int never = form.offersNeverAgain ? kButtonHeight : 0;
    const int dialogWidth = width + 2 * kMargin;
    DialogTemplate dialog(title, dialogWidth, height + never + kButtonHeight + 4 * kMargin);
    // The first button is the one that has the focus and that Enter presses.
    int x = dialogWidth - kMargin - buttons;
    for (const Button& each : offered) {
      dialog.button(each.id, each.caption, {x, height + never + 3 * kMargin, kButtonWidth, kButtonHeight},
                    &each == offered.data() ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON);
      x += kButtonWidth + kMargin;
    }
    dialog.edit(kTextId, {kMargin, kMargin, width, height},
                ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | (extent.lines > kMostLines ? WS_VSCROLL : 0));
    if (form.offersNeverAgain)
      dialog.checkBox(kNeverAgainId, L"Never show this message again", {kMargin, height + 2 * kMargin, width, 10});
    return dialog;
  }

  std::vector<Button> offered_;
  std::wstring text_;
  DialogTemplate template_;
  MessageDialogAnswer answer_;
};

}  // namespace

std::optional<MessageDialogAnswer> showMessageDialog(const std::wstring& title, const std::wstring& text,
                                                     const MessageDialogForm& form, CWnd* parent) {
  MessageDialog dialog(title, text, form, parent);
  if (dialog.DoModal() != IDOK) return std::nullopt;
  return dialog.answer();
}

}  // namespace OrvLib

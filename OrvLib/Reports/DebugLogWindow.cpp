#include "OrvLib/Reports/DebugLogWindow.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "OrvLib/ARX/ParentWindow.h"
#include "OrvLib/DataStruct/Text.h"
#include "OrvLib/Reports/DebugLog.h"
#include "OrvLib/Reports/DebugLogSettings.h"
#include "OrvLib/Reports/Failures.h"

namespace OrvLib {
namespace {

constexpr int kWidth = 460;
constexpr int kHeight = 250;
constexpr int kButtonStrip = 40;  // pixels below the texts
constexpr DWORD kTextStyle = ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | ES_AUTOHSCROLL | WS_VSCROLL | WS_HSCROLL;
constexpr LPARAM kEndOfText = 0x7FFFFFFF;

struct StripControl {
  int id;
  const wchar_t* caption;
  int width;  // dialog units
  bool isCheckBox;
};
constexpr StripControl kStrip[] = {{IDCANCEL, L"Close", 44, false},
                                   {DebugLogWindow::kSettings, L"Settings..", 56, false},
                                   {DebugLogWindow::kSave, L"Save...", 44, false},
                                   {DebugLogWindow::kClear, L"Clear", 44, false},
                                   {DebugLogWindow::kCallback, L"Callback", 52, false},
                                   {DebugLogWindow::kAlwaysOnTop, L"always on top", 86, true},
                                   {DebugLogWindow::kLowPriority, L"low priority", 86, true}};
constexpr int kStripHeight = 14;
constexpr int kGap = 4;

// The texts take their places when the window is laid out.
DialogTemplate windowTemplate(const std::wstring& title) {
  DialogTemplate dialog(title, kWidth, kHeight, WS_THICKFRAME | WS_VISIBLE);
  int x = kGap;
  for (const StripControl& each : kStrip) {
    const UnitRect rect{x, kHeight - kStripHeight, each.width, kStripHeight};
    if (each.isCheckBox) {
      dialog.checkBox(each.id, each.caption, rect);
    } else {
      dialog.button(each.id, each.caption, rect);
    }
    x += each.width + kGap;
  }
  dialog.edit(DebugLogWindow::kLog, {}, kTextStyle).edit(DebugLogWindow::kBeside, {}, kTextStyle);
  return dialog;
}

std::wstring withLineEnds(const std::wstring& text) {
  std::wstring all;
  all.reserve(text.size() + 16);
  for (const wchar_t each : text) {
    if (each == L'\n') all += L'\r';
    all += each;
  }
  return all;
}

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

bool appendToFile(const wchar_t* path, const std::wstring& text) {
  std::unique_ptr<std::FILE, FileCloser> file(_wfsopen(path, L"a", _SH_DENYNO));
  if (!file) return false;
  const std::string bytes = encodeUtf8(text);
  const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  return std::fclose(file.release()) == 0 && isWritten;
}

}  // namespace

BEGIN_MESSAGE_MAP(DebugLogWindow, CDialog)
ON_WM_SIZE()
ON_BN_CLICKED(kSettings, &DebugLogWindow::onSettings)
ON_BN_CLICKED(kSave, &DebugLogWindow::onSave)
ON_BN_CLICKED(kClear, &DebugLogWindow::onClear)
ON_BN_CLICKED(kCallback, &DebugLogWindow::onCallback)
ON_BN_CLICKED(kAlwaysOnTop, &DebugLogWindow::onAlwaysOnTop)
ON_BN_CLICKED(kLowPriority, &DebugLogWindow::onLowPriority)
END_MESSAGE_MAP()

DebugLogWindow::DebugLogWindow(DebugLog& log)
    : log_(log), template_(windowTemplate(log.applicationName() + L" DEBUG LOG")) {}

int DebugLogWindow::append(const std::wstring& text) {
  if (m_hWnd == nullptr && CreateIndirect(template_.get(), parentWindow()) == FALSE) return DebugLog::kUnusable;
  const HWND edit = ::GetDlgItem(m_hWnd, kLog);
  if (edit == nullptr) {
    ::MessageBoxW(nullptr, L"tapaus 2 BreakPoint MFCPrint()", L"ahaa", MB_OK);
    return DebugLog::kFailed;
  }
  ::SendMessageW(edit, EM_SETSEL, static_cast<WPARAM>(kEndOfText), kEndOfText);
  ::SendMessageW(edit, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(withLineEnds(text).c_str()));
  ::SendMessageW(edit, EM_SCROLLCARET, 0, 0);
  return static_cast<int>(text.size());
}

void DebugLogWindow::close() {
  if (m_hWnd != nullptr) DestroyWindow();
}

BOOL DebugLogWindow::OnInitDialog() {
  const BOOL result = CDialog::OnInitDialog();
  for (const int each : {kLog, kBeside}) ::SendMessageW(::GetDlgItem(m_hWnd, each), EM_LIMITTEXT, 0x7FFFFFFE, 0);
  layOut();
  return result;
}

void DebugLogWindow::OnSize(UINT kind, int width, int height) {
  CDialog::OnSize(kind, width, height);
  layOut();
}

// The texts fill the window, two thirds and one third, above the strip of buttons.
void DebugLogWindow::layOut() {
  const HWND log = ::GetDlgItem(m_hWnd, kLog);
  const HWND beside = ::GetDlgItem(m_hWnd, kBeside);
  if (log == nullptr || beside == nullptr) return;  // still being made
  RECT all{};
  GetClientRect(&all);
  const int height = std::max<int>(all.bottom - kButtonStrip, 0);
  const int border = all.right * 2 / 3;
  ::MoveWindow(log, 0, 0, border, height, TRUE);
  ::MoveWindow(beside, border, 0, all.right - border, height, TRUE);
  int x = kGap;
  for (const StripControl& each : kStrip) {
    RECT rect{x, 0, x + each.width, kStripHeight};
    MapDialogRect(m_hWnd, &rect);
    ::MoveWindow(::GetDlgItem(m_hWnd, each.id), rect.left, height + (kButtonStrip - rect.bottom) / 2,
                 rect.right - rect.left, rect.bottom, TRUE);
    x += each.width + kGap;
  }
}

void DebugLogWindow::onSettings() {
  guarded([this] { editDebugLogSettings(log_, this); });
}

void DebugLogWindow::onSave() {
  guarded([this] {
    CFileDialog question(FALSE, L".log", L"*.log", OFN_HIDEREADONLY, L"log files (*.log)|*.log|All Files (*.*)|*.*||",
                         this);
    if (question.DoModal() != IDOK) return;
    CString shown;
    GetDlgItem(kLog)->GetWindowText(shown);
    std::wstring text(shown.GetString(), static_cast<std::size_t>(shown.GetLength()));
    text.erase(std::remove(text.begin(), text.end(), L'\r'), text.end());
    if (appendToFile(question.GetPathName(), text)) {
      ::MessageBoxW(nullptr, L"Log saved.", L"Siellä lepää.", MB_TASKMODAL);
    } else {
      ::MessageBoxW(nullptr, L"Saving failed.", L"bummer", MB_TASKMODAL);
    }
  });
}

void DebugLogWindow::onClear() {
  for (const int each : {kLog, kBeside}) SetDlgItemText(each, L"");
}

void DebugLogWindow::onCallback() {
  guarded([this] { SetDlgItemText(kBeside, withLineEnds(log_.callbackText()).c_str()); });
}

void DebugLogWindow::onAlwaysOnTop() { stack(kAlwaysOnTop, kLowPriority, HWND_TOPMOST); }

void DebugLogWindow::onLowPriority() { stack(kLowPriority, kAlwaysOnTop, HWND_BOTTOM); }

/// A window is above all others or below them; it cannot be both.
void DebugLogWindow::stack(int chosen, int other, HWND place) {
  const bool isOn = SendDlgItemMessageW(m_hWnd, chosen, BM_GETCHECK, 0, 0) == BST_CHECKED;
  if (isOn) SendDlgItemMessageW(m_hWnd, other, BM_SETCHECK, BST_UNCHECKED, 0);
  SetWindowPos(isOn ? place : HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

}  // namespace OrvLib

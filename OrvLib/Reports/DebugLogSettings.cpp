#include "OrvLib/Reports/DebugLogSettings.h"

#include <array>
#include <cmath>
#include <string>

#include "OrvLib/DataStruct/Text.h"
#include "OrvLib/Reports/DebugLog.h"
#include "OrvLib/Reports/DialogTemplate.h"
#include "OrvLib/Reports/Failures.h"

namespace OrvLib {
namespace {

struct Offered {
  DebugLog::Destination bit;
  const wchar_t* label;
};
constexpr std::array<Offered, 7> kOffered{{{DebugLog::kStandardOutput, L"STDOUT"},
                                           {DebugLog::kStandardError, L"STDERR"},
                                           {DebugLog::kLogFile, L"Log file"},
                                           {DebugLog::kCommandLine, L"ARX ads_printf"},
                                           {DebugLog::kWindow, L"MFC dialog"},
                                           {DebugLog::kMessageBox, L"MFC message box"},
                                           {DebugLog::kDebugger, L"DevStudio debug window"}}};

DialogTemplate settingsTemplate() {
  constexpr int kWidth = 260;
  constexpr int kHeight = 192;
  constexpr int kLeft = 100;
  constexpr int kRow = 14;
  int y = 8;
  DialogTemplate dialog(L"DEBUG LOG settings...", kWidth, kHeight);
  dialog.label(L"Log level:", {8, y + 2, 88, 10}).edit(settingsIds::kLevel, {kLeft, y, 80, 12});
  y += kRow + 4;
  dialog.label(L"Do time stamps:", {8, y + 2, 88, 10}).checkBox(settingsIds::kTimeStamps, L"", {kLeft, y, 12, 12});
  y += kRow + 4;
  dialog.label(L"Log destinations:", {8, y + 2, 88, 10});
  int id = settingsIds::kFirstDestination;
  for (const Offered& each : kOffered) {
    dialog.checkBox(id++, each.label, {kLeft, y, kWidth - kLeft - 8, 12});
    y += kRow;
  }
  y += 4;
  dialog.label(L"Log file name:", {8, y + 2, 88, 10}).edit(settingsIds::kFileName, {kLeft, y, kWidth - kLeft - 8, 12});
  dialog.button(IDOK, L"Ok!", {kWidth - 58, kHeight - 21, 50, 14}, BS_DEFPUSHBUTTON);
  return dialog;
}

class Settings : public CDialog {
 public:
  Settings(DebugLog& log, CWnd* parent) : log_(log), template_(settingsTemplate()) {
    InitModalIndirect(template_.get(), parent);
  }

 protected:
  BOOL OnInitDialog() override {
    const BOOL result = CDialog::OnInitDialog();
    guarded([this] {
      SetDlgItemText(settingsIds::kLevel, std::to_wstring(log_.level()).c_str());
      SetDlgItemText(settingsIds::kFileName, log_.fileName().c_str());
    });
    check(settingsIds::kTimeStamps, log_.timeStamps());
    int id = settingsIds::kFirstDestination;
    for (const Offered& each : kOffered) check(id++, (log_.mode() & each.bit) != 0);
    return result;
  }
  void OnOK() override {
    guarded([this] {
      const double level = leadingNumber(text(settingsIds::kLevel));
      log_.setLevel(toInt(level));
      log_.setTimeStamps(isChecked(settingsIds::kTimeStamps));
      std::uint32_t mode = log_.mode();
      int id = settingsIds::kFirstDestination;
      for (const Offered& each : kOffered) mode = isChecked(id++) ? mode | each.bit : mode & ~std::uint32_t{each.bit};
      log_.setMode(mode);
      takeFileName();
    });
    EndDialog(IDOK);
  }

 private:
  void takeFileName() {
    const std::wstring name = text(settingsIds::kFileName);
    if (name == log_.fileName()) return;
    log_.setFileName(name);
    if ((log_.mode() & DebugLog::kLogFile) != 0 && !log_.openFile())
      ::MessageBoxW(m_hWnd, L"Invalid log file name; unable to open.", L"No niin tietysti.", MB_OK);
  }
  void check(int id, bool on) { SendDlgItemMessageW(m_hWnd, id, BM_SETCHECK, on ? BST_CHECKED : BST_UNCHECKED, 0); }
  bool isChecked(int id) const { return SendDlgItemMessageW(m_hWnd, id, BM_GETCHECK, 0, 0) == BST_CHECKED; }
  std::wstring text(int id) const {
    CString shown;
    GetDlgItem(id)->GetWindowText(shown);
    return {shown.GetString(), static_cast<std::size_t>(shown.GetLength())};
  }

  DebugLog& log_;
  DialogTemplate template_;
};

}  // namespace

void editDebugLogSettings(DebugLog& log, CWnd* parent) { Settings(log, parent).DoModal(); }

}  // namespace OrvLib

// The log window: a dialog that stays open beside the host's commands.
#pragma once

#include <string>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/Reports/DialogTemplate.h"

namespace OrvLib {

class DebugLog;

class DebugLogWindow : public CDialog {
 public:
  /// Nothing is shown before the first text.
  explicit DebugLogWindow(DebugLog& log);

  /// Shows the window if need be and adds the text at its end. Characters of the text, or a failure of DebugLog's.
  int append(const std::wstring& text);
  /// Takes the window away with its text.
  void close();

  // Ids of the controls.
  static constexpr int kSettings = 1001;
  static constexpr int kSave = 1002;
  static constexpr int kClear = 1003;
  static constexpr int kCallback = 1004;
  static constexpr int kAlwaysOnTop = 1005;
  static constexpr int kLowPriority = 1006;
  static constexpr int kLog = 1007;
  static constexpr int kBeside = 1008;

 protected:
  BOOL OnInitDialog() override;
  void OnOK() override {}
  void OnCancel() override { close(); }
  afx_msg void OnSize(UINT kind, int width, int height);
  afx_msg void onSettings();
  afx_msg void onSave();
  afx_msg void onClear();
  afx_msg void onCallback();
  afx_msg void onAlwaysOnTop();
  afx_msg void onLowPriority();
  DECLARE_MESSAGE_MAP()

 private:
  void layOut();
  void stack(int chosen, int other, HWND place);

  DebugLog& log_;
  DialogTemplate template_;
};

}  // namespace OrvLib

// The library's own message dialog.
#pragma once

#include <optional>
#include <string>

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// Buttons of a message dialog, to be joined with "|".
enum MessageButtons : unsigned {
  kYesButton = 1,
  kCancelButton = 2,
  kContinueButton = 4,
  kExitButton = 8,
};

struct MessageDialogForm {
  unsigned buttons = kContinueButton;
  /// A check box "Never show this message again".
  bool offersNeverAgain = false;
};

struct MessageDialogAnswer {
  MessageButtons button = kContinueButton;  // closing the dialog is Cancel where there is one, else its last button
  bool neverAgain = false;
};

/// Shows a text of any length; it can be selected and copied. Nothing when the dialog cannot be shown.
std::optional<MessageDialogAnswer> showMessageDialog(const std::wstring& title, const std::wstring& text,
                                                     const MessageDialogForm& form = {}, CWnd* parent = nullptr);

}  // namespace OrvLib

// Dialogs and question boxes take their actions from the running session's input.
#pragma once

#include <string_view>

#include "Editor/InputSource.h"

namespace host::editor {

/// The next line for a dialog or box: Text (the line as it stands), Enter (an empty line) or Cancel (Esc). When the
/// input has ended the failure is recorded, naming `what` ("dialog \"Roof\""), and the answer is Cancel.
Answer nextDialogLine(std::wstring_view what);
/// The action cannot be done: prints the sentence. True when another line may be asked for, false when the script has
/// failed and the dialog must be cancelled.
bool refuseDialogLine(std::wstring_view sentence);
/// A box with OK only: "[CAPTION] text" on a line of its own.
void showNotice(std::wstring_view caption, std::wstring_view text);
/// Caption of the program's own boxes.
std::wstring_view programName();

}  // namespace host::editor

// Dialogs and question boxes take their actions from the running session's input.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "Editor/InputSource.h"
#include "Problems/Problem.h"
#include "windef.h"

namespace host::editor {

/// The next line for a dialog or box: Text (the line as it stands), Enter (an empty line) or Cancel (Esc). The
/// transcript shows `what` ("dialog \"Roof\"") and the line. When the input has ended the failure is recorded, naming
/// `what`, and the answer is Cancel.
Answer nextDialogLine(std::wstring_view what);
/// The action cannot be done: prints the sentence. True when another line may be asked for, false when the script has
/// failed and the dialog must be cancelled.
bool refuseDialogLine(std::wstring_view sentence);
/// A modal dialog is worked between these two; `isCancelled`: it was left with Cancel or Esc.
void dialogOpened();
void dialogClosed(bool isCancelled);
/// Writes a file that a line asked for, whole or not at all, and never over an open drawing. `who` begins the sentence
/// that says why it cannot be written; the answer is that of `refuseDialogLine`.
bool writeDialogFile(std::wstring_view who, const std::filesystem::path& file, std::string_view bytes);
/// True when no more lines will come: the script has ended or failed, or the run was interrupted.
bool inputHasStopped();
/// The running command was interrupted and is being left: no box or dialog is shown any more.
bool commandIsAbandoned();
/// The user works the dialogs at the screen; no lines are asked for.
bool dialogsAreWorkedByHand();
/// Records what the user has done at the screen as the line by which a script does it to the dialog or box that `what`
/// names. An edit that goes on takes the place of its last line: those that begin with `edited`.
void dialogWorked(std::wstring_view what, std::wstring_view line, std::wstring_view edited = {});
/// The same for Esc.
void dialogEscaped(std::wstring_view what);
/// A problem of the host itself.
void reportDialogProblem(const Problem& problem);
/// A folder by its path; a relative one is looked for where support files are. Empty when there is none.
std::filesystem::path findFolder(const std::filesystem::path& folder);
/// Text on a line of its own in the transcript.
void printDialogLine(std::wstring_view text);
/// A box with OK only: "[CAPTION] text" on a line of its own. Where the caption stands for failures the command fails.
void showNotice(std::wstring_view caption, std::wstring_view text);
/// The module that the document manager was given last to look dialogs and strings up in; null when there is none.
HINSTANCE topResource();
/// Names another one in its place.
void setTopResource(HINSTANCE module);
/// The dialogs that stay open while commands run.
class OpenDialogs {
 public:
  virtual ~OpenDialogs() = default;
  virtual std::vector<std::wstring> titles() = 0;
  /// Takes one line of the input as an action on the dialog, as modal ones do. False when there is no such dialog.
  virtual bool act(std::wstring_view title) = 0;
};
/// Names the process's; the first such dialog does.
void setOpenDialogs(OpenDialogs& dialogs);
/// Caption of the program's own boxes.
std::wstring_view programName();

}  // namespace host::editor

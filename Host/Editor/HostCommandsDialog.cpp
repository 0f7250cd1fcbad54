// DIALOG: works a dialog that stays open while commands run.
#include "Editor/DialogInput.h"
#include "Editor/HostCommands.h"
#include "Editor/Prompter.h"

namespace host::editor {
namespace {

OpenDialogs* openDialogs = nullptr;

void dialog(Prompter& prompter) {
  for (;;) {
    const auto title = prompter.text(L"Enter title of the dialog: ");
    if (!title || (openDialogs != nullptr && openDialogs->act(title.value))) return;
    std::wstring known;
    if (openDialogs != nullptr) {
      for (const std::wstring& each : openDialogs->titles()) known += (known.empty() ? L"\"" : L", \"") + each + L"\"";
    }
    const std::wstring sentence = L"no dialog \"" + title.value + L"\" is open";
    if (!prompter.refuse(known.empty() ? sentence : sentence + L"; open are " + known)) return;
  }
}

constexpr HostCommand kCommands[] = {{L"DIALOG", ACRX_CMD_TRANSPARENT | ACRX_CMD_NO_UNDO_MARKER, dialog}};

}  // namespace

void setOpenDialogs(OpenDialogs& dialogs) { openDialogs = &dialogs; }

std::span<const HostCommand> dialogCommands() { return kCommands; }

}  // namespace host::editor

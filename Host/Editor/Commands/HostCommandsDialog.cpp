// DIALOG: works a dialog that stays open while commands run.
#include "Editor/Commands/HostCommands.h"
#include "Editor/DialogInput.h"
#include "Editor/Prompter.h"

namespace host::editor {
namespace {

OpenDialogs* openDialogs = nullptr;

void dialog(Prompter& prompter) {
  for (;;) {
    const auto title = prompter.text(L"Enter title of the dialog: ");
    if (!title || (openDialogs != nullptr && openDialogs->act(title.value))) return;
    std::wstring sentence = L"no dialog \"" + title.value + L"\" is open";
    const wchar_t* separator = L"; open are \"";
    for (const std::wstring& each : openDialogs != nullptr ? openDialogs->titles() : std::vector<std::wstring>()) {
      sentence.append(separator).append(each).append(L"\"");
      separator = L", \"";
    }
    if (!prompter.refuse(sentence)) return;
  }
}

constexpr HostCommand kCommands[] = {
    {L"DIALOG", ACRX_CMD_TRANSPARENT | ACRX_CMD_NO_UNDO_MARKER, dialog, L"works a dialog that stays open"},
};

}  // namespace

void setOpenDialogs(OpenDialogs& dialogs) { openDialogs = &dialogs; }

std::span<const HostCommand> dialogCommands() { return kCommands; }

}  // namespace host::editor

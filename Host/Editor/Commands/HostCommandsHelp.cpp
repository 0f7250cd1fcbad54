// HELP: what can be said to the host.
#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "Editor/Commands/HostCommands.h"
#include "Editor/Session/Session.h"

namespace host::editor {
namespace {

/// The names in columns, as many as a line of a terminal takes.
void listNames(Prompter& prompter, const std::vector<std::wstring>& names) {
  constexpr std::size_t kColumns = 78;
  std::size_t width = 0;
  for (const std::wstring& name : names) width = std::max(width, name.size() + 2);
  std::wstring line;
  for (const std::wstring& name : names) {
    if (!line.empty() && line.size() + width > kColumns) prompter.line(std::exchange(line, {}));
    line += L"  " + name + std::wstring(width - 2 - name.size(), L' ');
  }
  if (!line.empty()) prompter.line(line);
}

void help(Prompter& prompter) {
  std::map<std::wstring, std::wstring> own;                     // name to help
  std::map<std::wstring, std::vector<std::wstring>> ofModules;  // by group
  for (const auto& command : prompter.session().commands().all()) {
    if (command->isBuiltIn()) {
      own.emplace(command->global, command->help);
    } else {
      ofModules[command->group].push_back(command->global);
    }
  }
  std::size_t width = 0;
  for (const auto& [name, text] : own) width = std::max(width, name.size());
  prompter.line(L"Commands of the host:");
  for (const auto& [name, text] : own) {
    std::wstring row = L"  " + name;
    row.append(width + 2 - name.size(), L' ').append(text);
    prompter.line(row);
  }
  for (auto& [group, names] : ofModules) {
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    prompter.line(L"Commands of " + group + L":");
    listNames(prompter, names);
  }
  for (const wchar_t* const line :
       {L"Objects are selected by points, W or C and two corners, ALL, L (last), P (previous) or (handent \"2F\");",
        L"R removes, A adds again, an empty line ends the selection. Points: 10,5  @5,0  @10<90.",
        L"While a dialog is open each line works it: LIST prints its controls, OK and Cancel leave it.",
        L"^C is Esc. U takes the last command back."})
    prompter.line(line);
}

constexpr HostCommand kCommands[] = {
    {L"HELP", ACRX_CMD_SESSION | ACRX_CMD_TRANSPARENT | ACRX_CMD_NO_UNDO_MARKER, help, L"prints this; ? does too"},
};

}  // namespace

std::span<const HostCommand> helpCommands() { return kCommands; }

}  // namespace host::editor

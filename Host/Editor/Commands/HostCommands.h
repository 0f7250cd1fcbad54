// The host's own commands.
#pragma once

#include <span>

#include "Editor/Commands/CommandStack.h"

namespace host::editor {

struct HostCommand {
  const wchar_t* name;
  Adesk::Int32 flags;
  void (*handler)(Prompter&);
  const wchar_t* help;  // "erases objects"
};

std::span<const HostCommand> fileCommands();     // OPEN, QSAVE, ARX, SCRIPT ...
std::span<const HostCommand> editCommands();     // U, ERASE, SELECT, SETVAR ...
std::span<const HostCommand> changeCommands();   // MOVE, COPY, ROTATE, JOIN, OUTLINE, SEAM, CHPROP
std::span<const HostCommand> drawCommands();     // LINE, PLINE
std::span<const HostCommand> textCommands();     // TEXT
std::span<const HostCommand> layerCommands();    // LAYER, LINETYPE
std::span<const HostCommand> inspectCommands();  // LIST, LAYOUT, ZOOM, HOVER
std::span<const HostCommand> measureCommands();  // DIST, AREA
std::span<const HostCommand> dialogCommands();   // DIALOG
std::span<const HostCommand> helpCommands();     // HELP

void addHostCommands(CommandStack& commands);

}  // namespace host::editor

// What commands that change objects ask first.
#pragma once

#include <vector>

#include "Editor/Prompter.h"

namespace host::editor {

/// The set selected before the command, or one asked for; living entities. `skipLocked`: those on locked layers are
/// left out, and counted in the transcript. Empty after Esc too.
std::vector<database::Slot*> selectedObjects(Prompter& prompter, bool skipLocked);

}  // namespace host::editor

// What a command is made of, and how one runs.
#pragma once

#include <vector>

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// What the user selects for a command.
enum class Selects { Nothing, Polylines, Entities, OneEntity };

/// Whether the document is locked for writing, from before the selection until the work is done.
enum class Locks { No, Yes };

/// What is shown once the work is done. `ByItself`: the work includes it, or there is nothing to show.
enum class Finish { ByItself, Regenerated, DisplayFinished };

/// `Nothing`: the user cancelled, or there was nothing to work on; nothing is shown anew then.
enum class Outcome { Nothing, Done };

using SelectedIds = std::vector<AcDbObjectId>;

struct CommandRow {
  const ACHAR* globalName;
  const ACHAR* prompt;  // printed before anything else; of one entity the pick's own; null: none
  Selects selects;
  Locks locks;
  Finish finish;
  Outcome (*work)(const SelectedIds& selected);
  const ACHAR* localName = nullptr;  // null: the same as the global one

  constexpr const ACHAR* localNameOrGlobal() const { return localName != nullptr ? localName : globalName; }
};

/// Prompts, locks, lets the user select, works and finishes, as the row says and in this order; the lock goes before
/// the finish. A lock that is refused ends the command, as the command line then says, and so does a pick of nothing;
/// an empty selection is given to the work.
void runCommand(const CommandRow& command);

}  // namespace OrvLib

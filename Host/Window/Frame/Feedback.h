// What to tell after a command, and what kinds of things are called.
#pragma once

#include <QString>
#include <vector>

#include "Database/Slot.h"
#include "Window/Commands/MenuTable.h"
#include "Window/Frame/Engine.h"

namespace host::window {

/// "murtoviiva" / "polyline"; the type in small letters when it has no word.
QString kindOf(const database::Slot& entity);
/// "1 ympyrä, 2 viivaa": counts by kind, the most frequent first.
QString countsByKind(const std::vector<database::Slot*>& entities);

struct Feedback {
  QString text;                        // empty: nothing to tell
  bool isNothing = false;              // nothing changed though something was selected
  std::vector<database::Slot*> shown;  // that a link leads to
};

/// "Nurmikko: muuttui 1, syntyi 1, ennallaan 1 (ympyrä)". Of the window's view commands and undo nothing is told.
Feedback feedbackOf(const CommandResult& result, const CommandTables& tables);

}  // namespace host::window

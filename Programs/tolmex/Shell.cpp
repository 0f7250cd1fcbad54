// `tolmex shell`.
#include "Commands.h"
#include "Console.h"

namespace tolmex {

int runShell(const RunOptions&) { return complain(host::editor::RunStatus::WrongUsage, "later"); }

}  // namespace tolmex

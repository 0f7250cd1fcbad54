#include "Tolmex/CommandRow.h"

#include <optional>

#include "OrvLib/ARX/DrawOrder.h"
#include "OrvLib/ARX/Selector.h"
#include "Tolmex/DisplayFinish.h"
#include "Tolmex/DocumentLock.h"

namespace OrvLib {
namespace {

std::optional<SelectedIds> pickOne(const ACHAR* prompt) {
  ads_name name = {0, 0};
  ads_point point = {0, 0, 0};
  AcDbObjectId id;
  if (acedEntSel(prompt, name, point) != RTNORM || acdbGetObjectId(id, name) != Acad::eOk) return std::nullopt;
  return SelectedIds{id};
}

/// Nothing when a pick gives nothing.
std::optional<SelectedIds> selectFor(const CommandRow& command) {
  switch (command.selects) {
    case Selects::Polylines:
      return Selector::polylines().byUser();
    case Selects::Entities:
      return Selector::entities().byUser();
    case Selects::OneEntity:
      return pickOne(command.prompt);
    case Selects::Nothing:
      break;
  }
  return SelectedIds();
}

Outcome workOf(const CommandRow& command) {
  std::optional<DocumentLock> lock;
  if (command.locks == Locks::Yes && !lock.emplace()) return Outcome::Nothing;
  const std::optional<SelectedIds> selected = selectFor(command);
  return selected ? command.work(*selected) : Outcome::Nothing;
}

}  // namespace

void runCommand(const CommandRow& command) {
  if (command.prompt != nullptr && command.selects != Selects::OneEntity) acutPrintf(L"%s", command.prompt);
  if (workOf(command) == Outcome::Nothing) return;
  if (command.finish == Finish::Regenerated) regenerate();
  if (command.finish == Finish::DisplayFinished) finishDisplay();
}

}  // namespace OrvLib

// Undo, erasing, selecting, system variables.
#include "Editor/Commands/HostCommands.h"
#include "Editor/Selection/SelectionSets.h"
#include "Editor/Session/Session.h"
#include "Text/Text.h"
#include "dbobjptr.h"

namespace host::editor {
namespace {

using database::Slot;

database::DrawingDatabase& drawingOf(Prompter& prompter) { return prompter.session().documents().current()->drawing(); }

void undoOnce(Prompter& prompter) {
  if (const std::optional<std::wstring> name =
          drawingOf(prompter).undo(prompter.session().input().scriptGroup().number)) {
    prompter.line(*name);
  } else {
    prompter.line(L"Everything has been undone");
  }
}

void redoOnce(Prompter& prompter) {
  if (const std::optional<std::wstring> name =
          drawingOf(prompter).redo(prompter.session().input().scriptGroup().number)) {
    prompter.line(*name);
  } else {
    prompter.line(L"Nothing to redo");
  }
}

void undoMany(Prompter& prompter) {
  Limits limits;
  limits.bits = RSG_NOZERO | RSG_NONEG;
  const auto count = prompter.integer(L"Enter the number of operations to undo <1>: ", limits);
  if (count.outcome == Outcome::Cancel) return;
  const std::uint32_t openGroup = prompter.session().input().scriptGroup().number;
  for (int i = 0; i < (count ? count.value : 1); ++i) {
    const std::optional<std::wstring> name = drawingOf(prompter).undo(openGroup);
    prompter.line(name.value_or(L"Everything has been undone"));
    if (!name) break;
  }
}

/// The set selected before the command, or one asked for.
std::vector<Slot*> selected(Prompter& prompter) {
  Session& session = prompter.session();
  if (session.runner().mayTakePickfirst()) {
    std::vector<Slot*> before = std::exchange(session.documents().current()->pickfirst, {});
    std::erase_if(before, [](const Slot* entity) { return entity->isErased(); });
    if (!before.empty()) return before;
  }
  return prompter.select().value;
}

void erase(Prompter& prompter) {
  std::size_t inUse = 0;
  for (Slot* slot : selected(prompter)) {
    const AcDbObjectPointer<AcDbEntity> entity(AcDbObjectId(slot), AcDb::kForWrite);
    const Acad::ErrorStatus status = entity.openStatus();
    if (status == Acad::eOk) {
      entity->erase();
    } else if (status != Acad::eWasErased &&
               status != Acad::eOnLockedLayer) {  // the end of the command reports locked ones
      ++inUse;
    }
  }
  if (inUse > 0)
    prompter.refuse(std::to_wstring(inUse) + (inUse == 1 ? L" is" : L" are") + L" in use and cannot be erased.");
}

// Selecting sets the previous selection; nothing else is to do.
void select(Prompter& prompter) { prompter.select(); }

void regen(Prompter& prompter) {
  prompter.line(L"Regenerating model.");
  prompter.session().observer().regenerate();
}

void setVariable(Prompter& prompter) {
  Session& session = prompter.session();
  std::wstring name = session.runner().namedVariable();
  if (name.empty()) {
    const auto reply = prompter.word(L"Enter variable name or [?]: ");
    if (!reply) return;
    name = reply.value;
    if (name == L"?") {
      for (const std::wstring& known : session.variables().names())
        prompter.line(known + L"  " + session.variables().shown(*session.variables().find(known)));
      return;
    }
  }
  const Variable* const variable = session.variables().find(name);
  if (variable == nullptr) {
    std::wstring hint;
    for (const std::wstring& candidate : nearestNames(name, session.variables().names()))
      hint += (hint.empty() ? L"; nearest: " : L", ") + candidate;
    prompter.refuse(L"Unknown variable name \"" + name + L"\"" + hint + L".");
    return;
  }
  if (variable->readOnly) {
    prompter.line(variable->name + (L" = " + session.variables().shown(*variable)) + L" (read only)");
    return;
  }
  const std::wstring prompt =
      L"Enter new value for " + std::wstring(variable->name) + L" <" + session.variables().shown(*variable) + L">: ";
  for (;;) {
    const auto value = prompter.word(prompt);
    if (!value) return;
    const std::wstring& text = value.value;
    const bool clears = variable->type == Variable::Type::Text && text == L".";
    const Result<> set = session.variables().setText(*variable, clears ? std::wstring_view() : std::wstring_view(text));
    if (set || !prompter.refuse(variable->name + (L" " + text::fromUtf8(set.message())) + L".")) return;
  }
}

constexpr HostCommand kCommands[] = {
    {L"U", ACRX_CMD_NO_UNDO_MARKER, undoOnce, L"takes the last command back"},
    {L"UNDO", ACRX_CMD_NO_UNDO_MARKER, undoMany, L"takes a number of commands back"},
    {L"REDO", ACRX_CMD_NO_UNDO_MARKER, redoOnce, L"repeats what was taken back last"},
    {L"REGEN", ACRX_CMD_NO_UNDO_MARKER, regen, L"draws anew"},
    {L"REGENALL", ACRX_CMD_NO_UNDO_MARKER, regen, L"the same for all views"},
    {L"ERASE", ACRX_CMD_USEPICKSET, erase, L"erases objects"},
    {L"SELECT", ACRX_CMD_NO_UNDO_MARKER, select, L"selects objects for the answer P of the next selection"},
    {L"SETVAR", ACRX_CMD_TRANSPARENT, setVariable,
     L"shows and sets system variables; a variable's name alone does too"},
};

}  // namespace

std::span<const HostCommand> editCommands() { return kCommands; }

void addHostCommands(CommandStack& commands) {
  for (const auto& group : {fileCommands(), editCommands(), drawCommands(), layerCommands(), inspectCommands(),
                            dialogCommands(), helpCommands()}) {
    for (const HostCommand& command : group)
      commands.addBuiltIn(command.name, command.flags, command.handler, command.help);
  }
  static constexpr const wchar_t* kAliases[][2] = {
      {L"E", L"ERASE"},    {L"L", L"LINE"},     {L"PL", L"PLINE"},  {L"LA", L"LAYER"}, {L"LT", L"LINETYPE"},
      {L"LI", L"LIST"},    {L"LO", L"LAYOUT"},  {L"RE", L"REGEN"},  {L"Z", L"ZOOM"},   {L"SET", L"SETVAR"},
      {L"SCR", L"SCRIPT"}, {L"SAVE", L"QSAVE"}, {L"EXIT", L"QUIT"}, {L"?", L"HELP"},
  };
  for (const auto& [alias, name] : kAliases) commands.addAlias(alias, name);
}

}  // namespace host::editor

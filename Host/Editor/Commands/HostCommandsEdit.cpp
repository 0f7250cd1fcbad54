// Undo, erasing, selecting, system variables.
#include "Editor/Commands/HostCommands.h"
#include "Editor/Commands/SelectedObjects.h"
#include "Editor/Selection/Spaces.h"
#include "Editor/Session/Session.h"
#include "Text/Text.h"
#include "dbobjptr.h"

namespace host::editor {
namespace {

using database::Slot;

database::DrawingDatabase& drawingOf(Prompter& prompter) { return prompter.session().documents().current()->drawing(); }

/// Takes back or repeats up to `count` commands and says which; `atEnd` when there are no more.
template <class Step>
void repeat(Prompter& prompter, int count, const Step& step, std::wstring_view atEnd) {
  for (int i = 0; i < count; ++i) {
    const std::optional<std::wstring> name = step(drawingOf(prompter), prompter.session().input().scriptGroup().number);
    prompter.line(name ? std::wstring_view(*name) : atEnd);
    if (!name) break;
  }
}

void undo(Prompter& prompter, int count) {
  const std::size_t before = drawingOf(prompter).undoStepCount();
  repeat(
      prompter, count, [](auto& drawing, std::uint32_t openGroup) { return drawing.undo(openGroup); },
      L"Everything has been undone");
  prompter.session().recording().undone(before - drawingOf(prompter).undoStepCount());
}

void redo(Prompter& prompter, int count) {
  const std::size_t before = drawingOf(prompter).undoStepCount();
  repeat(
      prompter, count, [](auto& drawing, std::uint32_t openGroup) { return drawing.redo(openGroup); },
      L"Nothing to redo");
  prompter.session().recording().redone(drawingOf(prompter).undoStepCount() - before);
}

/// Nothing when the user cancelled.
std::optional<int> askCount(Prompter& prompter, std::wstring_view prompt) {
  Limits limits;
  limits.bits = RSG_NOZERO | RSG_NONEG;
  const auto count = prompter.integer(prompt, limits);
  if (count.outcome == Outcome::Cancel) return std::nullopt;
  return count ? count.value : 1;
}

void undoOnce(Prompter& prompter) { undo(prompter, 1); }
void redoOnce(Prompter& prompter) { redo(prompter, 1); }

void undoMany(Prompter& prompter) {
  if (const auto count = askCount(prompter, L"Enter the number of operations to undo <1>: ")) undo(prompter, *count);
}

void redoMany(Prompter& prompter) {
  if (const auto count = askCount(prompter, L"Enter the number of actions to redo <1>: ")) redo(prompter, *count);
}

void erase(Prompter& prompter) {
  std::size_t inUse = 0;
  for (Slot* slot : selectedObjects(prompter, false)) {
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
    {L"MREDO", ACRX_CMD_NO_UNDO_MARKER, redoMany, L"repeats a number of commands that were taken back"},
    {L"REGEN", ACRX_CMD_NO_UNDO_MARKER, regen, L"draws anew"},
    {L"REGENALL", ACRX_CMD_NO_UNDO_MARKER, regen, L"the same for all views"},
    {L"ERASE", ACRX_CMD_USEPICKSET, erase, L"erases objects"},
    {L"SELECT", ACRX_CMD_NO_UNDO_MARKER, select, L"selects objects for the answer P of the next selection"},
    {L"SETVAR", ACRX_CMD_TRANSPARENT, setVariable,
     L"shows and sets system variables; a variable's name alone does too"},
};

}  // namespace

std::span<const HostCommand> editCommands() { return kCommands; }

std::vector<Slot*> selectedObjects(Prompter& prompter, bool skipLocked) {
  Session& session = prompter.session();
  if (session.runner().mayTakePickfirst()) {
    std::vector<Slot*> before = session.takePickfirst();
    const auto isLocked = [&session](const Slot* entity) { return session.finder().layerState(*entity).locked; };
    if (skipLocked) tellLocked(session, std::erase_if(before, isLocked));
    if (!before.empty()) return before;
  }
  SelectOptions options;
  options.skipLocked = skipLocked;
  return prompter.select(options).value;
}

void addHostCommands(CommandStack& commands) {
  for (const auto& group : {fileCommands(), editCommands(), changeCommands(), drawCommands(), textCommands(),
                            layerCommands(), inspectCommands(), measureCommands(), dialogCommands(), helpCommands()}) {
    for (const HostCommand& command : group)
      commands.addBuiltIn(command.name, command.flags, command.handler, command.help);
  }
  static constexpr const wchar_t* kAliases[][2] = {
      {L"E", L"ERASE"},    {L"L", L"LINE"},     {L"PL", L"PLINE"},  {L"LA", L"LAYER"}, {L"LT", L"LINETYPE"},
      {L"LI", L"LIST"},    {L"LO", L"LAYOUT"},  {L"RE", L"REGEN"},  {L"Z", L"ZOOM"},   {L"SET", L"SETVAR"},
      {L"SCR", L"SCRIPT"}, {L"SAVE", L"QSAVE"}, {L"EXIT", L"QUIT"}, {L"?", L"HELP"},   {L"M", L"MOVE"},
      {L"CO", L"COPY"},    {L"CP", L"COPY"},    {L"RO", L"ROTATE"}, {L"J", L"JOIN"},   {L"CH", L"CHPROP"},
      {L"T", L"TEXT"},     {L"DT", L"TEXT"},    {L"DI", L"DIST"},   {L"AA", L"AREA"},  {L"SAVES", L"SAVESCRIPT"},
  };
  for (const auto& [alias, name] : kAliases) commands.addAlias(alias, name);
}

}  // namespace host::editor

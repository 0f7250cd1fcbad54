// Commands about files: drawings, modules, scripts.
#include "Dxf/DxfFile.h"
#include "Editor/Commands/HostCommands.h"
#include "Editor/ScriptInput.h"
#include "Editor/Selection/Spaces.h"
#include "Editor/Session/Session.h"
#include "Platform/Paths.h"
#include "Text/Text.h"

namespace host::editor {
namespace {

constexpr std::size_t kDeepestScripts = 16;

std::wstring wide(const std::filesystem::path& path) { return text::fromUtf8(path.string()); }

/// A path as typed: "~" is no shell here, quotes were taken off by the input.
std::filesystem::path typedPath(const std::wstring& text) {
  std::size_t begin = 0, end = text.size();
  while (begin < end && text[begin] == L' ') ++begin;
  while (end > begin && text[end - 1] == L' ') --end;
  return platform::pathOf(text::toUtf8(text.substr(begin, end - begin)));
}

/// Nothing when the user cancelled, or gave no name, which has been refused.
std::optional<std::filesystem::path> askFile(Prompter& prompter, std::wstring_view prompt) {
  const auto name = prompter.text(prompt);
  if (name.outcome == Outcome::Cancel) return std::nullopt;
  std::filesystem::path typed = typedPath(name.value);
  if (!typed.empty()) return typed;
  prompter.refuse(L"A file name is needed.");
  return std::nullopt;
}

void open(Prompter& prompter) {
  const auto typed = askFile(prompter, L"Enter name of drawing to open: ");
  if (!typed) return;
  std::filesystem::path file = HostServices::find(*typed, nullptr);
  if (file.empty()) file = *typed;
  if (const Result<> opened = prompter.session().openDrawing(file); !opened) prompter.fail(opened.problem());
}

void createDrawing(Prompter& prompter) {
  if (const Result<> made = prompter.session().newDrawing(); !made) prompter.fail(made.problem());
}

/// Asks the user whether to replace a file that another program has changed.
bool mayReplace(Prompter& prompter, const std::filesystem::path& file) {
  Limits limits;
  limits.keywords = Keywords(L"Yes No");
  const auto reply = prompter.keyword(
      wide(file.filename()) +
          L" has been changed by somebody else since it was opened. Replace it all the same? [Yes/No] <N>: ",
      limits);
  return reply.outcome == Outcome::Keyword && reply.keyword == L"Yes";
}

void saveTo(Prompter& prompter, Document& document, const std::filesystem::path& file) {
  auto changed = Session::ChangedFile::Refuse;
  if (prompter.session().isInteractive() && document.isOf(file) && document.isChangedOutside()) {
    if (!mayReplace(prompter, file)) {
      prompter.line(wide(file) + L" was not saved; SAVEAS saves under another name.");
      return;
    }
    changed = Session::ChangedFile::Replace;
  }
  if (const Result<> saved = prompter.session().saveDrawing(document, file, changed); !saved) {
    prompter.fail(saved.problem());
    return;
  }
  if (file != document.file()) document.setFile(file);
  document.stamp = FileStamp(document.file());
  document.drawing().setUnmodified();
  prompter.line(L"Saved " + wide(file));
}

void saveAs(Prompter& prompter) {
  Document& document = *prompter.session().documents().current();
  const std::wstring shown = document.fileName();
  const auto name = prompter.text(L"Save drawing as <" + shown + L">: ");
  if (name.outcome == Outcome::Cancel) return;
  std::filesystem::path file = name ? typedPath(name.value) : document.file();
  if (file.empty()) {
    prompter.refuse(L"The drawing needs a file name.");
    return;
  }
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) {
    prompter.fail(Code::OutputRefused, wide(file) + L": is a folder; a drawing needs a file name");
    return;
  }
  std::wstring extension = text::folded(wide(file.extension()));
  if (extension.empty()) {
    file += ".dxf";
    extension = L".dxf";
  }
  if (extension != L".dxf") {
    prompter.fail(Code::OutputRefused, wide(file) + L": drawings are saved as DXF; the name must end in .dxf");
    return;
  }
  saveTo(prompter, document, fullPath(file));
}

void quickSave(Prompter& prompter) {
  Document& document = *prompter.session().documents().current();
  const std::wstring extension = text::folded(wide(document.file().extension()));
  if (document.file().empty() || extension != L".dxf") {
    saveAs(prompter);
  } else {
    saveTo(prompter, document, document.file());
  }
}

/// Offers to save a changed drawing; false when the user wants to stay or saving failed.
bool maySaveAndLeave(Prompter& prompter, Document& document) {
  if (!document.drawing().isModified()) return true;
  Limits limits;
  limits.keywords = Keywords(L"Yes No Cancel");
  const std::filesystem::path name =
      platform::pathOf(document.fileName() != nullptr ? text::toUtf8(document.fileName()) : "");
  const auto reply = prompter.keyword(L"Save changes to " + wide(name.filename()) + L"? [Yes/No/Cancel] <Y>: ", limits);
  const bool isYes = reply.outcome == Outcome::Enter || reply.keyword == L"Yes";
  if (isYes) quickSave(prompter);
  return isYes ? !document.drawing().isModified() : reply.keyword == L"No";
}

/// What scripts are asked in its place.
bool mayDiscard(Prompter& prompter) {
  Limits limits;
  limits.keywords = Keywords(L"Yes No");
  const auto reply = prompter.keyword(L"Really want to discard all changes to drawing? [Yes/No] <N>: ", limits);
  return reply.outcome == Outcome::Keyword && reply.keyword == L"Yes";
}

void closeCurrent(Prompter& prompter) {
  Session& session = prompter.session();
  Document* const document = session.documents().current();
  if (document == nullptr) {
    prompter.refuse(L"No drawing is open.");
    return;
  }
  const bool mayLeave = session.isInteractive() ? maySaveAndLeave(prompter, *document)
                                                : !document->drawing().isModified() || mayDiscard(prompter);
  if (mayLeave) session.closeDocument(*document);
}

void quit(Prompter& prompter) {
  Session& session = prompter.session();
  bool isModified = false;
  for (const auto& document : session.documents().all()) {
    if (!document->drawing().isModified()) continue;
    isModified = true;
    if (!session.isInteractive()) continue;
    session.documents().activate(*document);
    if (!maySaveAndLeave(prompter, *document)) return;
  }
  session.setQuitting(session.isInteractive() || !isModified || mayDiscard(prompter));
}

void arxList(Prompter& prompter) {
  const auto& modules = prompter.session().modules().all();
  if (modules.empty()) prompter.line(L"No modules are loaded.");
  for (const auto& module : modules)
    prompter.line(module->name + (module->locked ? L"  (locked)" : L"") + L"  " + wide(module->file));
}

void arx(Prompter& prompter) {
  Session& session = prompter.session();
  Limits limits;
  limits.keywords = Keywords(L"? Load Unload LIst Commands");
  const auto option = prompter.keyword(L"Enter an option [?/Load/Unload/LIst/Commands]: ", limits);
  if (option.outcome != Outcome::Keyword) return;
  if (option.keyword == L"?" || option.keyword == L"LIst") {
    arxList(prompter);
  } else if (option.keyword == L"Commands") {
    for (const std::wstring& name : session.commands().names()) prompter.line(name);
  } else {
    const bool isLoad = option.keyword == L"Load";
    const auto typed = askFile(prompter, isLoad ? L"Enter module file name: " : L"Enter module name to unload: ");
    if (!typed) return;
    const std::filesystem::path found = isLoad ? HostServices::find(*typed, nullptr) : std::filesystem::path();
    const Result<> result =
        isLoad ? session.modules().load(found.empty() ? *typed : found) : session.modules().unload(wide(*typed));
    if (result) {
      prompter.line(wide(*typed) + (isLoad ? L" loaded." : L" unloaded."));
    } else {
      prompter.refuse(text::fromUtf8(result.message()));
    }
  }
}

/// Lines come from the file from now on.
void runScript(Prompter& prompter, const std::filesystem::path& file) {
  Session& session = prompter.session();
  if (session.input().depth() >= kDeepestScripts) {
    prompter.refuse(L"Scripts call one another too deeply.");
    return;
  }
  std::optional<Problem> remark;
  Result<std::unique_ptr<ScriptInput>> input = ScriptInput::fromFile(file, remark);
  if (!input) {
    prompter.refuse(text::fromUtf8(input.message()));
    return;
  }
  if (remark) session.reportProblem(*remark);
  session.pushScript(file, std::move(input.value()));
}

void script(Prompter& prompter) {
  auto typed = askFile(prompter, L"Enter script file name: ");
  if (!typed) return;
  std::filesystem::path found = HostServices::find(*typed, nullptr);
  if (found.empty() && typed->extension().empty()) found = HostServices::find(*typed += ".scr", nullptr);
  if (found.empty()) {
    prompter.refuse(L"The script " + wide(*typed) + L" cannot be read.");
    return;
  }
  runScript(prompter, found);
}

void saveScript(Prompter& prompter) {
  Session& session = prompter.session();
  const auto typed = askFile(prompter, L"Enter name of script to save: ");
  if (!typed) return;
  std::filesystem::path file = *typed;
  if (file.extension().empty()) file += ".scr";
  const Document& document = *session.documents().current();
  const std::string name = platform::pathOf(text::toUtf8(document.fileName())).filename().string();
  for (const auto& open : session.documents().all()) {
    if (!open->isOf(file)) continue;
    prompter.fail(problemOf(Code::OutputRefused, file.string(), "this drawing is open"));
    return;
  }
  const std::string script = document.recording.script("What was done with " + name);
  if (const Result<> written = dxf::writeFileWhole(file, script); !written) {
    prompter.fail(written.problem());
    return;
  }
  prompter.line(L"Saved " + wide(file));
}

void delay(Prompter& prompter) {
  Limits limits;
  limits.bits = RSG_NONULL | RSG_NONEG;
  // A script without an audience need not wait.
  prompter.integer(L"Delay time in milliseconds: ", limits);
}

void repeatScript(Prompter& prompter) {
  Session& session = prompter.session();
  const bool isAfterScript = session.input().scriptGroup().number == 0 && !session.lastScript().empty();
  if (isAfterScript) {
    runScript(prompter, session.lastScript());
  } else if (session.isInteractive()) {
    prompter.refuse(L"No script has been run yet.");
  } else {
    prompter.refuse(L"It would repeat this script without end; RSCRIPT belongs behind a SCRIPT command.");
  }
}

void noResume(Prompter& prompter) { prompter.line(L"No script was interrupted: RESUME does nothing."); }

constexpr HostCommand kCommands[] = {
    {L"OPEN", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER, open, L"opens a drawing beside those that are open"},
    {L"NEW", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER, createDrawing, L"makes an empty drawing"},
    {L"CLOSE", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER, closeCurrent, L"closes the current drawing"},
    {L"QSAVE", ACRX_CMD_NO_UNDO_MARKER, quickSave, L"saves the drawing in its file"},
    {L"SAVEAS", ACRX_CMD_NO_UNDO_MARKER, saveAs, L"saves the drawing in another file"},
    {L"QUIT", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER, quit, L"leaves the program, asking about changes"},
    {L"ARX", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER, arx, L"loads, unloads and lists modules and their commands"},
    {L"SCRIPT", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER | ACRX_CMD_TRANSPARENT, script,
     L"runs a file of commands and answers; one U takes all of it back"},
    {L"SAVESCRIPT", ACRX_CMD_NO_UNDO_MARKER, saveScript,
     L"saves the commands and answers since the drawing was opened as a script"},
    {L"DELAY", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER | ACRX_CMD_TRANSPARENT, delay,
     L"waits in other hosts; here it only takes its number"},
    {L"RSCRIPT", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER, repeatScript, L"runs the last script again"},
    {L"RESUME", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER | ACRX_CMD_TRANSPARENT, noResume,
     L"does nothing: no script is interrupted here"},
};

}  // namespace

std::span<const HostCommand> fileCommands() { return kCommands; }

}  // namespace host::editor

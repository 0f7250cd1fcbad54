// Commands about files: drawings, modules, scripts.
#include "Editor/HostCommands.h"
#include "Editor/ScriptInput.h"
#include "Editor/Session.h"
#include "Editor/Spaces.h"
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
  return text::toUtf8(text.substr(begin, end - begin));
}

void open(Prompter& prompter) {
  const auto name = prompter.text(L"Enter name of drawing to open: ");
  if (!name) return;
  const std::filesystem::path typed = typedPath(name.value);
  std::filesystem::path file = HostServices::find(typed, nullptr);
  if (file.empty()) file = typed;
  if (const Result result = prompter.session().openDrawing(file); !result)
    prompter.fail(result.status, text::fromUtf8(result.message));
}

void createDrawing(Prompter& prompter) {
  if (const Result result = prompter.session().newDrawing(); !result)
    prompter.fail(result.status, text::fromUtf8(result.message));
}

void saveTo(Prompter& prompter, Document& document, const std::filesystem::path& file) {
  if (const Result result = prompter.session().saveDrawing(document, file); !result) {
    prompter.fail(result.status, text::fromUtf8(result.message));
    return;
  }
  if (file != document.file()) document.setFile(file);
  document.drawing().setUnmodified();
  prompter.line(L"Saved " + wide(file));
}

void saveAs(Prompter& prompter) {
  Document& document = *prompter.session().documents.current();
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
    prompter.fail(RunStatus::OutputFailed, wide(file) + L": is a folder; a drawing needs a file name");
    return;
  }
  std::wstring extension = text::folded(wide(file.extension()));
  if (extension.empty()) {
    file += ".dxf";
    extension = L".dxf";
  }
  if (extension != L".dxf") {
    prompter.fail(RunStatus::OutputFailed, wide(file) + L": drawings are saved as DXF; the name must end in .dxf");
    return;
  }
  saveTo(prompter, document, std::filesystem::absolute(file, error).lexically_normal());
}

void quickSave(Prompter& prompter) {
  Document& document = *prompter.session().documents.current();
  const std::wstring extension = text::folded(wide(document.file().extension()));
  if (document.file().empty() || extension != L".dxf") {
    saveAs(prompter);
  } else {
    saveTo(prompter, document, document.file());
  }
}

void closeCurrent(Prompter& prompter) {
  Session& session = prompter.session();
  Document* const document = session.documents.current();
  if (document == nullptr) {
    prompter.refuse(L"No drawing is open.");
    return;
  }
  session.closeDocument(*document);
}

/// Offers to save what was changed; false when the user wants to stay or saving failed.
bool maySaveAndLeave(Prompter& prompter) {
  Session& session = prompter.session();
  Limits limits;
  limits.keywords = Keywords(L"Yes No Cancel");
  for (const auto& document : session.documents.all()) {
    if (!document->drawing().isModified()) continue;
    session.documents.setCurrent(document.get());
    const std::filesystem::path name = document->fileName() != nullptr ? text::toUtf8(document->fileName()) : "";
    const auto reply =
        prompter.keyword(L"Save changes to " + wide(name.filename()) + L"? [Yes/No/Cancel] <Y>: ", limits);
    const bool isYes = reply.outcome == Outcome::Enter || reply.keyword == L"Yes";
    if (isYes) quickSave(prompter);
    const bool isSaved = isYes && !document->drawing().isModified();
    if (!isSaved && reply.keyword != L"No") return false;
  }
  return true;
}

void quit(Prompter& prompter) {
  Session& session = prompter.session();
  if (session.isInteractive()) {
    session.quitRequested = maySaveAndLeave(prompter);
    return;
  }
  bool isModified = false;
  for (const auto& document : session.documents.all()) isModified = isModified || document->drawing().isModified();
  if (isModified) {
    Limits limits;
    limits.keywords = Keywords(L"Yes No");
    const auto reply = prompter.keyword(L"Really want to discard all changes to drawing? [Yes/No] <N>: ", limits);
    if (reply.outcome != Outcome::Keyword || reply.keyword != L"Yes") return;
  }
  session.quitRequested = true;
}

void arxList(Prompter& prompter) {
  const auto& modules = prompter.session().modules.all();
  if (modules.empty()) prompter.line(L"No modules are loaded.");
  for (const auto& module : modules)
    prompter.line(module->name + (module->locked ? L"  (locked)" : L"") + L"  " + wide(module->file));
}

void arx(Prompter& prompter) {
  Session& session = prompter.session();
  Limits limits;
  limits.keywords = Keywords(L"? Load Unload Commands");
  const auto option = prompter.keyword(L"Enter an option [?/Load/Unload/Commands]: ", limits);
  if (option.outcome != Outcome::Keyword) return;
  Result result;
  if (option.keyword == L"?") {
    arxList(prompter);
  } else if (option.keyword == L"Commands") {
    for (const std::wstring& name : session.commands.names()) prompter.line(name);
  } else {
    const bool isLoad = option.keyword == L"Load";
    const auto name = prompter.text(isLoad ? L"Enter module file name: " : L"Enter module name to unload: ");
    if (!name) return;
    if (isLoad) {
      const std::filesystem::path typed = typedPath(name.value);
      const std::filesystem::path found = HostServices::find(typed, nullptr);
      result = session.modules.load(found.empty() ? typed : found);
    } else {
      result = session.modules.unload(wide(typedPath(name.value)));
    }
    if (result) {
      prompter.line(wide(typedPath(name.value)) + (isLoad ? L" loaded." : L" unloaded."));
    } else {
      prompter.refuse(text::fromUtf8(result.message));
    }
  }
}

void script(Prompter& prompter) {
  Session& session = prompter.session();
  const auto name = prompter.text(L"Enter script file name: ");
  if (!name) return;
  std::filesystem::path typed = typedPath(name.value);
  std::filesystem::path found = HostServices::find(typed, nullptr);
  if (found.empty() && typed.extension().empty()) found = HostServices::find(typed += ".scr", nullptr);
  if (session.inputDepth() >= kDeepestScripts) {
    prompter.refuse(L"Scripts call one another too deeply.");
    return;
  }
  std::unique_ptr<ScriptInput> input = found.empty() ? nullptr : ScriptInput::fromFile(found);
  if (input == nullptr) {
    prompter.refuse(L"The script " + wide(typed) + L" cannot be read.");
    return;
  }
  session.pushScript(std::move(input));
}

void delay(Prompter& prompter) {
  Limits limits;
  limits.bits = RSG_NONULL | RSG_NONEG;
  // A script that nobody watches need not wait.
  prompter.integer(L"Delay time in milliseconds: ", limits);
}

void noRepeat(Prompter& prompter) {
  prompter.refuse(L"RSCRIPT is not supported: it would repeat the script without end.");
}

void noResume(Prompter& prompter) { prompter.line(L"No script was interrupted: RESUME does nothing."); }

constexpr HostCommand kCommands[] = {
    {L"OPEN", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER, open},
    {L"NEW", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER, createDrawing},
    {L"CLOSE", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER, closeCurrent},
    {L"QSAVE", ACRX_CMD_NO_UNDO_MARKER, quickSave},
    {L"SAVEAS", ACRX_CMD_NO_UNDO_MARKER, saveAs},
    {L"QUIT", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER, quit},
    {L"ARX", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER, arx},
    {L"SCRIPT", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER | ACRX_CMD_TRANSPARENT, script},
    {L"DELAY", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER | ACRX_CMD_TRANSPARENT, delay},
    {L"RSCRIPT", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER, noRepeat},
    {L"RESUME", ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER | ACRX_CMD_TRANSPARENT, noResume},
};

}  // namespace

std::span<const HostCommand> fileCommands() { return kCommands; }

}  // namespace host::editor

#include "Editor/Session/Session.h"

#include <algorithm>

#include "Dxf/DxfFile.h"
#include "Editor/Commands/HostCommands.h"
#include "Text/Text.h"
#include "dbsymtb.h"

namespace host::editor {

std::atomic<bool> Session::interrupted = false;

Session& Session::instance() {
  static Session& session = *new Session;
  return session;
}

Session::Session() = default;

void Session::begin(ApplicationOptions options) {
  options_ = std::move(options);
  reserve_.emplace();
  transcript = {};
  transcript.setSink(options_.transcript);
  commands.dropBuiltIns();  // a former program's own commands among them
  addHostCommands(commands);
  failure_.reset();
  quitRequested = false;
  interrupted = false;
  documents.refuseLocks = false;
  services.forgetToldFiles();
  lastCommand_.clear();
  lastSkips_.clear();
  lastScript.clear();
  hasFailed_ = false;
  scriptCount_ = 0;
  untitledCount_ = 0;
}

void Session::end() {
  while (!documents.all().empty()) closeDocument(*documents.all().back());
  modules.unloadAll();
  transcript.finishLine();
  variables.reset();
  sets.clear();
  finder.forget();
  nextLimits = {};
  lastInput.clear();
  meter = {};
  options_ = {};
  transcript = {};
  reserve_.reset();
}

void Session::reportProblem(std::string_view sentence) const {
  if (options_.problem) options_.problem(sentence);
}

void Session::showNotice(std::wstring_view caption, std::wstring_view text) {
  // Boxes have room for lines in front; here the caption would stand alone on its own.
  while (text.starts_with(L'\n') || text.starts_with(L'\r')) text.remove_prefix(1);
  const std::wstring notice = L"[" + std::wstring(caption) + L"] " + std::wstring(text);
  transcript.line(notice);
  const std::vector<std::wstring>& captions = options_.failureCaptions;
  if (std::find(captions.begin(), captions.end(), caption) == captions.end()) return;
  // One sentence of the box's lines.
  std::wstring told;
  for (const wchar_t c : running_.empty() ? std::wstring_view(notice) : text) {
    const bool isSpace = c == L'\n' || c == L'\r' || c == L' ';
    if (!isSpace) told += c;
    if (isSpace && !told.empty() && told.back() != L' ') told += L' ';
  }
  while (told.ends_with(L' ')) told.pop_back();
  if (frames_.empty()) {
    reportProblem(text::toUtf8(told));
    return;
  }
  commandFailed_ = !running_.empty();
  if (commandFailed_) told = running_.back()->global + L" failed: " + told;
  fail(RunStatus::ScriptFailed, text::toUtf8(told), true);
}

void Session::regenerate() {
  if (options_.regenerate) options_.regenerate();
}

// ---- documents ------------------------------------------------------------------------------------------------------

Result Session::openDrawing(const std::filesystem::path& file) {
  // A second copy would be saved over the first.
  if (Document* const open = documents.documentOf(file)) {
    documents.activate(*open);
    transcript.line(text::fromUtf8(file.string()) + L" is open already; it is the current drawing now.");
    return {};
  }
  if (const Module* module = modules.blocksFurtherDrawing())
    return {RunStatus::DrawingUnreadable,
            file.string() + ": not opened: " + text::toUtf8(module->name) + " works with one open drawing only"};
  std::error_code error;
  if (std::filesystem::exists(file, error) && !std::filesystem::is_directory(file, error) &&
      !std::filesystem::is_regular_file(file, error))
    return {RunStatus::DrawingUnreadable, file.string() + ": this is no ordinary file"};
  try {
    return openFurther(file);
  } catch (const std::bad_alloc&) {
    return {RunStatus::DrawingUnreadable, file.string() + ": there is not enough memory to open the drawing"};
  }
}

Result Session::openFurther(const std::filesystem::path& file) {
  auto db = std::make_unique<AcDbDatabase>(false, true);
  const FileStamp stamp(file);  // before reading: what is changed meanwhile is a change
  const dxf::FileResult read = dxf::readDrawing(db->hostDatabase(), file);
  if (!read.ok) return {RunStatus::DrawingUnreadable, read.message};
  for (const database::Problem& problem : db->hostDatabase().problems()) {
    reportProblem(dxf::problemSentence(file.string(), problem));
  }
  auto document = std::make_unique<Document>(std::move(db));
  document->stamp = stamp;
  document->setFile(fullPath(file));
  if (document->drawing().headerInteger("$TILEMODE", 70).value_or(1) == 0) {
    const auto layouts = document->drawing().layouts();
    const database::BlockContents* const paper = document->drawing().findBlock(ACDB_PAPER_SPACE);
    for (const auto& [name, block] : layouts) {
      if (block == paper) document->currentLayout = name;
    }
  }
  Document& added = documents.add(std::move(document));
  modules.tellAll(AcRx::kLoadDwgMsg, &added);
  added.drawing().releaseObjects();
  return {};
}

Result Session::newDrawing() {
  if (const Module* module = modules.blocksFurtherDrawing())
    return {RunStatus::DrawingUnreadable,
            "no new drawing: " + text::toUtf8(module->name) + " works with one open drawing only"};
  auto document = std::make_unique<Document>(std::make_unique<AcDbDatabase>(true, false));
  document->setUntitled(++untitledCount_);
  document->drawing().setUnmodified();
  Document& added = documents.add(std::move(document));
  modules.tellAll(AcRx::kLoadDwgMsg, &added);
  added.drawing().releaseObjects();
  return {};
}

void Session::closeDocument(Document& document) {
  modules.tellAll(AcRx::kUnloadDwgMsg, &document);
  sets.forget(document.drawing());
  finder.forget();
  documents.close(document);
}

Result Session::saveDrawing(Document& document, const std::filesystem::path& file, ChangedFile changed) {
  std::error_code error;
  if (std::filesystem::is_directory(file, error))
    return {RunStatus::OutputFailed, file.string() + ": is a folder; a drawing needs a file name"};
  const bool isOwn = document.isOf(file);
  if (isOwn && changed == ChangedFile::Refuse && document.isChangedOutside())
    return {RunStatus::OutputFailed,
            file.string() + ": somebody else has changed the file since it was opened; it was not replaced"};
  for (const auto& other : documents.all()) {
    if (other.get() != &document && other->isOf(file))
      return {RunStatus::OutputFailed, file.string() + ": this drawing is open too; close it before it is replaced"};
  }
  modules.tellAll(AcRx::kSaveMsg, &document);
  const dxf::FileResult saved = dxf::saveDrawing(document.drawing(), file);
  if (!saved.ok) return {RunStatus::OutputFailed, saved.message};
  if (isOwn) document.stamp = FileStamp(document.file());
  return {};
}

const database::BlockContents& Session::currentSpace() const {
  const Document& document = *documents.current();
  for (const auto& [name, block] : document.drawing().layouts()) {
    if (block != nullptr && text::equalFolded(name, document.currentLayout)) return *block;
  }
  return document.drawing().modelSpace();
}

bool Session::switchLayout(std::wstring_view name) {
  Document& document = *documents.current();
  bool isModel = true;
  for (const auto& [layout, block] : document.drawing().layouts()) {
    if (block != nullptr && text::equalFolded(layout, name)) {
      document.currentLayout = layout;
      document.view = {};
      document.formerViews.clear();
      const int tileMode = isModel ? 1 : 0;
      if (document.drawing().headerInteger("$TILEMODE", 70).value_or(1) != tileMode)
        document.drawing().setHeaderInteger("$TILEMODE", 70, tileMode);
      const std::wstring switched = layout;
      editor.tell(&AcEditorReactor::layoutSwitched, switched.c_str());
      return true;
    }
    isModel = false;
  }
  return false;
}

// ---- input ----------------------------------------------------------------------------------------------------------

std::string Session::place() const {
  for (auto frame = frames_.rbegin(); frame != frames_.rend(); ++frame) {
    std::string here = frame->source->place();
    if (!here.empty()) return here;
  }
  return {};
}

bool Session::isInteractive() const { return !frames_.empty() && frames_.back().source->isInteractive(); }

bool Session::isStopping() const {
  return failure_.has_value() || interrupted || (!frames_.empty() && frames_.back().failed);
}

void Session::pushScript(std::unique_ptr<InputSource> script, std::wstring name) {
  InputFrame frame;
  frame.source = script.get();
  frame.owned = std::move(script);
  frame.undoGroup = {++scriptCount_, std::move(name)};
  frames_.push_back(std::move(frame));
}

database::UndoGroup Session::scriptGroup() const {
  for (const InputFrame& frame : frames_) {
    if (frame.undoGroup.number != 0) return frame.undoGroup;
  }
  return {};
}

Answer Session::pull(const Question& question) {
  while (!frames_.empty()) {
    Answer answer = frames_.back().source->next(question);
    // A script that another one called hands back to it; a run's own input and code's answers just end.
    if (answer.kind != Answer::Kind::End || frames_.back().owned == nullptr || frames_.back().fromCode) return answer;
    frames_.pop_back();
  }
  return {};
}

void Session::fail(RunStatus status, std::string sentence, bool isShown) {
  if (inputFromCode()) {
    transcript.line(text::fromUtf8(sentence));
    frames_.back().failed = true;
    return;
  }
  const std::string here = place();
  Result result{status, here.empty() ? std::move(sentence) : here + ": " + sentence};
  if (isInteractive()) {
    hasFailed_ = true;
    if (!isShown || !options_.problemsOnScreen) reportProblem(result.message);
    return;
  }
  if (!failure_) failure_ = std::move(result);
}

void Session::foundNothing(const std::wstring& where) {
  if (isInteractive() || inputFromCode()) return;
  const std::string here = place();
  std::string sentence = text::toUtf8(runningNames()) + ": nothing found " + text::toUtf8(where);
  if (options_.isStrict) {
    fail(RunStatus::ScriptFailed, std::move(sentence));
  } else {
    reportProblem(here.empty() ? sentence : here + ": " + sentence);
  }
}

bool Session::refuse(std::wstring_view sentence, RunStatus status) {
  transcript.line(sentence);
  if (isInteractive()) return true;
  if (inputFromCode()) {
    frames_.back().failed = true;
  } else {
    std::string message = text::toUtf8(sentence);
    if (const std::wstring names = runningNames(); !names.empty()) message = text::toUtf8(names) + ": " + message;
    fail(status, std::move(message));
  }
  return false;
}

void Session::answersRanOut(std::wstring_view waiting) {
  if (inputFromCode()) {
    frames_.back().failed = true;
    return;
  }
  std::string sentence = "the input ended while ";
  sentence += running_.empty() ? "the host" : text::toUtf8(running_.back()->global);
  std::wstring_view prompt = waiting;
  while (prompt.starts_with(L'\n')) prompt.remove_prefix(1);
  while (prompt.ends_with(L' ')) prompt.remove_suffix(1);
  sentence += " waited for an answer";
  if (!prompt.empty()) sentence += " to \"" + text::toUtf8(prompt) + "\"";
  const std::string here = place();
  // Even somebody who can be asked again is gone when the input has ended.
  if (!failure_) failure_ = Result{RunStatus::ScriptFailed, here.empty() ? sentence : here + ": " + sentence};
}

/// What a command does before it asks its user anything is preparation.
void Session::noteQuestion() {
  if (!running_.empty() && !changesWhenAsked_ && documents.current() != nullptr)
    changesWhenAsked_ = documents.current()->drawing().changeCount();
}

/// The user was asked and left, and the command has changed nothing since.
bool Session::wasLeftUntouched(const Document& document) const {
  return (cancelled_ || dialogCancelled_) && changesWhenAsked_ == document.drawing().changeCount();
}

Answer Session::ask(std::wstring_view prompt, AnswerForm form) {
  Answer cancel;
  cancel.kind = Answer::Kind::Cancel;
  for (;;) {
    if (isStopping()) return cancel;
    noteQuestion();
    transcript.prompt(prompt);
    Answer answer = pull({prompt, form});
    if (interrupted) answer.kind = Answer::Kind::Cancel;
    switch (answer.kind) {
      case Answer::Kind::End:
        answersRanOut(prompt);
        transcript.echo(L"*Cancel*");
        return cancel;
      case Answer::Kind::Cancel:
        transcript.echo(L"*Cancel*");
        cancelled_ = true;
        return answer;
      case Answer::Kind::Enter:
        transcript.echo({});
        break;
      case Answer::Kind::Point:
        transcript.echo(shownPoint(answer.point));
        break;
      case Answer::Kind::Entity:
        transcript.echo(L"<entity " + text::fromUtf8(text::formatHandle(answer.entity.handle())) + L">");
        break;
      case Answer::Kind::Text:
        transcript.echo(answer.text);
        break;
    }
    cancelled_ = dialogCancelled_ = false;
    const bool mayBeCommand = answer.kind == Answer::Kind::Text && form == AnswerForm::Word && !answer.quoted &&
                              answer.text.size() > 1 && answer.text.front() == L'\'';
    if (!mayBeCommand) return answer;
    const std::shared_ptr<Command> command = commands.find(answer.text);
    if (command == nullptr) return answer;
    if ((command->flags & ACRX_CMD_TRANSPARENT) == 0) {
      if (!refuse(L"** " + command->global + L" may not be invoked transparently **")) return cancel;
      continue;
    }
    const std::wstring resumed = running_.empty() ? std::wstring() : running_.back()->global;
    // The question stands apart from the command that interrupts it.
    const Limits limits = std::exchange(nextLimits, {});
    execute(command, true);
    nextLimits = limits;
    cancelled_ = false;
    if (!resumed.empty() && !isStopping()) transcript.line(L"Resuming " + resumed + L" command.");
  }
}

void Session::dialogOpened() {
  noteQuestion();
  dialogCancelled_ = false;
  skips.dialogOpened();
}

Answer Session::dialogLine(std::wstring_view what) {
  Answer cancel;
  cancel.kind = Answer::Kind::Cancel;
  if (isStopping()) return cancel;
  const std::wstring prompt = std::wstring(what) + L": ";
  transcript.prompt(prompt);
  Answer answer = pull({what, AnswerForm::Line});
  if (answer.kind != Answer::Kind::End) {
    transcript.echo(answer.kind == Answer::Kind::Cancel ? L"*Cancel*" : answer.text);
    return answer;
  }
  transcript.echo(L"*Cancel*");
  if (inputFromCode()) {
    frames_.back().failed = true;
  } else if (!failure_) {
    const std::string here = place();
    const std::string sentence = text::toUtf8(what) + " was left without an answer";
    failure_ = Result{RunStatus::ScriptFailed, here.empty() ? sentence : here + ": " + sentence};
  }
  return cancel;
}

}  // namespace host::editor

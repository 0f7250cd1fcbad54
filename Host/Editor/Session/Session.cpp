#include "Editor/Session/Session.h"

#include <algorithm>
#include <unordered_set>

#include "Dxf/DxfFile.h"
#include "Editor/Commands/HostCommands.h"
#include "Text/Text.h"
#include "dbsymtb.h"

namespace host::editor {

std::atomic<bool> Session::isInterrupted_ = false;

Session& Session::instance() {
  static Session& session = *new Session;
  return session;
}

Session::Session() = default;

Observer& Session::observer() const {
  static Observer nobody;
  return options_.observer != nullptr ? *options_.observer : nobody;
}

void Session::begin(ApplicationOptions options) {
  options_ = std::move(options);
  reserve_.emplace();
  transcript_ = {};
  if (options_.observer != nullptr)
    transcript_.setSink([front = options_.observer](std::wstring_view text) { front->print(text); });
  commands_.dropBuiltIns();  // a former program's own commands among them
  addHostCommands(commands_);
  runner_.reset();
  failure_.reset();
  hasFailed_ = false;
  isQuitting_ = false;
  isInterrupted_ = false;
  documents_.refuseLocks(false);
  services_.forgetToldFiles();
  lastScript_.clear();
  input_.restartCount();
  untitledCount_ = 0;
}

void Session::end() {
  while (!documents_.all().empty()) closeDocument(*documents_.all().back());
  modules_.unloadAll();
  transcript_.finishLine();
  variables_.reset();
  sets_.clear();
  finder_.forget();
  nextLimits_ = {};
  lastInput_.clear();
  meter_.forget();
  options_ = {};
  transcript_ = {};
  reserve_.reset();
}

// ---- drawings -------------------------------------------------------------------------------------------------------

Result<> Session::openDrawing(const std::filesystem::path& file) {
  // A second copy would be saved over the first.
  if (Document* const open = documents_.documentOf(file)) {
    documents_.activate(*open);
    transcript_.line(text::fromUtf8(file.string()) + L" is open already; it is the current drawing now.");
    return {};
  }
  const auto refused = [&file](std::string why) {
    return problemOf(Code::DrawingUnreadable, file.string(), std::move(why));
  };
  if (const Module* module = modules_.blocksFurtherDrawing())
    return refused("not opened: " + text::toUtf8(module->name) + " works with one open drawing only");
  std::error_code error;
  if (std::filesystem::exists(file, error) && !std::filesystem::is_directory(file, error) &&
      !std::filesystem::is_regular_file(file, error))
    return refused("this is no ordinary file");
  try {
    return openFurther(file);
  } catch (const std::bad_alloc&) {
    return refused("there is not enough memory to open the drawing");
  }
}

/// What a drawing counts as that is read from another file.
struct Session::Origin {
  std::filesystem::path file, name;
};

Result<> Session::openContent(const std::filesystem::path& content, const std::filesystem::path& file,
                              const std::filesystem::path& name) {
  const Origin origin{file, name};
  try {
    return openFurther(content, &origin);
  } catch (const std::bad_alloc&) {
    return problemOf(Code::DrawingUnreadable, content.string(), "there is not enough memory to open the drawing");
  }
}

Result<> Session::openFurther(const std::filesystem::path& file, const Origin* origin) {
  auto db = std::make_unique<AcDbDatabase>(false, true);
  const FileStamp stamp(file);  // before reading: what is changed meanwhile is a change
  if (Result<> read = dxf::readDrawing(db->hostDatabase(), file); !read) return read;
  for (Problem problem : db->hostDatabase().problems()) {
    problem.file = file.string();
    reportProblem(problem);
  }
  auto document = std::make_unique<Document>(std::move(db));
  if (origin == nullptr) {
    document->stamp = stamp;
    document->setFile(fullPath(file));
  } else if (!origin->file.empty()) {
    document->stamp = FileStamp(origin->file);
    document->setFile(fullPath(origin->file));
  } else {
    document->setUntitled(origin->name);
    document->contentFolder = fullPath(file).parent_path();
  }
  if (origin != nullptr) document->drawing().setModified();
  if (document->drawing().headerInteger("$TILEMODE", 70).value_or(1) == 0) {
    const auto layouts = document->drawing().layouts();
    const database::BlockContents* const paper = document->drawing().findBlock(ACDB_PAPER_SPACE);
    for (const auto& [name, block] : layouts) {
      if (block == paper) document->currentLayout = name;
    }
  }
  Document& added = documents_.add(std::move(document));
  modules_.tellAll(AcRx::kLoadDwgMsg, &added);
  added.drawing().releaseObjects();
  return {};
}

Result<> Session::newDrawing() {
  if (const Module* module = modules_.blocksFurtherDrawing())
    return problemOf(Code::DrawingUnreadable,
                     "no new drawing: " + text::toUtf8(module->name) + " works with one open drawing only");
  auto document = std::make_unique<Document>(std::make_unique<AcDbDatabase>(true, false));
  document->setUntitled(++untitledCount_);
  document->drawing().setUnmodified();
  Document& added = documents_.add(std::move(document));
  modules_.tellAll(AcRx::kLoadDwgMsg, &added);
  added.drawing().releaseObjects();
  return {};
}

void Session::closeDocument(Document& document) {
  modules_.tellAll(AcRx::kUnloadDwgMsg, &document);
  runner_.count().drawingCloses(document.drawing());
  sets_.forget(document.drawing());
  finder_.forget();
  documents_.close(document);
}

Result<> Session::saveDrawing(Document& document, const std::filesystem::path& file, ChangedFile changed) {
  const auto refused = [&file](std::string why) {
    return problemOf(Code::OutputRefused, file.string(), std::move(why));
  };
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) return refused("is a folder; a drawing needs a file name");
  const bool isOwn = document.isOf(file);
  if (isOwn && changed == ChangedFile::Refuse && document.isChangedOutside())
    return refused("somebody else has changed the file since it was opened; it was not replaced");
  for (const auto& other : documents_.all()) {
    if (other.get() != &document && other->isOf(file))
      return refused("this drawing is open too; close it before it is replaced");
  }
  modules_.tellAll(AcRx::kSaveMsg, &document);
  if (Result<> saved = dxf::saveDrawing(document.drawing(), file); !saved) return saved;
  if (isOwn) document.stamp = FileStamp(document.file());
  return {};
}

const database::BlockContents& Session::currentSpace() const {
  const Document& document = *documents_.current();
  for (const auto& [name, block] : document.drawing().layouts()) {
    if (block != nullptr && text::equalFolded(name, document.currentLayout)) return *block;
  }
  return document.drawing().modelSpace();
}

bool Session::switchLayout(std::wstring_view name) {
  Document& document = *documents_.current();
  bool isModel = true;
  for (const auto& [layout, block] : document.drawing().layouts()) {
    if (block != nullptr && text::equalFolded(layout, name)) {
      document.currentLayout = layout;
      document.view = document.screen = {};
      document.formerViews.clear();
      const int tileMode = isModel ? 1 : 0;
      if (document.drawing().headerInteger("$TILEMODE", 70).value_or(1) != tileMode)
        document.drawing().setHeaderInteger("$TILEMODE", 70, tileMode);
      const std::wstring switched = layout;
      editor_.tell(&AcEditorReactor::layoutSwitched, switched.c_str());
      observer().currentDrawingChanged();
      return true;
    }
    isModel = false;
  }
  return false;
}

void Session::setPickfirst(Document& document, std::vector<database::Slot*> entities) {
  if (entities.empty() && document.pickfirst.empty()) return;
  document.pickfirst = std::move(entities);
  observer().pickfirstChanged(document.pickfirst);
}

std::vector<database::Slot*> Session::takePickfirst(AfterUse after) {
  std::vector<database::Slot*> set = documents_.current()->pickfirst;
  if (after == AfterUse::Forget) setPickfirst(*documents_.current(), {});
  std::erase_if(set, [](const database::Slot* entity) { return entity->isErased(); });
  if (set.empty()) return set;
  documents_.current()->previousSelection = set;
  const std::unordered_set<const database::Slot*> known(set.begin(), set.end());
  const std::int64_t pickStyle = variables_.integer(L"PICKSTYLE");
  const bool isWhole = (pickStyle & 1) == 0 || std::all_of(set.begin(), set.end(), [&](database::Slot* entity) {
                         const std::vector<database::Slot*> group = finder_.withGroups(entity);
                         return std::all_of(group.begin(), group.end(),
                                            [&known](const database::Slot* each) { return known.contains(each); });
                       });
  recording().selectedBefore(set, isWhole, pickStyle);
  return set;
}

// ---- messages -------------------------------------------------------------------------------------------------------

void Session::reportProblem(const Problem& problem) const { observer().report(problem); }

void Session::showNotice(std::wstring_view caption, std::wstring_view text) {
  // Boxes have room for lines in front; here the caption would stand alone on its own.
  while (text.starts_with(L'\n') || text.starts_with(L'\r')) text.remove_prefix(1);
  const std::wstring notice = L"[" + std::wstring(caption) + L"] " + std::wstring(text);
  transcript_.line(notice);
  const std::vector<std::wstring>& captions = options_.failureCaptions;
  if (std::find(captions.begin(), captions.end(), caption) == captions.end()) return;
  // One sentence of the box's lines.
  const Command* const command = runner_.innermost();
  std::wstring told;
  for (const wchar_t c : command == nullptr ? std::wstring_view(notice) : text) {
    const bool isSpace = c == L'\n' || c == L'\r' || c == L' ';
    if (!isSpace) told += c;
    if (isSpace && !told.empty() && told.back() != L' ') told += L' ';
  }
  while (told.ends_with(L' ')) told.pop_back();
  if (input_.isEmpty()) {
    reportProblem(problemOf(Code::CommandFailed, text::toUtf8(told)));
    return;
  }
  if (command != nullptr) {
    runner_.commandFailed();
    told = command->global + L" failed: " + told;
  }
  fail(problemOf(Code::CommandFailed, text::toUtf8(told)), Shown::Yes);
}

// ---- how the run goes -----------------------------------------------------------------------------------------------

Problem Session::placed(Problem problem) const {
  Place here = input_.place();
  if (!here.isKnown()) return problem;
  return {problem.code, std::move(here.file), here.line, 0, problem.sentence()};
}

void Session::fail(Problem problem, Shown shown) {
  if (input_.isFromCode()) {
    transcript_.line(text::fromUtf8(problem.sentence()));
    input_.failCode();
    return;
  }
  recording().commandFailed();
  problem = placed(std::move(problem));
  if (isInteractive()) {
    hasFailed_ = true;
    if (shown == Shown::No || !options_.problemsOnScreen) reportProblem(problem);
    return;
  }
  if (!failure_) failure_ = std::move(problem);
}

void Session::failForGood(Problem problem) {
  if (!failure_) failure_ = placed(std::move(problem));
}

void Session::failForMemory(const Command* command) noexcept {
  if (failure_) return;
  try {
    std::string sentence = command != nullptr ? text::toUtf8(command->global) + ": " : std::string();
    sentence += "there is not enough memory";
    const bool isStep = command != nullptr && (command->flags & ACRX_CMD_NO_UNDO_MARKER) == 0;
    if (isStep) sentence += "; U takes back what the command did";
    failure_ = placed(problemOf(Code::MemoryEnded, std::move(sentence)));
  } catch (const std::bad_alloc&) {
    failure_ = problemOf(Code::MemoryEnded, "out of memory");  // so short that it needs none itself
  }
}

void Session::foundNothing(const std::wstring& where) {
  if (isInteractive() || input_.isFromCode()) return;
  runner_.count().foundNothing();
  Problem problem =
      problemOf(Code::NothingFound, text::toUtf8(runner_.names()) + ": nothing found " + text::toUtf8(where));
  if (options_.isStrict) {
    fail(std::move(problem));
  } else {
    reportProblem(placed(std::move(problem)));
  }
}

bool Session::refuse(std::wstring_view sentence, Code code) {
  recording().refused();
  transcript_.line(sentence);
  if (isInteractive()) return true;
  if (input_.isFromCode()) {
    input_.failCode();
  } else {
    std::string message = text::toUtf8(sentence);
    if (const std::wstring names = runner_.names(); !names.empty()) message = text::toUtf8(names) + ": " + message;
    fail(problemOf(code, std::move(message)));
  }
  return false;
}

// ---- questions ------------------------------------------------------------------------------------------------------

Recording& Session::recording() {
  Document* const document = documents_.current();
  return document != nullptr && !input_.isFromCode() ? document->recording : nobodysRecording_;
}

void Session::pushScript(const std::filesystem::path& file, std::unique_ptr<InputSource> script) {
  lastScript_ = file;
  input_.pushScript(std::move(script), L"SCRIPT " + text::fromUtf8(file.filename().string()));
}

void Session::answersRanOut(std::wstring_view waiting) {
  if (input_.isFromCode()) {
    input_.failCode();
    return;
  }
  const Command* const command = runner_.innermost();
  std::string sentence = "the input ended while ";
  sentence += command == nullptr ? "the host" : text::toUtf8(command->global);
  std::wstring_view prompt = waiting;
  while (prompt.starts_with(L'\n')) prompt.remove_prefix(1);
  while (prompt.ends_with(L' ')) prompt.remove_suffix(1);
  sentence += " waited for an answer";
  if (!prompt.empty()) sentence += " to \"" + text::toUtf8(prompt) + "\"";
  // A user who could be asked again is gone when the input has ended.
  failForGood(problemOf(Code::AnswerMissing, std::move(sentence)));
}

void Session::echo(const Answer& answer) {
  switch (answer.kind) {
    case Answer::Kind::End:
    case Answer::Kind::Cancel:
      transcript_.echo(L"*Cancel*");
      break;
    case Answer::Kind::Enter:
      transcript_.echo({});
      break;
    case Answer::Kind::Point:
      transcript_.echo(shownPoint(answer.point));
      break;
    case Answer::Kind::Entity:
      transcript_.echo(L"<entity " + text::fromUtf8(text::formatHandle(answer.entity.handle())) + L">");
      break;
    case Answer::Kind::Text:
      transcript_.echo(answer.text);
      break;
  }
}

Answer Session::ask(const Question& question) {
  Answer cancel;
  cancel.kind = Answer::Kind::Cancel;
  for (;;) {
    recording().asked(question.prompt, runner_.depth());
    if (isInterrupted_) runner_.interruptionHeard();
    if (isStopping()) {
      recording().answered(question, cancel);
      return cancel;
    }
    runner_.questionAsked();
    transcript_.prompt(question.prompt);
    Answer answer = input_.pull(question);
    if (isInterrupted_) {
      answer.kind = Answer::Kind::Cancel;
      runner_.interruptionHeard();
    }
    recording().answered(question, answer);
    if (answer.kind == Answer::Kind::End) answersRanOut(question.prompt);
    echo(answer);
    if (answer.kind == Answer::Kind::End) return cancel;
    if (answer.kind == Answer::Kind::Cancel) {
      runner_.questionCancelled();
      return answer;
    }
    runner_.questionAnswered();
    const bool mayBeCommand = answer.kind == Answer::Kind::Text && question.form == AnswerForm::Word &&
                              !answer.quoted && answer.text.size() > 1 && answer.text.front() == L'\'';
    if (!mayBeCommand) return answer;
    const std::shared_ptr<Command> command = commands_.find(answer.text);
    if (command == nullptr) return answer;
    if (!runInstead(command)) return cancel;
  }
}

bool Session::runInstead(const std::shared_ptr<Command>& command) {
  if ((command->flags & ACRX_CMD_TRANSPARENT) == 0)
    return refuse(L"** " + command->global + L" may not be invoked transparently **");
  const std::wstring resumed = runner_.innermost() == nullptr ? std::wstring() : runner_.innermost()->global;
  // The question stands apart from the command that interrupts it.
  Limits limits = takeNextLimits();
  runner_.runTransparently(command);
  nextLimits_ = std::move(limits);
  if (!resumed.empty() && !isStopping()) transcript_.line(L"Resuming " + resumed + L" command.");
  return true;
}

Answer Session::dialogLine(std::wstring_view what) {
  Answer cancel;
  cancel.kind = Answer::Kind::Cancel;
  recording().asked(what, runner_.depth());
  if (isStopping()) {
    recording().dialogCancelled(what);
    return cancel;
  }
  transcript_.prompt(std::wstring(what) + L": ");
  Question question;
  question.prompt = what;
  question.form = AnswerForm::Line;
  question.wanted = Wanted::Dialog;
  Answer answer = input_.pull(question);
  recording().answered(question, answer);
  if (answer.kind != Answer::Kind::End) {
    transcript_.echo(answer.kind == Answer::Kind::Cancel ? L"*Cancel*" : answer.text);
    return answer;
  }
  transcript_.echo(L"*Cancel*");
  if (input_.isFromCode()) {
    input_.failCode();
  } else {
    failForGood(problemOf(Code::AnswerMissing, text::toUtf8(what) + " was left without an answer"));
  }
  return cancel;
}

}  // namespace host::editor

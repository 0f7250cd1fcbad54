#include "Editor/Commands/CommandRunner.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cwctype>
#include <exception>
#include <new>
#include <utility>

#include "Editor/Session/Session.h"
#include "Hatching/Patterns.h"
#include "Text/Text.h"

namespace host::editor {
namespace {

constexpr std::size_t kDeepestNesting = 32;

/// What is only shown must not keep the next command from being read.
template <class Show>
void whereMemoryLasts(const Show& show) {
  try {
    show();
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): there is no memory to report it with
  }
}

std::string quoted(std::wstring_view text) { return "\"" + text::toUtf8(text) + "\""; }

/// Commands on files and programs, which a saved script leaves to its user, and those that record themselves what they
/// did.
bool isLeftOutOfScripts(const Command& command) {
  static constexpr const wchar_t* kNames[] = {L"OPEN",       L"NEW",    L"CLOSE",   L"QSAVE", L"SAVEAS", L"QUIT",
                                              L"SAVESCRIPT", L"SCRIPT", L"RSCRIPT", L"DELAY", L"RESUME", L"PICTURE",
                                              L"HELP",       L"U",      L"UNDO",    L"REDO",  L"MREDO",  L"SCREENSHOT"};
  return command.isBuiltIn() && std::any_of(std::begin(kNames), std::end(kNames), [&command](const wchar_t* name) {
           return text::equalFolded(command.global, name);
         });
}

/// Views, tooltips and variables: what is selected at rest stays so. Commands that use the selection take it.
bool leavesSelection(const Command& command) {
  return command.isBuiltIn() && (command.flags & ACRX_CMD_TRANSPARENT) != 0;
}

/// A control's number or the button that most dialogs have: what scripts say to dialogs, and no command is called.
bool worksDialogs(std::wstring_view name) {
  return parseWhole(name) || text::equalFolded(name, L"OK") || text::equalFolded(name, L"Cancel") ||
         text::equalFolded(name, L"double-click");
}

}  // namespace

void CommandRunner::reset() {
  lastCommand_.clear();
  lastSkips_.clear();
  count_ = {};
}

std::wstring CommandRunner::names() const {
  std::wstring names;
  for (const auto& command : running_) names += (names.empty() ? L"" : L"'") + command->global;
  return names;
}

bool CommandRunner::mayTakePickfirst() const {
  const Document* const document = session_.documents().current();
  if (running_.empty() || document == nullptr || document->pickfirst.empty()) return false;
  return (running_.back()->flags & ACRX_CMD_USEPICKSET) != 0 && session_.variables().integer(L"PICKFIRST") != 0;
}

Result<> CommandRunner::run(InputSource& input) {
  session_.takeFailure();
  session_.setQuitting(false);
  memoryEnds_ = 0;
  {
    InputStack::Scope scope(session_.input(), input);
    for (bool goesOn = true; goesOn;) {
      try {
        goesOn = runNext(input, scope);
      } catch (const std::bad_alloc&) {
        session_.failForMemory();
        constexpr int kMostInARow = 3;  // not even a line can be read
        goesOn = ++memoryEnds_ < kMostInARow;
      }
    }
  }
  whereMemoryLasts([&] { session_.transcript().finishLine(); });
  if (std::optional<Problem> failure = session_.takeFailure()) return std::move(*failure);
  return {};
}

bool CommandRunner::runNext(InputSource& input, InputStack::Scope& scope) {
  MemoryReserve::refill();
  if (Session::takeInterruption()) session_.failForGood(problemOf(Code::Interrupted, "interrupted"));
  if (session_.hasFailure() && input.isInteractive()) {
    session_.noteFailed();
    const Problem told = *session_.takeFailure();
    scope.dropScripts();
    whereMemoryLasts([&] { session_.reportProblem(told); });
  }
  if (session_.hasFailure() || session_.isQuitting()) return false;
  Question question;
  question.prompt = L"Command: ";
  question.wanted = Wanted::Command;
  whereMemoryLasts([&] { session_.transcript().prompt(question.prompt); });
  const Answer answer = session_.input().pull(question);
  if (answer.kind == Answer::Kind::End) return false;
  memoryEnds_ = 0;
  runTyped(answer);
  return true;
}

void CommandRunner::runTyped(const Answer& answer) {
  Document* const document = session_.documents().current();
  switch (answer.kind) {
    case Answer::Kind::Cancel:
      session_.transcript().echo(L"*Cancel*");
      if (document != nullptr) session_.setPickfirst(*document, {});
      return;
    case Answer::Kind::Enter:
      session_.transcript().echo({});
      // At a terminal Enter repeats; in a script a blank line between commands is just that.
      if (session_.isInteractive() && !lastCommand_.empty()) {
        if (const auto command = session_.commands().find(lastCommand_)) executeTyped(command, lastCommand_);
      }
      return;
    case Answer::Kind::Text:
      break;
    default:
      return;
  }
  session_.transcript().echo(answer.text);
  if (const auto command = session_.commands().find(answer.text)) {
    executeTyped(command, answer.text);
    if ((command->flags & ACRX_CMD_NOHISTORY) == 0) lastCommand_ = answer.text;
    return;
  }
  if (session_.variables().find(answer.text) != nullptr && document != nullptr) {
    namedVariable_ = answer.text;
    executeTyped(session_.commands().find(L".SETVAR"), answer.text);
    namedVariable_.clear();
    return;
  }
  reportUnknown(answer.text);
}

void CommandRunner::executeTyped(const std::shared_ptr<Command>& command, const std::wstring& typed) {
  Document* const document = session_.documents().current();
  if (document != nullptr) {
    if (isLeftOutOfScripts(*command)) {
      document->recording.silentCommandBegins();
    } else {
      document->recording.commandBegins(typed, document->drawing().changeCount());
    }
  }
  execute(command, false);
  if (document != nullptr && session_.documents().owns(document))
    document->recording.commandEnds(document->drawing().changeCount());
}

void CommandRunner::reportUnknown(std::wstring_view name) {
  if (name.starts_with(L'(')) {
    session_.transcript().line(L"Expressions in parentheses are no commands of this host.");
    session_.fail(problemOf(Code::CommandUnknown,
                            "expressions are not supported where a command is wanted: " + text::toUtf8(name)),
                  Session::Shown::Yes);
    return;
  }
  while (!name.empty() && std::wstring_view(L"'_-.").find(name.front()) != std::wstring_view::npos)
    name.remove_prefix(1);
  std::wstring hint;
  if (worksDialogs(name)) {
    hint = L"the line is for a dialog, and none is open" + (lastSkips_.empty() ? L"" : L"; " + lastSkips_);
  } else {
    for (const std::wstring& candidate : nearestNames(name, session_.commands().names()))
      hint += (hint.empty() ? L"nearest: " : L", ") + candidate;
  }
  std::wstring shownHint = hint;
  if (!hint.empty()) shownHint.front() = static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(hint.front())));
  session_.transcript().line(L"Unknown command \"" + std::wstring(name) + L"\"." +
                             (hint.empty() ? L"" : L"  " + shownHint + L"."));
  if (session_.input().isFromCode()) {
    session_.input().failCode();
  } else {
    session_.fail(problemOf(Code::CommandUnknown,
                            "unknown command " + quoted(name) + (hint.empty() ? "" : "; " + text::toUtf8(hint))),
                  Session::Shown::Yes);
  }
}

bool CommandRunner::mayRun(const Command& command) {
  if (running_.size() >= kDeepestNesting) return session_.refuse(L"Commands are nested too deeply.") && false;
  if (session_.documents().current() == nullptr) {
    if ((command.flags & ACRX_CMD_SESSION) != 0) return true;
    session_.refuse(L"No drawing is open: " + command.global + L" needs one.");
    return false;
  }
  const bool inModel = text::equalFolded(session_.documents().current()->currentLayout, L"Model");
  if (inModel && (command.flags & ACRX_CMD_NOTILEMODE) != 0) {
    session_.refuse(L"** Command not allowed in Model Tab **");
    return false;
  }
  if (!inModel && (command.flags & ACRX_CMD_NOPAPERSPACE) != 0) {
    session_.refuse(L"** Command not allowed in Paper Space **");
    return false;
  }
  return true;
}

void CommandRunner::callHandler(Command& command) noexcept {
  const auto failed = [&](const char* reason) {
    state_.hasFailed = true;
    try {
      session_.fail(problemOf(Code::CommandFailed, text::toUtf8(command.global) + " failed" + reason));
    } catch (const std::bad_alloc&) {
      session_.failForMemory(&command);
    }
  };
  ++handlerDepth_;
  try {
    const hatching::PatternMemory patterns;
    if (command.handler) {
      Prompter prompter(session_);
      command.handler(prompter);
    } else {
      command.function();
    }
  } catch (const CommandInterrupted&) {
    state_.isCancelled = true;
  } catch (const std::bad_alloc&) {
    state_.hasFailed = true;
    session_.failForMemory(&command);
  } catch (const std::exception& error) {
    std::array<char, 512> reason;
    std::snprintf(reason.data(), reason.size(), ": %s", error.what());
    failed(reason.data());
  } catch (...) {
    failed(" with an exception of an unknown kind");
  }
  --handlerDepth_;
}

void CommandRunner::atWork() {
  if (handlerDepth_ > 0 && Session::isInterrupted() && !isInterruptionHeard_) {
    isAbandoned_ = true;
    throw CommandInterrupted();
  }
  constexpr unsigned kLooksAtTheClock = 32;
  constexpr std::chrono::milliseconds kBeat(50);
  if (++pulses_ % kLooksAtTheClock != 0) return;
  const auto now = std::chrono::steady_clock::now();
  if (now - lastBeat_ < kBeat) return;
  lastBeat_ = now;
  session_.meter().repeat();
}

// ---- one command ----------------------------------------------------------------------------------------------------

void CommandRunner::questionAsked() {
  const Document* const document = session_.documents().current();
  if (!running_.empty() && !changesWhenAsked_ && document != nullptr)
    changesWhenAsked_ = document->drawing().changeCount();
}

void CommandRunner::dialogOpened() {
  questionAsked();
  state_.isDialogCancelled = false;
  skips_.dialogOpened();
}

/// The user was asked and left, and the command has changed nothing since.
bool CommandRunner::wasLeftUntouched(const Document& document) const {
  return (state_.isCancelled || state_.isDialogCancelled) && changesWhenAsked_ == document.drawing().changeCount();
}

/// What a command holds while it runs; all of it goes back however the command ends.
class CommandRunner::Running {
 public:
  Running(CommandRunner& runner, const std::shared_ptr<Command>& command, Document* document, bool isTransparent)
      : runner_(runner),
        command_(command),
        document_(document),
        isTransparent_(isTransparent),
        locks_(document != nullptr && (command->flags & ACRX_CMD_SESSION) == 0),
        watches_(runner.running_.empty() && document != nullptr),
        marksUndo_(watches_ && (command->flags & ACRX_CMD_NO_UNDO_MARKER) == 0) {
    if (marksUndo_) document_->drawing().beginUndoStep(command_->global, runner_.session_.input().scriptGroup());
    runner_.running_.push_back(command_);
    if (isTransparent_) ++runner_.transparentDepth_;
    // Commands of the document are given its write lock.
    if (locks_) ++document_->locks;
    if (watches_) document_->drawing().setObserver(&runner_.watch_);
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() {
    const bool isOpen = document_ != nullptr && runner_.session_.documents().owns(document_);
    if (watches_ && isOpen) document_->drawing().setObserver(nullptr);
    if (locks_ && isOpen && document_->locks > 0) --document_->locks;
    if (marksUndo_ && isOpen) endUndoStep();
    if (isTransparent_) --runner_.transparentDepth_;
    runner_.running_.pop_back();
    runner_.session_.setNextLimits({});
  }

 private:
  /// Plug-ins prepare a drawing at their first command. Left with Esc or Cancel it is as it was.
  void endUndoStep() {
    if (runner_.isAbandoned_) {
      try {
        document_->drawing().abandonUndoStep();
      } catch (const std::bad_alloc&) {
        document_->drawing().endUndoStep();
      }
      return;
    }
    if (!runner_.wasLeftUntouched(*document_) || command_->isBuiltIn()) {
      document_->drawing().endUndoStep();
      return;
    }
    try {
      document_->drawing().endUnusedUndoStep();
    } catch (const std::bad_alloc&) {
      document_->drawing().endUndoStep();
    }
  }

  CommandRunner& runner_;
  const std::shared_ptr<Command>& command_;
  Document* document_;
  bool isTransparent_, locks_, watches_, marksUndo_;
};

void CommandRunner::runTransparently(const std::shared_ptr<Command>& command) {
  execute(command, true);
  state_.isCancelled = false;
}

void CommandRunner::execute(const std::shared_ptr<Command>& command, bool transparent) {
  if (!mayRun(*command)) return;
  const bool isOutermost = running_.empty();
  Document* const document = session_.documents().current();
  if (isOutermost && document != nullptr && (command->flags & ACRX_CMD_USEPICKSET) == 0 && !leavesSelection(*command))
    session_.setPickfirst(*document, {});
  session_.setNextLimits({});
  state_ = {};
  if (isOutermost) {
    count_.commandBegins();
    changesWhenAsked_.reset();
    skips_.begin();
    lastSkips_.clear();
    isInterruptionHeard_ = isAbandoned_ = false;
    if (document != nullptr) watch_.begin(document->drawing(), session_.observer().wantsChanges());
  }
  const ACHAR* const name = command->global.c_str();
  const std::size_t knownProblems = document != nullptr ? document->drawing().problems().size() : 0;
  {
    const Running running(*this, command, document, transparent);
    session_.editor().tell(&AcEditorReactor::commandWillStart, name);
    callHandler(*command);
    if (isOutermost && document != nullptr && session_.documents().owns(document) && !isAbandoned_)
      reportSkips(*command, !state_.isCancelled && !state_.hasFailed && !session_.isStopping());
  }
  const bool isOpen = document != nullptr && session_.documents().owns(document);
  if (state_.hasFailed) {
    session_.editor().tell(&AcEditorReactor::commandFailed, name);
  } else if (state_.isCancelled || session_.hasFailure()) {
    session_.editor().tell(&AcEditorReactor::commandCancelled, name);
  } else {
    session_.editor().tell(&AcEditorReactor::commandEnded, name);
  }
  state_.hasFailed = false;
  if (isOutermost && isAbandoned_) {
    session_.transcript().line(command->global + L" was interrupted; the drawing is as it was.");
    session_.recording().commandInterrupted();
    isAbandoned_ = false;
  }
  if (isOutermost && isOpen) {
    if (!leavesSelection(*command)) session_.setPickfirst(*document, {});
    afterCommand(*document, knownProblems);
  }
}

/// What a command could not bring into the drawing.
void CommandRunner::reportNewProblems(const Document& document, std::size_t known) const {
  constexpr std::size_t kMostTold = 10;
  const std::vector<Problem>& problems = document.drawing().problems();
  for (std::size_t i = known; i < problems.size(); ++i) {
    if (i == known + kMostTold) {
      session_.reportProblem(
          problemOf(Code::FurtherProblems, "... and " + std::to_string(problems.size() - i) + " more like these"));
      break;
    }
    session_.reportProblem(problemOf(problems[i].code, problems[i].text));
  }
}

void CommandRunner::reportSkips(const Command& command, bool isWhole) {
  const std::vector<SkipReport::Skip> skips = skips_.skips(isWhole);
  if (skips.empty()) return;
  count_.leftOut(skips);
  const std::wstring sentence = skips_.sentence(command.global, skips);
  session_.transcript().line(sentence);
  lastSkips_ = command.global + L": " + sentence;
  if (session_.options().isStrict && !session_.isInteractive())
    session_.fail(problemOf(Code::ObjectsSkipped, text::toUtf8(lastSkips_)), Session::Shown::Yes);
}

void CommandRunner::afterCommand(Document& document, std::size_t knownProblems) {
  session_.meter().hide();
  const int locks = std::exchange(document.locks, 0);
  const int open = document.drawing().releaseObjects();
  const int lost = document.drawing().takeLostChanges();
  reportNewProblems(document, knownProblems);
  const auto report = [this](Code code, std::string sentence) {
    session_.reportProblem(problemOf(code, std::move(sentence)));
  };
  if (locks > 0)
    report(Code::LeftBehind, "a command left " + std::to_string(locks) + " document locks behind; they are released");
  if (open > 0) report(Code::LeftBehind, "a command left " + std::to_string(open) + " objects open; they are closed");
  if (lost > 0)
    report(Code::MemoryEnded, "there was not enough memory for the changes of " + std::to_string(lost) +
                                  (lost == 1 ? " object" : " objects") + "; U takes back the whole command");
  if (watch_.hasChanged(document.drawing())) tellChange(document);
}

void CommandRunner::tellChange(const Document& document) {
  if (session_.observer().wantsChanges()) session_.observer().drawingChanged(watch_.takeChange(document.drawing()));
}

int CommandRunner::runFromCode(std::unique_ptr<InputSource> answers) {
  if (transparentDepth_ > 0 || session_.documents().current() == nullptr || session_.isStopping()) return RTERROR;
  const InputStack::Scope scope(session_.input(), std::move(answers));
  Question question;
  question.prompt = L"Command: ";
  question.wanted = Wanted::Command;
  for (;;) {
    const Answer answer = session_.input().pull(question);
    if (answer.kind == Answer::Kind::End || session_.isStopping()) break;
    if (answer.kind != Answer::Kind::Text) continue;  // a surplus Enter
    session_.transcript().prompt(question.prompt);
    session_.transcript().echo(answer.text);
    if (const auto command = session_.commands().find(answer.text)) {
      execute(command, false);
    } else {
      reportUnknown(answer.text);
    }
    if (scope.isOver()) break;
  }
  state_.isCancelled = false;
  return scope.isOver() || session_.hasFailure() ? RTERROR : RTNORM;
}

}  // namespace host::editor

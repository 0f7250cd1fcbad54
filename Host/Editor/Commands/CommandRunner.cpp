// Running commands: typed, from code, inside one another.
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
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): nobody can be told then
  }
}

std::string quoted(std::wstring_view text) { return "\"" + text::toUtf8(text) + "\""; }

/// A control's number or the button that most dialogs have: what scripts say to dialogs, and no command is called.
bool worksDialogs(std::wstring_view name) {
  return parseWhole(name) || text::equalFolded(name, L"OK") || text::equalFolded(name, L"Cancel") ||
         text::equalFolded(name, L"double-click");
}

}  // namespace

std::wstring Session::runningNames() const {
  std::wstring names;
  for (const auto& command : running_) names += (names.empty() ? L"" : L"'") + command->global;
  return names;
}

bool Session::mayTakePickfirst() const {
  if (running_.empty() || documents.current() == nullptr || documents.current()->pickfirst.empty()) return false;
  return (running_.back()->flags & ACRX_CMD_USEPICKSET) != 0 && variables.integer(L"PICKFIRST") != 0;
}

/// Input that is read while it lives.
struct Session::InputScope {
  InputScope(Session& owner, InputFrame frame) : session(owner), base(owner.frames_.size()) {
    session.frames_.push_back(std::move(frame));
  }
  InputScope(const InputScope&) = delete;
  InputScope& operator=(const InputScope&) = delete;
  ~InputScope() { session.frames_.resize(base); }

  Session& session;
  std::size_t base;
};

Result Session::run(InputSource& input) {
  failure_.reset();
  quitRequested = false;
  endsInARow_ = 0;
  {
    InputFrame frame;
    frame.source = &input;
    const InputScope scope(*this, std::move(frame));
    for (bool goesOn = true; goesOn;) {
      try {
        goesOn = runNext(input, scope.base);
      } catch (const std::bad_alloc&) {
        memoryEnded();
        constexpr int kMostInARow = 3;  // not even a line can be read
        goesOn = ++endsInARow_ < kMostInARow;
      }
    }
  }
  whereMemoryLasts([&] { transcript.finishLine(); });
  return std::exchange(failure_, std::nullopt).value_or(Result{});
}

bool Session::runNext(InputSource& input, std::size_t base) {
  MemoryReserve::refill();
  if (interrupted.exchange(false) && !failure_) {
    const std::string here = place();
    failure_ = Result{RunStatus::ScriptFailed, here.empty() ? "interrupted" : here + ": interrupted"};
  }
  if (failure_ && input.isInteractive()) {
    hasFailed_ = true;
    const Result told = std::move(*failure_);
    failure_.reset();
    frames_.resize(base + 1);
    whereMemoryLasts([&] { reportProblem(told.message); });
  }
  if (failure_ || quitRequested) return false;
  constexpr std::wstring_view kPrompt = L"Command: ";
  whereMemoryLasts([&] { transcript.prompt(kPrompt); });
  const Answer answer = pull({kPrompt, AnswerForm::Word});
  if (answer.kind == Answer::Kind::End) return false;
  endsInARow_ = 0;
  runTyped(answer);
  return true;
}

void Session::memoryEnded(const Command* command) noexcept {
  if (failure_) return;
  try {
    std::string sentence = place();
    if (!sentence.empty()) sentence += ": ";
    if (command != nullptr) sentence += text::toUtf8(command->global) + ": ";
    sentence += "there is not enough memory";
    const bool isStep = command != nullptr && (command->flags & ACRX_CMD_NO_UNDO_MARKER) == 0;
    if (isStep) sentence += "; U takes back what the command did";
    failure_ = Result{RunStatus::ScriptFailed, std::move(sentence)};
  } catch (const std::bad_alloc&) {
    failure_ = Result{RunStatus::ScriptFailed, "out of memory"};  // so short that it needs none itself
  }
}

void Session::runTyped(const Answer& answer) {
  switch (answer.kind) {
    case Answer::Kind::Cancel:
      transcript.echo(L"*Cancel*");
      if (documents.current() != nullptr) documents.current()->pickfirst.clear();
      return;
    case Answer::Kind::Enter:
      transcript.echo({});
      // At a terminal Enter repeats; in a script a blank line between commands is just that.
      if (isInteractive() && !lastCommand_.empty()) {
        if (const auto command = commands.find(lastCommand_)) execute(command, false);
      }
      return;
    case Answer::Kind::Text:
      break;
    default:
      return;
  }
  transcript.echo(answer.text);
  if (const auto command = commands.find(answer.text)) {
    execute(command, false);
    if ((command->flags & ACRX_CMD_NOHISTORY) == 0) lastCommand_ = answer.text;
    return;
  }
  if (variables.find(answer.text) != nullptr && documents.current() != nullptr) {
    pendingVariable = answer.text;
    execute(commands.find(L".SETVAR"), false);
    pendingVariable.clear();
    return;
  }
  reportUnknown(answer.text);
}

void Session::reportUnknown(std::wstring_view name) {
  if (name.starts_with(L'(')) {
    transcript.line(L"Expressions in parentheses are no commands of this host.");
    fail(RunStatus::ScriptFailed, "expressions are not supported where a command is wanted: " + text::toUtf8(name),
         true);
    return;
  }
  while (!name.empty() && std::wstring_view(L"'_-.").find(name.front()) != std::wstring_view::npos)
    name.remove_prefix(1);
  std::wstring hint;
  if (worksDialogs(name)) {
    hint = L"the line is for a dialog, and none is open" + (lastSkips_.empty() ? L"" : L"; " + lastSkips_);
  } else {
    for (const std::wstring& near : nearestNames(name, commands.names()))
      hint += (hint.empty() ? L"nearest: " : L", ") + near;
  }
  std::wstring shownHint = hint;
  if (!hint.empty()) shownHint.front() = static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(hint.front())));
  transcript.line(L"Unknown command \"" + std::wstring(name) + L"\"." +
                  (hint.empty() ? L"" : L"  " + shownHint + L"."));
  if (inputFromCode()) {
    frames_.back().failed = true;
  } else {
    fail(RunStatus::ScriptFailed, "unknown command " + quoted(name) + (hint.empty() ? "" : "; " + text::toUtf8(hint)),
         true);
  }
}

bool Session::mayRun(const Command& command) {
  if (running_.size() >= kDeepestNesting) return refuse(L"Commands are nested too deeply.") && false;
  if (documents.current() == nullptr) {
    if ((command.flags & ACRX_CMD_SESSION) != 0) return true;
    refuse(L"No drawing is open: " + command.global + L" needs one.");
    return false;
  }
  const bool inModel = text::equalFolded(documents.current()->currentLayout, L"Model");
  if (inModel && (command.flags & ACRX_CMD_NOTILEMODE) != 0) {
    refuse(L"** Command not allowed in Model Tab **");
    return false;
  }
  if (!inModel && (command.flags & ACRX_CMD_NOPAPERSPACE) != 0) {
    refuse(L"** Command not allowed in Paper Space **");
    return false;
  }
  return true;
}

void Session::callHandler(Command& command) noexcept {
  const auto failed = [&](const char* reason) {
    commandFailed_ = true;
    try {
      fail(RunStatus::ScriptFailed, text::toUtf8(command.global) + " failed" + reason);
    } catch (const std::bad_alloc&) {
      memoryEnded(&command);
    }
  };
  try {
    const hatching::PatternMemory patterns;
    if (command.handler) {
      Prompter prompter(*this);
      command.handler(prompter);
    } else {
      command.function();
    }
  } catch (const std::bad_alloc&) {
    commandFailed_ = true;
    memoryEnded(&command);
  } catch (const std::exception& error) {
    std::array<char, 512> reason;
    std::snprintf(reason.data(), reason.size(), ": %s", error.what());
    failed(reason.data());
  } catch (...) {
    failed(" with an exception of an unknown kind");
  }
}

/// What a command holds while it runs; all of it goes back however the command ends.
struct Session::Running {
  Running(Session& owner, const std::shared_ptr<Command>& of, Document* in, bool isTransparent)
      : session(owner),
        command(of),
        document(in),
        transparent(isTransparent),
        locks(in != nullptr && (of->flags & ACRX_CMD_SESSION) == 0),
        watches(owner.running_.empty() && in != nullptr),
        marksUndo(watches && (of->flags & ACRX_CMD_NO_UNDO_MARKER) == 0) {
    if (marksUndo) document->drawing().beginUndoStep(command->global, session.scriptGroup());
    session.running_.push_back(command);
    if (transparent) ++session.transparentDepth_;
    // Commands of the document are given its write lock.
    if (locks) ++document->locks;
    if (watches) document->drawing().setObserver(&session.skips);
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() {
    const bool isOpen = document != nullptr && session.documents.owns(document);
    if (watches && isOpen) document->drawing().setObserver(nullptr);
    if (locks && isOpen && document->locks > 0) --document->locks;
    if (marksUndo && isOpen) {
      // Plug-ins prepare a drawing at their first command. Left with Esc or Cancel it is as it was.
      if (session.wasLeftUntouched(*document) && !command->isBuiltIn()) {
        try {
          document->drawing().endUnusedUndoStep();
        } catch (const std::bad_alloc&) {
          document->drawing().endUndoStep();
        }
      } else {
        document->drawing().endUndoStep();
      }
    }
    if (transparent) --session.transparentDepth_;
    session.running_.pop_back();
    session.nextLimits = {};
  }

  Session& session;
  const std::shared_ptr<Command>& command;
  Document* document;
  bool transparent, locks, watches, marksUndo;
};

void Session::execute(const std::shared_ptr<Command>& command, bool transparent) {
  if (!mayRun(*command)) return;
  const bool isOutermost = running_.empty();
  Document* const document = documents.current();
  if (isOutermost && document != nullptr && (command->flags & ACRX_CMD_USEPICKSET) == 0) document->pickfirst.clear();
  nextLimits = {};
  cancelled_ = false;
  commandFailed_ = false;
  dialogCancelled_ = false;
  if (isOutermost) {
    changesWhenAsked_.reset();
    skips.begin();
    lastSkips_.clear();
  }
  const ACHAR* const name = command->global.c_str();
  const std::size_t knownProblems = document != nullptr ? document->drawing().problems().size() : 0;
  {
    const Running running(*this, command, document, transparent);
    editor.tell(&AcEditorReactor::commandWillStart, name);
    callHandler(*command);
    if (isOutermost && document != nullptr && documents.owns(document))
      reportSkips(*command, !cancelled_ && !commandFailed_ && !isStopping());
  }
  const bool isOpen = document != nullptr && documents.owns(document);
  if (commandFailed_) {
    editor.tell(&AcEditorReactor::commandFailed, name);
  } else if (cancelled_ || failure_) {
    editor.tell(&AcEditorReactor::commandCancelled, name);
  } else {
    editor.tell(&AcEditorReactor::commandEnded, name);
  }
  commandFailed_ = false;
  if (isOutermost && isOpen) afterCommand(*document, knownProblems);
}

/// What a command could not bring into the drawing.
void Session::reportNewProblems(const Document& document, std::size_t known) const {
  constexpr std::size_t kMostTold = 10;
  const std::vector<database::Problem>& problems = document.drawing().problems();
  for (std::size_t i = known; i < problems.size(); ++i) {
    if (i == known + kMostTold) {
      reportProblem("... and " + std::to_string(problems.size() - i) + " more like these");
      break;
    }
    reportProblem(problems[i].text);
  }
}

void Session::reportSkips(const Command& command, bool isWhole) {
  const std::wstring sentence = skips.sentence(command.global, isWhole);
  if (sentence.empty()) return;
  transcript.line(sentence);
  lastSkips_ = command.global + L": " + sentence;
  if (options_.isStrict && !isInteractive()) fail(RunStatus::ScriptFailed, text::toUtf8(lastSkips_), true);
}

void Session::afterCommand(Document& document, std::size_t knownProblems) {
  document.pickfirst.clear();
  if (meter.isShown) acedRestoreStatusBar();
  const int locks = std::exchange(document.locks, 0);
  const int open = document.drawing().releaseObjects();
  const int lost = document.drawing().takeLostChanges();
  reportNewProblems(document, knownProblems);
  if (locks > 0) reportProblem("a command left " + std::to_string(locks) + " document locks behind; they are released");
  if (open > 0) reportProblem("a command left " + std::to_string(open) + " objects open; they are closed");
  if (lost > 0) {
    reportProblem("there was not enough memory for the changes of " + std::to_string(lost) +
                  (lost == 1 ? " object" : " objects") + "; U takes back the whole command");
  }
}

int Session::runFromCode(std::unique_ptr<InputSource> answers) {
  if (isTransparentRunning() || documents.current() == nullptr || isStopping()) return RTERROR;
  InputFrame frame;
  frame.source = answers.get();
  frame.owned = std::move(answers);
  frame.fromCode = true;
  const InputScope scope(*this, std::move(frame));
  for (;;) {
    const Answer answer = pull({L"Command: ", AnswerForm::Word});
    if (answer.kind == Answer::Kind::End || isStopping()) break;
    if (answer.kind != Answer::Kind::Text) continue;  // a surplus Enter
    transcript.prompt(L"Command: ");
    transcript.echo(answer.text);
    if (const auto command = commands.find(answer.text)) {
      execute(command, false);
    } else {
      reportUnknown(answer.text);
    }
    if (frames_.size() <= scope.base || frames_.back().failed) break;
  }
  cancelled_ = false;
  return frames_.size() <= scope.base || frames_.back().failed || failure_.has_value() ? RTERROR : RTNORM;
}

}  // namespace host::editor

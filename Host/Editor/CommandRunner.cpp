// Running commands: typed, from code, inside one another.
#include <cwctype>
#include <exception>

#include "Editor/Session.h"
#include "Hatching/Patterns.h"
#include "Text/Text.h"

namespace host::editor {
namespace {

constexpr std::size_t kDeepestNesting = 32;

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

Result Session::run(InputSource& input) {
  failure_.reset();
  quitRequested = false;
  const std::size_t base = frames_.size();
  InputFrame frame;
  frame.source = &input;
  frames_.push_back(std::move(frame));
  for (;;) {
    if (interrupted.exchange(false) && !failure_) {
      const std::string here = place();
      failure_ = Result{RunStatus::ScriptFailed, here.empty() ? "interrupted" : here + ": interrupted"};
    }
    if (failure_ && input.isInteractive()) {
      hasFailed_ = true;
      reportProblem(failure_->message);
      failure_.reset();
      frames_.resize(base + 1);
    }
    if (failure_ || quitRequested) break;
    constexpr std::wstring_view kPrompt = L"Command: ";
    transcript.prompt(kPrompt);
    const Answer answer = pull({kPrompt, AnswerForm::Word});
    if (answer.kind == Answer::Kind::End) break;
    runTyped(answer);
  }
  frames_.resize(base);
  transcript.finishLine();
  return std::exchange(failure_, std::nullopt).value_or(Result{});
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

void Session::callHandler(Command& command) {
  std::string reason;
  const hatching::PatternMemory patterns;
  try {
    if (command.handler) {
      Prompter prompter(*this);
      command.handler(prompter);
    } else {
      command.function();
    }
    return;
  } catch (const std::exception& error) {
    reason = std::string(": ") + error.what();
  } catch (...) {
    reason = " with an exception of an unknown kind";
  }
  commandFailed_ = true;
  fail(RunStatus::ScriptFailed, text::toUtf8(command.global) + " failed" + reason);
}

void Session::execute(const std::shared_ptr<Command>& command, bool transparent) {
  if (!mayRun(*command)) return;
  const bool isOutermost = running_.empty();
  Document* const document = documents.current();
  if (isOutermost && document != nullptr && (command->flags & ACRX_CMD_USEPICKSET) == 0) document->pickfirst.clear();
  nextLimits = {};
  cancelled_ = false;
  commandFailed_ = false;
  dialogCancelled_ = false;

  running_.push_back(command);
  if (transparent) ++transparentDepth_;
  const bool marksUndo = isOutermost && document != nullptr && (command->flags & ACRX_CMD_NO_UNDO_MARKER) == 0;
  if (marksUndo) document->drawing().beginUndoStep(command->global, scriptGroup());
  if (isOutermost) {
    changesWhenAsked_.reset();
    skips.begin();
    lastSkips_.clear();
    if (document != nullptr) document->drawing().setObserver(&skips);
  }
  const std::size_t knownProblems = document != nullptr ? document->drawing().problems().size() : 0;
  // Commands of the document are given its write lock.
  const bool locks = document != nullptr && (command->flags & ACRX_CMD_SESSION) == 0;
  if (locks) ++document->locks;
  const std::wstring name = command->global;
  editor.tell(&AcEditorReactor::commandWillStart, name.c_str());

  callHandler(*command);

  const bool isOpen = document != nullptr && documents.owns(document);
  if (isOutermost && isOpen) {
    document->drawing().setObserver(nullptr);
    reportSkips(*command, !cancelled_ && !commandFailed_ && !isStopping());
  }
  if (locks && isOpen && document->locks > 0) --document->locks;
  if (marksUndo && isOpen) {
    // Plug-ins prepare a drawing at their first command. Left with Esc or Cancel it is as it was.
    if (wasLeftUntouched(*document) && !command->isBuiltIn()) {
      document->drawing().endUnusedUndoStep();
    } else {
      document->drawing().endUndoStep();
    }
  }
  if (transparent) --transparentDepth_;
  running_.pop_back();
  nextLimits = {};
  if (commandFailed_) {
    editor.tell(&AcEditorReactor::commandFailed, name.c_str());
  } else if (cancelled_ || failure_) {
    editor.tell(&AcEditorReactor::commandCancelled, name.c_str());
  } else {
    editor.tell(&AcEditorReactor::commandEnded, name.c_str());
  }
  commandFailed_ = false;
  if (isOutermost && isOpen) reportNewProblems(*document, knownProblems);
  if (isOutermost) afterCommand(isOpen ? document : nullptr);
}

/// What a command could not bring into the drawing.
void Session::reportNewProblems(Document& document, std::size_t known) const {
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

void Session::afterCommand(Document* document) {
  if (document == nullptr) return;
  document->pickfirst.clear();
  if (meter.isShown) acedRestoreStatusBar();
  if (document->locks > 0) {
    reportProblem("a command left " + std::to_string(document->locks) + " document locks behind; they are released");
    document->locks = 0;
  }
  if (const int left = document->drawing().releaseObjects(); left > 0)
    reportProblem("a command left " + std::to_string(left) + " objects open; they are closed");
}

int Session::runFromCode(std::unique_ptr<InputSource> answers) {
  if (isTransparentRunning() || documents.current() == nullptr || isStopping()) return RTERROR;
  InputFrame frame;
  frame.source = answers.get();
  frame.owned = std::move(answers);
  frame.fromCode = true;
  const std::size_t base = frames_.size();
  frames_.push_back(std::move(frame));
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
    if (frames_.size() <= base || frames_.back().failed) break;
  }
  const bool failed = frames_.size() <= base || frames_.back().failed || failure_.has_value();
  frames_.resize(base);
  cancelled_ = false;
  return failed ? RTERROR : RTNORM;
}

}  // namespace host::editor

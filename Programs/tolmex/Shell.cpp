// `tolmex shell`: commands typed at a terminal, or read from a pipe as they come.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "Commands.h"
#include "Console.h"
#include "Editor/FileStamp.h"
#include "Editor/ScriptInput.h"
#include "Editor/ScriptText.h"
#include "Interruption.h"
#include "Outputs.h"
#include "PlanSession.h"
#include "Platform/Streams.h"
#include "Terminal.h"
#include "Text/Text.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::RunStatus;
using host::editor::AnswerForm;
using host::editor::Application;
using host::editor::Question;

namespace {

constexpr std::wstring_view kCommandPrompt = L"Command: ";
constexpr const wchar_t* kEscape = L"\x1b";

/// The transcript on the screen. What the user typed stands there already, so the echo of a typed line is left out.
class Screen final : public host::editor::Observer {
 public:
  void print(std::wstring_view text) override {
    if (pending_ == Pending::Echo && !text.starts_with(L'\n')) {
      pending_ = Pending::Break;
      return;
    }
    if (std::exchange(pending_, Pending::Nothing) != Pending::Nothing && text.starts_with(L'\n')) text.remove_prefix(1);
    printTranscript(text);
    const std::size_t end = text.rfind(L'\n');
    tail_ = end == std::wstring_view::npos ? tail_ + std::wstring(text) : std::wstring(text.substr(end + 1));
  }

  void report(const host::Problem& problem) override {
    startLine();
    complain(RunStatus::Done, problem.sentence());
  }
  void showProgress(std::wstring_view label, double fraction) override { showMeter(bar_, label, fraction); }

  /// Takes the unfinished line off the screen: the line editor shows it again as its prompt.
  std::string takePrompt() {
    if (tail_.empty()) return {};
    const std::size_t columns = host::platform::terminalColumns(host::platform::Stream::Out);
    if (tail_.size() + 1 >= (columns > 0 ? columns : 80U)) {
      std::printf("\n");
      return {};
    }
    std::printf("\r\x1b[K");
    return host::text::toUtf8(tail_);
  }

  /// A line was typed behind the prompt; the cursor stands on the next one.
  void lineWasTyped() {
    pending_ = Pending::Echo;
    tail_.clear();
  }
  void lineWasLeft() { tail_.clear(); }

 private:
  /// Ends an unfinished line; the break that the transcript still owes it is left out then.
  void startLine() {
    if (tail_.empty()) return;
    std::printf("\n");
    tail_.clear();
    pending_ = Pending::Break;
  }

  enum class Pending { Nothing, Echo, Break };
  Pending pending_ = Pending::Nothing;  // of the echo that is left out
  std::wstring tail_;
  ProgressBar bar_;
};

/// What commands from a pipe lead to.
class PipeScreen final : public ProblemPrinter {
 public:
  explicit PipeScreen(bool isQuiet) : isQuiet_(isQuiet) {}
  void print(std::wstring_view text) override {
    if (!isQuiet_) printTranscript(text);
  }
  void showProgress(std::wstring_view label, double fraction) override { showMeter(bar_, label, fraction); }

 private:
  bool isQuiet_;
  ProgressBar bar_;
};

/// Asks for the list of controls once when a dialog opens.
class DialogGreeting {
 public:
  bool isDue(const Question& question) {
    if (question.form != AnswerForm::Line) {
      if (question.prompt == kCommandPrompt) greeted_.clear();
      return false;
    }
    if (!question.prompt.starts_with(L"dialog ") || greeted_ == question.prompt) return false;
    greeted_ = question.prompt;
    return true;
  }

 private:
  std::wstring greeted_;
};

/// Ctrl+C while a command works: its next question ends in Esc; given again it ends the program.
class ShellInterruption {
 public:
  ShellInterruption() { former_ = std::signal(SIGINT, &ShellInterruption::ask); }
  ~ShellInterruption() { std::signal(SIGINT, former_); }
  ShellInterruption(const ShellInterruption&) = delete;
  ShellInterruption& operator=(const ShellInterruption&) = delete;
  /// The user was asked something: the next Ctrl+C is a first one.
  static void forget() { asked_ = 0; }

 private:
  static void ask(int) {
    std::signal(SIGINT, &ShellInterruption::ask);  // some systems forget it
    if (asked_ != 0) {
      host::platform::sayFromHandler("\ntolmex: interrupted; nothing was saved\n");
      std::_Exit(static_cast<int>(RunStatus::ScriptFailed));
    }
    asked_ = 1;
    Application::interrupt();
    host::platform::sayFromHandler("\nCtrl+C again ends tolmex without saving\n");
  }

  static inline volatile std::sig_atomic_t asked_ = 0;
  void (*former_)(int) = SIG_DFL;
};

class TerminalInput final : public host::editor::LineInput {
 public:
  TerminalInput(Terminal& terminal, Screen& screen) : terminal_(terminal), screen_(screen) {}
  bool isInteractive() const override { return true; }

 protected:
  std::optional<std::wstring> readLine(const Question& question) override {
    if (greeting_.isDue(question)) return L"LIST";
    ShellInterruption::forget();
    const bool isCommand = question.prompt == kCommandPrompt;
    const Terminal::Typed typed = terminal_.read(screen_.takePrompt(), isCommand);
    switch (typed.key) {
      case Terminal::Key::Line:
        screen_.lineWasTyped();
        return host::text::fromUtf8(typed.text);
      case Terminal::Key::Cancel:
        screen_.lineWasLeft();
        return kEscape;
      case Terminal::Key::Leave:
        // Inside a command the first Ctrl+D ends the command only.
        if (!isCommand) {
          screen_.lineWasLeft();
          return kEscape;
        }
        screen_.lineWasTyped();
        return L"_.QUIT";
      case Terminal::Key::Gone:
        break;
    }
    return std::nullopt;
  }

 private:
  Terminal& terminal_;
  Screen& screen_;
  DialogGreeting greeting_;
};

/// Lines of a pipe. Failures do not end it, as they do not end the work of a user who types.
class PipeInput final : public host::editor::LineInput {
 public:
  /// Whether a line could not be taken as text.
  bool hasRefused() const { return hasRefused_; }
  bool isInteractive() const override { return true; }
  host::editor::Place place() const override { return {kName, lines_}; }

 protected:
  std::optional<std::wstring> readLine(const Question& question) override {
    if (greeting_.isDue(question)) return L"LIST";
    if (Interruption::isAsked()) return std::nullopt;
    const std::optional<std::string> line = host::platform::readLine(stdin);
    if (!line) return std::nullopt;
    ++lines_;
    host::Result<host::editor::ScriptText> text = host::editor::scriptText(*line, kName);
    if (!text) {
      hasRefused_ = true;
      text.problem().line = lines_;
      complain(RunStatus::Done, text.message());
      return kEscape;
    }
    if (text->remark && !std::exchange(isRemarked_, true)) {
      text->remark->line = lines_;
      complain(*text->remark);
    }
    return host::text::fromUtf8(text->utf8);
  }

 private:
  static constexpr const char* kName = "standard input";
  std::size_t lines_ = 0;
  bool isRemarked_ = false;  // on the encoding
  bool hasRefused_ = false;
  DialogGreeting greeting_;
};

RunStatus typeCommands(PlanSession& session, Screen& screen) {
  Terminal terminal(
      [&session] {
        std::vector<std::string> names;
        for (const std::wstring& name : session.application().commandNames()) names.push_back(host::text::toUtf8(name));
        return names;
      },
      Terminal::historyFile());
  TerminalInput input(terminal, screen);
  const ShellInterruption interruption;
  return session.application().run(input).status();
}

}  // namespace

int runShell(const RunOptions& options) {
  if (const host::Result<> fit = checkRunOptions(options); !fit) return complain(fit.problem());
  const fs::path drawing = options.drawings.empty() ? fs::path() : options.drawings.front();
  if (isStandardStream(drawing))
    return complain(RunStatus::WrongUsage, "-: shell reads commands from standard input; name the drawing's file");
  const host::Result<PlanOutputs> named = outputsOf(options, drawing);
  if (!named) return complain(named.problem());
  const PlanOutputs& outputs = *named;
  const std::vector<fs::path> inputs = drawing.empty() ? std::vector<fs::path>{} : std::vector{drawing};
  if (const host::Result<> made = prepareOutputs(inputs, outputs.files(), options.folder); !made)
    return complain(made.problem());

  const bool atTerminal = Terminal::isThere();
  Screen screen;
  PipeScreen pipeScreen(options.quiet);
  host::editor::ApplicationOptions settings;
  settings.problemsOnScreen = atTerminal;
  settings.observer = &pipeScreen;
  if (atTerminal) settings.observer = &screen;
  PlanSession session(options, settings);
  if (const host::Result<> opened = session.open(drawing); !opened) return sayUnopened(opened.problem());
  if (atTerminal) {
    const std::string name = drawing.empty() ? "a new drawing" : drawing.filename().string();
    screen.print(
        host::text::fromUtf8("tolmex " TOLMEX_VERSION ", " + name +
                             "\nHELP lists the commands, Tab completes their names, U takes the last one back, "
                             "QUIT leaves.\n"));
  }

  RunStatus status = RunStatus::Done;
  if (atTerminal) {
    status = typeCommands(session, screen);
  } else {
    const Interruption interruption(RunStatus::ScriptFailed);
    PipeInput input;
    const host::Result<> result = session.application().run(input);
    if (session.application().hasFailed() || input.hasRefused() || Interruption::isAsked())
      status = RunStatus::ScriptFailed;
  }
  std::fflush(stdout);
  Application& application = session.application();
  if (application.drawing() == nullptr) {
    if (outputs.isEmpty()) return static_cast<int>(status);
    return complain(RunStatus::ScriptFailed, "no drawing was left open; nothing was written");
  }
  if (!application.quitRequested()) {
    const auto current = outputs.drawing ? Application::Current::LeftOut : Application::Current::Counts;
    for (const fs::path& unsaved : application.unsavedDrawings(current)) {
      const fs::path& shown = unsaved == host::editor::fullPath(drawing) ? drawing : unsaved;
      complain(RunStatus::Done, shown.string() + ": the input ended; changes were not saved");
    }
  }
  return static_cast<int>(std::max(status, session.write(outputs)));
}

}  // namespace tolmex

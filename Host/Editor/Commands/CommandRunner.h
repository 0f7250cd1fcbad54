// Running commands: typed, from code, inside one another.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Editor/Commands/CommandStack.h"
#include "Editor/Commands/CommandWatch.h"
#include "Editor/Commands/RunCount.h"
#include "Editor/Input/InputStack.h"
#include "Editor/Selection/SkipReport.h"
#include "Problems/Problem.h"

namespace host::editor {

class Document;
class Session;

/// Leaves a command that the user has interrupted.
struct CommandInterrupted {};

class CommandRunner {
 public:
  explicit CommandRunner(Session& session) : session_(session) {}

  /// Forgets the commands of a former program.
  void reset();

  /// Runs commands until the input ends, fails or says QUIT. The first failure is the answer.
  Result<> run(InputSource& input);
  /// Answers given by code, the first being a command: acedCommandS.
  int runFromCode(std::unique_ptr<InputSource> answers);
  /// Runs a command within a question of another one.
  void runTransparently(const std::shared_ptr<Command>& command);

  /// Depth of nested commands; 0 when idle.
  std::size_t depth() const { return running_.size(); }
  /// The innermost command; null when idle.
  const Command* innermost() const { return running_.empty() ? nullptr : running_.back().get(); }
  /// "LINE'ZOOM"; empty when idle.
  std::wstring names() const;
  /// The running command may take the set selected before it.
  bool mayTakePickfirst() const;
  /// SETVAR: the variable that was named in place of a command; empty for none.
  const std::wstring& namedVariable() const { return namedVariable_; }
  /// What the running command leaves out.
  SkipReport& skips() { return skips_; }
  /// What was done since the program's beginning.
  RunCount& count() { return count_; }

  // ---- how the innermost command's questions go -------------------------------------------------------------------
  /// A question is about to be asked: what the command did before was preparation.
  void questionAsked();
  void questionCancelled() { state_.isCancelled = true; }
  void questionAnswered() { state_.isCancelled = state_.isDialogCancelled = false; }
  void dialogOpened();
  void dialogClosed(bool isCancelled) { state_.isDialogCancelled = isCancelled; }
  /// The command has reported a failure of its own.
  void commandFailed() { state_.hasFailed = true; }

  // ---- long work --------------------------------------------------------------------------------------------------
  /// Called for every object that the running command opens and every step of its meter: the front end is told now and
  /// then. When the user has interrupted the work, CommandInterrupted is thrown: plug-ins let it pass as they do when
  /// memory ends, and the drawing is given back its state before the command.
  void atWork();
  /// A question has ended in Esc by the interruption: the command may tidy up.
  void interruptionHeard() { isInterruptionHeard_ = true; }
  /// The running command is being left by CommandInterrupted: it tells and asks nothing any more.
  bool isAbandoned() const { return isAbandoned_; }

 private:
  class Running;
  /// What is known of the innermost command's course.
  struct State {
    bool isCancelled = false;        // its last question ended in Esc
    bool hasFailed = false;          // its handler threw, or it said so
    bool isDialogCancelled = false;  // its last dialog was left with Cancel
  };

  /// Takes the next command and runs it. False when the run is over.
  bool runNext(InputSource& input, InputStack::Scope& scope);
  void runTyped(const Answer& answer);
  /// Executes a command that was named so at rest, and records it.
  void executeTyped(const std::shared_ptr<Command>& command, const std::wstring& typed);
  void reportUnknown(std::wstring_view name);
  void execute(const std::shared_ptr<Command>& command, bool transparent);
  bool mayRun(const Command& command);
  void callHandler(Command& command) noexcept;
  bool wasLeftUntouched(const Document& document) const;
  void reportSkips(const Command& command, bool isWhole);
  void reportNewProblems(const Document& document, std::size_t known) const;
  /// Puts in order what a command left, then reports it and the problems beyond those known before.
  void afterCommand(Document& document, std::size_t knownProblems);
  void tellChange(const Document& document);

  Session& session_;
  std::vector<std::shared_ptr<Command>> running_;
  int transparentDepth_ = 0;
  State state_;
  std::optional<std::uint64_t> changesWhenAsked_;  // drawing's counter when the outermost command first asked something
  SkipReport skips_;
  RunCount count_;
  CommandWatch watch_{skips_, [this] { atWork(); }};
  std::wstring lastSkips_;  // of the last command, with its name
  std::wstring lastCommand_;
  std::wstring namedVariable_;
  int memoryEnds_ = 0;    // in a row, since the last command was read
  int handlerDepth_ = 0;  // of commands' code being run
  bool isInterruptionHeard_ = false, isAbandoned_ = false;
  unsigned pulses_ = 0;
  std::chrono::steady_clock::time_point lastBeat_;
};

}  // namespace host::editor

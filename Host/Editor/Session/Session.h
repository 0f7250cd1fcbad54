// The parts of the running host and what they do together. Private to the editor.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Editor/Application.h"
#include "Editor/Commands/CommandStack.h"
#include "Editor/PlugIns/Modules.h"
#include "Editor/PlugIns/Services.h"
#include "Editor/Prompter.h"
#include "Editor/Selection/EntityFinder.h"
#include "Editor/Selection/SelectionSets.h"
#include "Editor/Selection/SkipReport.h"
#include "Editor/Session/Documents.h"
#include "Editor/Session/MemoryReserve.h"
#include "Editor/Session/SystemVariables.h"
#include "Editor/Transcript.h"

namespace host::editor {

/// One level of input: a run's own source, a script called from it, or the answers of a command run from code.
struct InputFrame {
  InputSource* source = nullptr;
  std::unique_ptr<InputSource> owned;
  bool fromCode = false;
  bool failed = false;            // answers of code that were refused or ran out
  database::UndoGroup undoGroup;  // of a script that was called: one `U` takes all of it back
};

class Session {
 public:
  /// Made on first use and never destroyed: plug-ins' globals may reach it before and after main.
  static Session& instance();

  void begin(ApplicationOptions options);
  void end();
  const ApplicationOptions& options() const { return options_; }

  Transcript transcript;
  DocumentManager documents;
  CommandStack commands;
  EditorService editor;
  ModuleList modules{*this};
  Registry registry{*this};
  HostServices services;
  SystemVariables variables{*this};
  SelectionSets sets;
  EntityFinder finder;
  ProgressMeter meter;
  SkipReport skips;                  // of the running command
  Limits nextLimits;                 // of acedInitGet, for the next question
  std::wstring lastInput;            // of acedGetInput
  std::filesystem::path lastScript;  // that SCRIPT ran
  bool quitRequested = false;
  static std::atomic<bool> interrupted;

  /// A drawing that is open already becomes the current one.
  Result openDrawing(const std::filesystem::path& file);
  Result newDrawing();
  void closeDocument(Document& document);
  /// Refuses to replace the document's own file when somebody else has changed it, and the files of other documents.
  enum class ChangedFile { Refuse, Replace };
  Result saveDrawing(Document& document, const std::filesystem::path& file, ChangedFile changed = ChangedFile::Refuse);
  /// Makes a layout current. False when there is none of that name.
  bool switchLayout(std::wstring_view name);
  /// Block of the current layout; the model space when the layout is gone.
  const database::BlockContents& currentSpace() const;
  void reportProblem(std::string_view sentence) const;
  /// A box with OK only. One whose caption stands for failures fails the running command.
  void showNotice(std::wstring_view caption, std::wstring_view text);
  void regenerate();

  // ---- input ------------------------------------------------------------------------------------------------------
  /// Shows the prompt, takes the answer, echoes it; runs transparent commands given as answers. Cancel when the input
  /// has failed or ended.
  Answer ask(std::wstring_view prompt, AnswerForm form);
  /// The next line for a dialog or box that `what` names; prompt and line are shown.
  Answer dialogLine(std::wstring_view what);
  void dialogOpened();
  void dialogClosed(bool isCancelled) { dialogCancelled_ = isCancelled; }
  /// No further answers will come: the input has ended or failed, or the run was interrupted.
  bool isStopping() const;
  /// Lines come from the script until it ends. `name` is what undoing it as a whole shows.
  void pushScript(std::unique_ptr<InputSource> script, std::wstring name);
  /// The outermost of the scripts that were called; without any, the group has no number.
  database::UndoGroup scriptGroup() const;
  std::size_t inputDepth() const { return frames_.size(); }
  bool inputFromCode() const { return !frames_.empty() && frames_.back().fromCode; }
  /// Says why an answer cannot be used; true when it can be asked for again.
  bool refuse(std::wstring_view sentence, RunStatus status = RunStatus::ScriptFailed);
  /// Records a failure with the input's place; for input that can be asked again it is only reported.
  /// `isShown`: the transcript has said it.
  void fail(RunStatus status, std::string sentence, bool isShown = false);
  /// Somebody can be asked again.
  bool isInteractive() const;
  /// A pick or window of a script found nothing; `where` says "at 5,5". People see it in the transcript.
  void foundNothing(const std::wstring& where);
  /// Something that was typed or came through a pipe has failed.
  bool hasFailed() const { return hasFailed_; }

  // ---- commands ---------------------------------------------------------------------------------------------------
  Result run(InputSource& input);
  /// Answers given by code, the first being a command: acedCommandS.
  int runFromCode(std::unique_ptr<InputSource> answers);
  /// Depth of nested commands; 0 when idle.
  std::size_t commandDepth() const { return running_.size(); }
  bool isTransparentRunning() const { return transparentDepth_ > 0; }
  std::wstring runningNames() const;
  /// The running command may take the set selected before it.
  bool mayTakePickfirst() const;
  std::wstring pendingVariable;  // SETVAR: a variable named in place of a command

 private:
  struct Running;
  struct InputScope;

  Session();
  Result openFurther(const std::filesystem::path& file);
  Answer pull(const Question& question);
  std::string place() const;
  void answersRanOut(std::wstring_view waiting);
  /// Takes the next command and runs it. False when the run is over.
  bool runNext(InputSource& input, std::size_t base);
  /// Remembers that there was not enough memory, and for what where it can be said.
  void memoryEnded(const Command* command = nullptr) noexcept;
  void runTyped(const Answer& answer);
  void reportUnknown(std::wstring_view name);
  void execute(const std::shared_ptr<Command>& command, bool transparent);
  bool mayRun(const Command& command);
  void callHandler(Command& command) noexcept;
  void reportNewProblems(const Document& document, std::size_t known) const;
  void noteQuestion();
  bool wasLeftUntouched(const Document& document) const;
  void reportSkips(const Command& command, bool isWhole);
  /// Puts in order what a command left, then tells of it and of the problems beyond those known before.
  void afterCommand(Document& document, std::size_t knownProblems);

  ApplicationOptions options_;
  std::optional<MemoryReserve> reserve_;  // while a program uses the host
  std::vector<InputFrame> frames_;
  std::vector<std::shared_ptr<Command>> running_;
  int transparentDepth_ = 0;
  int endsInARow_ = 0;                             // of memory, since the last command was read
  bool cancelled_ = false;                         // the running command's last question ended in Esc
  bool commandFailed_ = false;                     // its handler threw
  bool dialogCancelled_ = false;                   // the running command's last dialog was left with Cancel
  std::optional<std::uint64_t> changesWhenAsked_;  // drawing's counter when the running command first asked something
  std::wstring lastSkips_;                         // of the last command, with its name
  std::optional<Result> failure_;
  std::wstring lastCommand_;
  bool hasFailed_ = false;
  std::uint32_t scriptCount_ = 0;
  int untitledCount_ = 0;
};

}  // namespace host::editor

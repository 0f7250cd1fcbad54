// The running host: its parts, the drawings, the questions of commands. Private to the editor; programs use
// Application.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "Editor/Application.h"
#include "Editor/Commands/CommandRunner.h"
#include "Editor/Commands/CommandStack.h"
#include "Editor/Input/InputStack.h"
#include "Editor/PlugIns/Modules.h"
#include "Editor/PlugIns/Services.h"
#include "Editor/Prompter.h"
#include "Editor/Selection/EntityFinder.h"
#include "Editor/Selection/SelectionSets.h"
#include "Editor/Session/Documents.h"
#include "Editor/Session/MemoryReserve.h"
#include "Editor/Session/SystemVariables.h"
#include "Editor/Session/Transcript.h"

namespace host::editor {

class Session {
 public:
  /// Made on first use and never destroyed: plug-ins' globals may reach it before and after main.
  static Session& instance();

  void begin(ApplicationOptions options);
  void end();
  const ApplicationOptions& options() const { return options_; }
  /// The front end; one that does nothing when a program gives none.
  Observer& observer() const;

  // ---- parts ------------------------------------------------------------------------------------------------------
  Transcript& transcript() { return transcript_; }
  DocumentManager& documents() { return documents_; }
  const DocumentManager& documents() const { return documents_; }
  CommandStack& commands() { return commands_; }
  CommandRunner& runner() { return runner_; }
  InputStack& input() { return input_; }
  EditorService& editor() { return editor_; }
  ModuleList& modules() { return modules_; }
  Registry& registry() { return registry_; }
  HostServices& services() { return services_; }
  ProgressMeter& meter() { return meter_; }
  SystemVariables& variables() { return variables_; }
  SelectionSets& sets() { return sets_; }
  EntityFinder& finder() { return finder_; }

  // ---- drawings ---------------------------------------------------------------------------------------------------
  /// A drawing that is open already becomes the current one.
  Result<> openDrawing(const std::filesystem::path& file);
  Result<> newDrawing();
  /// As `Application::openContent`.
  Result<> openContent(const std::filesystem::path& content, const std::filesystem::path& file,
                       const std::filesystem::path& name);
  void closeDocument(Document& document);
  /// Refuses to replace the document's own file when another program has changed it, and the files of other documents.
  enum class ChangedFile { Refuse, Replace };
  Result<> saveDrawing(Document& document, const std::filesystem::path& file,
                       ChangedFile changed = ChangedFile::Refuse);
  /// Makes a layout current. False when there is none of that name.
  bool switchLayout(std::wstring_view name);
  /// Block of the current layout; the model space when the layout is gone.
  const database::BlockContents& currentSpace() const;
  void setPickfirst(Document& document, std::vector<database::Slot*> entities);
  /// The living entities of the set selected before the command, which is handed over once; views leave it selected.
  enum class AfterUse { Forget, Keep };
  std::vector<database::Slot*> takePickfirst(AfterUse after = AfterUse::Forget);

  // ---- messages ---------------------------------------------------------------------------------------------------
  void reportProblem(const Problem& problem) const;
  /// A box with OK only. One whose caption stands for failures fails the running command.
  void showNotice(std::wstring_view caption, std::wstring_view text);

  // ---- questions --------------------------------------------------------------------------------------------------
  /// Shows the prompt, takes the answer, echoes it; runs transparent commands given as answers. Cancel when the input
  /// has failed or ended.
  Answer ask(const Question& question);
  /// The next line for a dialog or box that `what` names; prompt and line are shown.
  Answer dialogLine(std::wstring_view what);
  /// Says why an answer cannot be used; true when it can be asked for again.
  bool refuse(std::wstring_view sentence, Code code = Code::AnswerRefused);
  /// A pick or window of a script found nothing; `where` says "at 5,5". Users see it in the transcript.
  void foundNothing(const std::wstring& where);
  /// What acedInitGet allows the next question.
  void setNextLimits(Limits limits) { nextLimits_ = std::move(limits); }
  Limits takeNextLimits() { return std::exchange(nextLimits_, {}); }
  /// The keyword that was answered last, for acedGetInput.
  void setLastInput(std::wstring keyword) { lastInput_ = std::move(keyword); }
  const std::wstring& lastInput() const { return lastInput_; }
  /// The user can be asked again.
  bool isInteractive() const { return input_.isInteractive(); }
  /// What is recorded of the current drawing's user; of none where there is no drawing, or code answers.
  Recording& recording();
  /// Runs a script from a file; RSCRIPT runs the last one again.
  void pushScript(const std::filesystem::path& file, std::unique_ptr<InputSource> script);
  const std::filesystem::path& lastScript() const { return lastScript_; }

  // ---- how the run goes -------------------------------------------------------------------------------------------
  /// Whether the transcript has told the failure already.
  enum class Shown { No, Yes };
  /// Records a failure with the input's place; for input that can be asked again it is only reported.
  void fail(Problem problem, Shown shown = Shown::No);
  /// Records that there was not enough memory, and for which command, where there is memory to say so.
  void failForMemory(const Command* command = nullptr) noexcept;
  /// Records a failure that ends the run even of input that can be asked again; the first one counts.
  void failForGood(Problem problem);
  bool hasFailure() const { return failure_.has_value(); }
  std::optional<Problem> takeFailure() { return std::exchange(failure_, std::nullopt); }
  /// Something that was typed or came through a pipe has failed.
  bool hasFailed() const { return hasFailed_; }
  void noteFailed() { hasFailed_ = true; }
  /// No further answers will come: the input has ended or failed, or the run was interrupted.
  bool isStopping() const { return hasFailure() || isInterrupted_ || input_.hasCodeFailed(); }
  /// QUIT was said.
  bool isQuitting() const { return isQuitting_; }
  void setQuitting(bool isQuitting) { isQuitting_ = isQuitting; }
  /// From signal handlers and other threads: the next question ends in Esc, and the script stops.
  static void interrupt() { isInterrupted_ = true; }
  static bool isInterrupted() { return isInterrupted_; }
  static bool takeInterruption() { return isInterrupted_.exchange(false); }

 private:
  Session();
  struct Origin;
  Result<> openFurther(const std::filesystem::path& file, const Origin* origin = nullptr);
  /// A problem of the running input, named by its place.
  Problem placed(Problem problem) const;
  void answersRanOut(std::wstring_view waiting);
  void echo(const Answer& answer);
  /// Runs the command that an answer names in the place of the question. False when the question is over.
  bool runInstead(const std::shared_ptr<Command>& command);

  ApplicationOptions options_;
  std::optional<MemoryReserve> reserve_;  // while a program uses the host
  Transcript transcript_;
  DocumentManager documents_{*this};
  CommandStack commands_;
  CommandRunner runner_{*this};
  InputStack input_;
  EditorService editor_{*this};
  ModuleList modules_{*this};
  Registry registry_{*this};
  HostServices services_;
  ProgressMeter meter_{*this};
  SystemVariables variables_{*this};
  SelectionSets sets_;
  EntityFinder finder_;
  Limits nextLimits_;
  Recording nobodysRecording_;
  std::wstring lastInput_;
  std::filesystem::path lastScript_;
  std::optional<Problem> failure_;
  bool hasFailed_ = false;
  bool isQuitting_ = false;
  int untitledCount_ = 0;
  static std::atomic<bool> isInterrupted_;
};

}  // namespace host::editor

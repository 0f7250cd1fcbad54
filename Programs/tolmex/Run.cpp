// `tolmex run`: a script on every drawing.
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "Commands.h"
#include "Console.h"
#include "Editor/ScriptInput.h"
#include "Inputs.h"
#include "Interruption.h"
#include "Outputs.h"
#include "PlanSession.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::editor::Result;
using host::editor::RunStatus;

namespace {

struct Script {
  std::string text, name;
};

/// The script file with the inline lines behind it. Nothing when it cannot be read, which has been said.
std::optional<Script> wholeScript(const RunOptions& options) {
  Script script{{}, "--command"};
  if (!options.script.empty()) {
    script.name = shownName(options.script);
    std::optional<std::string> text = readScript(options.script);
    if (!text) return std::nullopt;
    script.text = std::move(*text);
    if (!script.text.empty() && script.text.back() != '\n') script.text += '\n';
  }
  for (const std::string& command : options.commands) script.text += command + "\n";
  return script;
}

/// A script whose lines move the progress bar.
class WatchedScript final : public host::editor::InputSource {
 public:
  WatchedScript(const Script& script, ProgressBar& bar)
      : input_(script.text, script.name),
        lines_(static_cast<double>(std::count(script.text.begin(), script.text.end(), '\n'))),
        bar_(bar) {}
  host::editor::Answer next(const host::editor::Question& question) override {
    bar_.show(input_.place(), input_.lineNumber() / std::max(1.0, lines_));
    return input_.next(question);
  }
  std::string place() const override { return input_.place(); }

 private:
  host::editor::ScriptInput input_;
  double lines_;
  ProgressBar& bar_;
};

RunStatus runDrawing(const RunOptions& options, const fs::path& drawing, const PlanOutputs& outputs,
                     const Script& script) {
  host::editor::ApplicationOptions settings;
  // A transcript on the screen shows how far the work has come.
  ProgressBar bar(options.quiet || ::isatty(STDOUT_FILENO) == 0);
  if (!options.quiet) settings.transcript = printTranscript;
  settings.problem = [](std::string_view sentence) { complain(RunStatus::Done, std::string(sentence)); };
  settings.isStrict = options.strict;
  settings.meter = [&](std::wstring_view label, double fraction) { showMeter(bar, label, fraction); };
  PlanSession session(options, settings);
  if (const RunStatus opened = session.open(drawing); opened != RunStatus::Done) return opened;

  WatchedScript input(script, bar);
  // A call without a script only converts or draws.
  const Result result = script.text.empty() ? Result{} : session.application().run(input);
  ProgressBar::clear();
  std::fflush(stdout);
  if (!result) {
    complain(result.status, result.message + (outputs.isEmpty() ? "" : "; nothing was written"));
    return result.status;
  }
  if (session.application().drawing() == nullptr) {
    if (outputs.isEmpty()) return RunStatus::Done;
    complain(RunStatus::ScriptFailed, script.name + ": the script left no drawing open");
    return RunStatus::ScriptFailed;
  }
  return session.write(outputs);
}

}  // namespace

int runDrawings(const RunOptions& options) {
  if (const std::string refusal = refuseRunOptions(options); !refusal.empty())
    return complain(RunStatus::WrongUsage, refusal);
  std::vector<PlanOutputs> outputs;
  std::vector<fs::path> inputs = options.drawings, files;
  std::string refusal;
  for (const fs::path& drawing : options.drawings) {
    outputs.push_back(outputsOf(options, drawing, refusal));
    for (const fs::path& file : outputs.back().files()) files.push_back(file);
  }
  if (!options.script.empty()) inputs.push_back(options.script);
  if (std::count_if(inputs.begin(), inputs.end(), isStandardStream) > 1)
    return complain(RunStatus::WrongUsage, "-: standard input can be one drawing, or the script");
  if (const RunStatus made = prepareOutputs(inputs, files, options.folder); made != RunStatus::Done)
    return static_cast<int>(made);

  std::optional<Script> script;
  {
    const Interruption interruption(RunStatus::ScriptFailed);
    script = wholeScript(options);
    if (Interruption::isAsked()) return complain(RunStatus::ScriptFailed, "interrupted; nothing was written");
  }
  if (!script) return static_cast<int>(RunStatus::ScriptFailed);
  return forEachDrawing(options, RunStatus::ScriptFailed, [&](std::size_t i) {
    const Interruption interruption(RunStatus::ScriptFailed);
    return static_cast<int>(runDrawing(options, options.drawings[i], outputs[i], *script));
  });
}

}  // namespace tolmex

// `tolmex run`: a script on every drawing.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Batch.h"
#include "Commands.h"
#include "Console.h"
#include "Editor/ScriptInput.h"
#include "Inputs.h"
#include "Interruption.h"
#include "Outputs.h"
#include "PlanSession.h"
#include "Platform/Files.h"
#include "Platform/Streams.h"
#include "Resume.h"
#include "RunSum.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::Result;
using host::RunStatus;

namespace {

struct Script {
  std::string text, name;
};

/// The script file with the inline lines behind it.
Result<Script> wholeScript(const RunOptions& options) {
  Script script{{}, "--command"};
  if (!options.script.empty()) {
    script.name = shownName(options.script);
    Result<std::string> text = readScript(options.script);
    if (!text) return text;
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
    bar_.show(input_.place().shown(), input_.lineNumber() / std::max(1.0, lines_));
    return input_.next(question);
  }
  host::editor::Place place() const override { return input_.place(); }

 private:
  host::editor::ScriptInput input_;
  double lines_;
  ProgressBar& bar_;
};

/// Shows what a script does: transcript, problems, how far the work has come.
class RunScreen final : public ProblemPrinter {
 public:
  // A transcript on the screen shows how far the work has come.
  explicit RunScreen(bool isQuiet)
      : isQuiet_(isQuiet), bar_(isQuiet || !host::platform::isTerminal(host::platform::Stream::Out)) {}
  ProgressBar& bar() { return bar_; }
  void print(std::wstring_view text) override {
    if (!isQuiet_) printTranscript(text);
  }
  void showProgress(std::wstring_view label, double fraction) override { showMeter(bar_, label, fraction); }

 private:
  bool isQuiet_;
  ProgressBar bar_;
};

RunStatus runDrawing(const RunOptions& options, const fs::path& drawing, const PlanOutputs& outputs,
                     const Script& script) {
  RunScreen screen(options.quiet);
  host::editor::ApplicationOptions settings;
  settings.observer = &screen;
  settings.isStrict = options.strict;
  PlanSession session(options, settings);
  if (const Result<> opened = session.open(drawing); !opened)
    return static_cast<RunStatus>(sayUnopened(opened.problem()));

  WatchedScript input(script, screen.bar());
  // A call without a script only converts or draws.
  Result<> result = script.text.empty() ? Result<>() : session.application().run(input);
  ProgressBar::clear();
  if (!script.text.empty()) {
    const host::editor::RunSummary summary = session.application().summary();
    if (result && options.strict) result = checkStrictly(summary, script.name);
    tellSummary(summary, result.ok(), options.quiet);
  }
  std::fflush(stdout);
  if (!result) {
    complain(result.status(), result.message() + (outputs.isEmpty() ? "" : "; nothing was written"));
    return result.status();
  }
  if (session.application().drawing() == nullptr) {
    if (outputs.isEmpty()) return RunStatus::Done;
    complain(RunStatus::ScriptFailed, script.name + ": the script left no drawing open");
    return RunStatus::ScriptFailed;
  }
  return session.write(outputs);
}

/// A line of JSON for each drawing, written as soon as it is done.
class Report {
 public:
  Result<> open(const fs::path& file) {
    file_ = host::platform::openShared(file, "w");
    if (file_ == nullptr)
      return host::problemOf(host::Code::OutputRefused, file.string(), "the report cannot be written");
    return {};
  }
  ~Report() {
    if (file_ != nullptr) std::fclose(file_);
  }
  Report() = default;
  Report(const Report&) = delete;
  Report& operator=(const Report&) = delete;
  bool isOpen() const { return file_ != nullptr; }

  void add(const fs::path& drawing, const PlanOutputs& outputs, const BatchResult& result, bool isLeft) {
    nlohmann::ordered_json line;
    line["drawing"] = shownName(drawing);
    line["result"] = isLeft ? "up to date" : statusText(result.status);
    line["status"] = result.status;
    line["seconds"] = std::round(result.seconds * 1000) / 1000;
    for (const fs::path& file : outputs.files()) line["outputs"].push_back(file.string());
    if (!result.note.empty()) line["sum"] = summaryJson(summaryOfNote(result.note));
    std::istringstream messages(result.err);
    for (std::string message; std::getline(messages, message);) line["messages"].push_back(message);
    const std::string text = line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    std::fwrite(text.data(), 1, text.size(), file_);
    std::fflush(file_);
  }

 private:
  std::FILE* file_ = nullptr;
};

}  // namespace

int runDrawings(const RunOptions& options) {
  if (const Result<> fit = checkRunOptions(options); !fit) return complain(fit.problem());
  std::vector<PlanOutputs> outputs;
  std::vector<fs::path> inputs = options.drawings, files;
  for (const fs::path& drawing : options.drawings) {
    Result<PlanOutputs> named = outputsOf(options, drawing);
    if (!named) return complain(named.problem());
    outputs.push_back(std::move(named.value()));
    for (const fs::path& file : outputs.back().files()) files.push_back(file);
  }
  if (!options.script.empty()) inputs.push_back(options.script);
  if (std::count_if(inputs.begin(), inputs.end(), isStandardStream) > 1)
    return complain(RunStatus::WrongUsage, "-: standard input can be one drawing, or the script");
  if (options.report) files.push_back(*options.report);
  if (const Result<> made = prepareOutputs(inputs, files, options.folder); !made) return complain(made.problem());

  const Result<Script> script = [&options]() -> Result<Script> {
    const Interruption interruption(RunStatus::ScriptFailed);
    Result<Script> read = wholeScript(options);
    if (Interruption::isAsked()) return host::problemOf(host::Code::Interrupted, "interrupted; nothing was written");
    return read;
  }();
  if (!script) return complain(script.problem());
  Report report;
  // A worker that came through here on its way to its task leaves both to the process that started it.
  if (options.report && !isWorker()) {
    if (const Result<> opened = report.open(*options.report); !opened) return complain(opened.problem());
  }
  std::optional<ResumeLog> log;
  if (options.resume) log.emplace(options, script->text);
  RunOptions left = options;
  std::vector<PlanOutputs> wanted;
  if (log && !isWorker()) {
    left.drawings.clear();
    for (std::size_t i = 0; i < outputs.size(); ++i) {
      if (log->isUpToDate(options.drawings[i], outputs[i].files())) {
        if (report.isOpen()) report.add(options.drawings[i], outputs[i], {}, true);
        continue;
      }
      left.drawings.push_back(options.drawings[i]);
      wanted.push_back(outputs[i]);
    }
    const std::size_t count = options.drawings.size() - left.drawings.size();
    if (count > 0)
      printLine(std::to_string(count) + " of " + std::to_string(outputs.size()) + " drawings are up to date");
    if (left.drawings.empty()) return 0;
  } else {
    wanted = outputs;
  }
  host::editor::RunSummary all;
  std::size_t summed = 0;
  const TakeResult take = [&](std::size_t i, const BatchResult& result) -> std::string {
    if (report.isOpen()) report.add(left.drawings[i], wanted[i], result, false);
    if (log && result.status == 0) log->add(left.drawings[i], wanted[i].files());
    if (result.note.empty() || result.status != 0) return {};
    const host::editor::RunSummary summary = summaryOfNote(result.note);
    all.add(summary);
    ++summed;
    return summary.sentence();
  };
  const int status = forEachDrawing(
      left, RunStatus::ScriptFailed,
      [&](std::size_t i) {
        const Interruption interruption(RunStatus::ScriptFailed);
        return static_cast<int>(runDrawing(left, left.drawings[i], wanted[i], *script));
      },
      take, report.isOpen() || log.has_value());
  if (summed > 1) printLine(std::to_string(summed) + " drawings: " + all.sentence());
  return status;
}

}  // namespace tolmex

// `tolmex import`: a plan from map data, and the script that illustrates it.
#include "Import/Import.h"

#include <algorithm>
#include <cstdio>

#include "Commands.h"
#include "Console.h"
#include "Editor/ScriptInput.h"
#include "Inputs.h"
#include "Interruption.h"
#include "LateLibrary.h"
#include "Outputs.h"
#include "PlanSession.h"
#include "RunSum.h"
#include "Text/Text.h"
#include "dbapserv.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::Result;
using host::RunStatus;

namespace {

constexpr const char* kLibrary = "tolmeximport";

/// Where the plug-in's rules lie.
fs::path rulesFolder() { return plugInFile().parent_path() / "tolmex.menu" / "import"; }

/// A file, or shipped rules by their name.
Result<fs::path> rulesFile(const std::string& name) {
  std::error_code error;
  if (fs::is_regular_file(name, error)) return fs::path(name);
  const fs::path shipped = rulesFolder() / (name + ".json");
  if (name.find('/') == std::string::npos && fs::is_regular_file(shipped, error)) return shipped;
  std::vector<std::string> known;
  for (const auto& entry : fs::directory_iterator(rulesFolder(), error)) {
    const fs::path& file = entry.path();
    if (file.extension() == ".json" && file.stem() != "elements") known.push_back(file.stem().string());
  }
  std::sort(known.begin(), known.end());
  std::string all;
  for (const std::string& each : known) all += (all.empty() ? "" : ", ") + each;
  return host::problemOf(host::Code::WrongUsage, "--rules " + name + ": no such file; shipped rules are " + all);
}

class ImportScreen final : public ProblemPrinter {
 public:
  explicit ImportScreen(bool isQuiet) : isQuiet_(isQuiet) {}
  void print(std::wstring_view text) override {
    if (isShown_ && !isQuiet_) printTranscript(text);
  }
  void showTranscript(bool isShown) { isShown_ = isShown; }

 private:
  bool isQuiet_;
  bool isShown_ = false;
};

std::string shown(double value) { return host::text::formatReal(value); }

/// Writes whose data they are below the plan, in letters of a hundred and fiftieth of its width.
std::string creditScript(const host::import::Imported& imported) {
  constexpr double kLetters = 150, kLeast = 0.5;
  const auto& [minX, minY, maxX, maxY] = imported.extents;
  const double height = std::max((maxX - minX) / kLetters, kLeast);
  const std::wstring layer = L"TUONTI_LAHDE";
  return "LAYER M " + host::text::toUtf8(layer) + "\n\nTEXT\n" + shown(minX) + "," + shown(minY - 3 * height) + "\n" +
         shown(height) + "\n0\n" + imported.credit + "\n\nLAYER S 0\n\n";
}

Result<> runScript(host::editor::Application& application, const std::string& script, const std::string& name) {
  host::editor::ScriptInput input(script, name);
  return application.run(input);
}

}  // namespace

int importPlan(const ImportOptions& options) {
  const Result<fs::path> rules = rulesFile(options.rules);
  if (!rules) return complain(rules.problem());
  fs::path script = options.scriptOut.value_or(fs::path(options.plan).replace_extension(".scr"));
  const bool writesScript = options.scriptOut || !options.illustrate;
  RunOptions outputs;
  static_cast<CommonOptions&>(outputs) = options;
  outputs.out = options.plan;
  outputs.pictures = options.pictures;
  outputs.picture = options.picture;
  if (const Result<> fit = checkRunOptions(outputs); !fit) return complain(fit.problem());
  const Result<PlanOutputs> written = outputsOf(outputs, options.plan);
  if (!written) return complain(written.problem());
  std::vector<fs::path> files = written->files(), inputs = options.drawings;
  if (writesScript) files.push_back(script);
  inputs.push_back(*rules);
  if (const Result<> made = prepareOutputs(inputs, files, std::nullopt); !made) return complain(made.problem());
  const Result<void*> function =
      functionOfLibrary(kLibrary, host::import::kImportFunction, "import", "GDAL (Debian's libgdal-dev)");
  if (!function) return complain(function.problem());

  const Interruption interruption(RunStatus::ScriptFailed);
  ImportScreen screen(options.quiet);
  host::editor::ApplicationOptions settings;
  settings.observer = &screen;
  PlanSession session(outputs, settings);
  if (const Result<> opened = session.open({}); !opened) return complain(opened.problem());
  host::import::ImportCall call;
  call.sources = options.drawings;
  call.rules = *rules;
  call.elements = rulesFolder() / "elements.json";
  call.system = options.system;
  call.window = options.window;
  call.date = options.date;
  call.symbols = options.symbols;
  call.shadowDegrees = options.shadowDegrees;
  AcDbDatabase* const drawing = acdbHostApplicationServices()->workingDatabase();
  std::optional<Result<host::import::Imported>> answer;
  reinterpret_cast<host::import::ImportFunction> (*function)(call, *drawing, answer);
  const Result<host::import::Imported>& imported = *answer;
  if (!imported) return complain(imported.problem());
  for (const std::string& line : imported->report) {
    if (!options.quiet) printLine(line);
  }
  for (const std::string& warning : imported->warnings) complain(RunStatus::Done, warning);
  drawing->hostDatabase().releaseObjects();
  if (imported->system.starts_with("EPSG:"))
    outputs.picture.system = imported->system.substr(0, imported->system.find(' '));
  // The program's own sheets have these fields; what the caller gives comes behind and counts.
  const bool isOwnSheet = !outputs.picture.sheetFile.empty() && fs::path(outputs.picture.sheetFile).extension().empty();
  if (isOwnSheet) {
    auto& fields = outputs.picture.fields;
    fields.insert(fields.begin(), {{"LAHTEET", imported->credit}, {"KOORDINAATISTO", imported->system}});
  }
  if (!imported->credit.empty()) {
    if (const Result<> told = runScript(session.application(), creditScript(*imported), "credit"); !told)
      return complain(told.problem());
  }
  if (writesScript) {
    if (const Result<> done = writeOutput(script, imported->script); !done) return complain(done.problem());
  }
  if (options.illustrate) {
    screen.showTranscript(true);
    const Result<> done = runScript(session.application(), imported->script, script.filename().string());
    tellSummary(session.application().summary(), done.ok(), options.quiet);
    std::fflush(stdout);
    if (!done) return complain(done.problem());
  }
  return static_cast<int>(session.write(*written));
}

}  // namespace tolmex

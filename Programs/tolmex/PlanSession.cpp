#include "PlanSession.h"

#include <algorithm>

#include "Console.h"
#include "Inputs.h"
#include "Interruption.h"
#include "Outputs.h"
#include "PictureCommand.h"
#include "Platform/Library.h"
#include "Text/Text.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::Code;
using host::Problem;
using host::problemOf;
using host::Result;
using host::RunStatus;
using host::editor::Application;

fs::path plugInFile() {
  const fs::path program = host::platform::programFile();
  return program.empty() ? fs::path() : program.parent_path() / "tolmex.arx";
}

std::vector<fs::path> PlanOutputs::files() const {
  std::vector<fs::path> all;
  for (const PictureFile& picture : pictures) all.push_back(picture.file);
  if (drawing) all.push_back(*drawing);
  return all;
}

Result<PlanOutputs> outputsOf(const RunOptions& options, const fs::path& drawing) {
  PlanOutputs outputs;
  outputs.drawing = options.out;
  if (options.folder) {
    outputs.drawing = outputIn(*options.folder, drawing, ".dxf");
    for (const host::picture::PictureFormat format : options.formats)
      outputs.pictures.push_back({outputIn(*options.folder, drawing, endingOf(format)), format});
  }
  for (const fs::path& file : options.pictures) {
    const bool isStream = isStandardStream(file);
    const Result<PictureFile> picture = pictureFile(file, isStream ? options.formats : decltype(options.formats){});
    if (!picture) return picture;
    outputs.pictures.push_back(*picture);
  }
  Result<std::vector<PictureFile>> fit = fitting(std::move(outputs.pictures), options.picture);
  if (!fit) return fit.problem();
  outputs.pictures = std::move(fit.value());
  return outputs;
}

namespace {

Problem refused(std::string sentence) { return problemOf(Code::WrongUsage, std::move(sentence)); }

}  // namespace

Result<> checkVariables(const std::vector<std::string>& variables) {
  for (const std::string& variable : variables) {
    const std::size_t equals = variable.find('=');
    if (equals == std::string::npos || equals == 0) return refused("--set " + variable + ": give it as NAME=VALUE");
    if (host::text::toUtf8(host::text::fromUtf8(variable)) != variable)
      return refused("--set " + variable + ": the value is not UTF-8");
  }
  return {};
}

Result<> checkRunOptions(const RunOptions& options) {
  if (options.drawings.size() > 1 && options.out)
    return refused("--out names one file; with several drawings give --out-dir DIR");
  if (options.drawings.size() > 1 && !options.pictures.empty())
    return refused("--picture names one file; with several drawings give --out-dir DIR --format png");
  const bool drawsToStream =
      std::find_if(options.pictures.begin(), options.pictures.end(), isStandardStream) != options.pictures.end();
  if (!options.formats.empty() && !options.folder && !drawsToStream)
    return refused("--format goes with --out-dir DIR, or with a picture on standard output (--picture -)");
  for (const fs::path& drawing : options.drawings) {
    if (const Result<PlanOutputs> outputs = outputsOf(options, drawing); !outputs) return outputs;
    if (options.folder && isStandardStream(drawing))
      return refused("the drawing on standard input has no name for --out-dir; give --out FILE");
  }
  if (options.out && !isStandardStream(*options.out) &&
      host::text::folded(host::text::fromUtf8(options.out->extension().string())) != L".dxf")
    return problemOf(Code::WrongUsage, options.out->empty() ? "\"\"" : options.out->string(),
                     "drawings are saved as DXF; the name must end in .dxf");
  for (const std::string& line : options.commands) {
    if (host::text::toUtf8(host::text::fromUtf8(line)) != line)
      return refused("--command " + line + ": the line is not UTF-8");
  }
  return checkVariables(options.variables);
}

namespace {

host::editor::ApplicationOptions completed(host::editor::ApplicationOptions settings, const RunOptions& options) {
  settings.supportFolders = options.supportFolders;
  settings.failureCaptions = kFailureCaptions;
  return settings;
}

}  // namespace

PlanSession::PlanSession(const RunOptions& options, host::editor::ApplicationOptions settings)
    : options_(options), application_(completed(std::move(settings), options)) {
  addPictureCommand(application_);
}

void ProblemPrinter::report(const Problem& problem) { complain(RunStatus::Done, problem.sentence()); }

int sayUnopened(const Problem& problem) {
  // Ctrl+C at a terminal ends the process that reads DWG drawings too, and the drawing seems to be at fault.
  if (!Interruption::isAsked() || problem.status() != RunStatus::DrawingUnreadable) return complain(problem);
  complain(RunStatus::ScriptFailed, "interrupted; nothing was written");
  return static_cast<int>(Interruption::status());
}

Result<> openDrawing(Application& application, const fs::path& file, const std::vector<std::string>& variables) {
  if (Result<> opened = file.empty() ? application.newDrawing() : application.openDrawing(file); !opened) return opened;
  for (const std::string& variable : variables) {
    const std::size_t equals = variable.find('=');
    const Result<> set = application.setVariable(host::text::fromUtf8(variable.substr(0, equals)),
                                                 host::text::fromUtf8(variable.substr(equals + 1)));
    if (!set) return problemOf(set.problem().code, "--set " + variable + ": " + set.message());
  }
  return {};
}

Result<> PlanSession::open(const fs::path& drawing) {
  fs::path file;
  if (!drawing.empty()) {
    Result<fs::path> readable = readableFile(drawing);
    if (!readable) return readable;
    file = std::move(readable.value());
  }
  if (Result<> opened = openDrawing(application_, file, options_.variables); !opened) return opened;
  const fs::path plugIn = plugInFile();
  if (plugIn.empty())
    return problemOf(Code::ModuleRefused, "/proc/self/exe cannot be read; it tells where the plug-in lies");
  return application_.loadModule(plugIn);
}

Result<> PlanSession::save(const fs::path& file) {
  if (isStandardStream(file)) {
    const Result<std::string> text = application_.drawingText();
    if (!text) return text;
    return writeOutput(file, *text);
  }
  const Interruption::Writing writing;
  return application_.saveDrawing(file);
}

RunStatus PlanSession::write(const PlanOutputs& outputs) {
  RunStatus status = RunStatus::Done;
  const auto count = [&status](const Result<>& written) {
    if (!written) complain(written.problem());
    status = std::max(status, written.status());
  };
  if (outputs.drawing) count(save(*outputs.drawing));
  for (const PictureFile& picture : outputs.pictures) {
    if (Interruption::isAsked()) {
      complain(RunStatus::ScriptFailed, "interrupted; " + picture.file.string() + " was not written");
      return RunStatus::ScriptFailed;
    }
    host::picture::PictureOptions options = options_.picture;
    if (options.layout == host::picture::PictureOptions{}.layout)
      options.layout = host::text::toUtf8(application_.currentLayoutName());
    host::picture::setDrawingFile(options, application_.drawingFile());
    count(writePicture(*application_.drawing(), options, picture, options_.supportFolders));
  }
  return status;
}

}  // namespace tolmex

#include "PlanSession.h"

#include <algorithm>

#include "Console.h"
#include "Inputs.h"
#include "Interruption.h"
#include "Outputs.h"
#include "Text/Text.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::editor::Application;
using host::editor::Prompter;
using host::editor::Result;
using host::editor::RunStatus;

namespace {

/// The plug-in beside the program; never one that lies in the current folder.
fs::path plugInFile() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  return error ? fs::path() : program.parent_path() / "tolmex.arx";
}

/// PICTURE: draws the current drawing into a file whose ending names the format.
void pictureCommand(Application& application, Prompter& prompter) {
  const auto file = prompter.text(L"Enter name of picture file: ");
  if (file.outcome == host::editor::Outcome::Cancel) return;
  const fs::path path = host::text::toUtf8(file.value);
  const auto format = host::picture::formatOfFile(path.string());
  if (!format) {
    prompter.refuse(L"The picture's name must end in .png, .svg or .pdf.");
    return;
  }
  const std::string refusal = refuseOutputs({application.drawingFile()}, {path});
  if (!refusal.empty()) {
    prompter.fail(RunStatus::OutputFailed, host::text::fromUtf8(refusal));
    return;
  }
  host::picture::PictureOptions options;
  options.layout = host::text::toUtf8(application.currentLayoutName());
  if (writePicture(*application.drawing(), options, {path, *format}) != RunStatus::Done)
    prompter.fail(RunStatus::OutputFailed, L"the picture could not be made");
}

}  // namespace

std::vector<fs::path> PlanOutputs::files() const {
  std::vector<fs::path> all;
  for (const PictureFile& picture : pictures) all.push_back(picture.file);
  if (drawing) all.push_back(*drawing);
  return all;
}

PlanOutputs outputsOf(const RunOptions& options, const fs::path& drawing, std::string& refusal) {
  PlanOutputs outputs;
  outputs.drawing = options.out;
  if (options.folder) {
    outputs.drawing = outputIn(*options.folder, drawing, ".dxf");
    for (const host::picture::PictureFormat format : options.formats)
      outputs.pictures.push_back({outputIn(*options.folder, drawing, endingOf(format)), format});
  }
  for (const fs::path& file : options.pictures) {
    const bool isStream = isStandardStream(file);
    const auto picture = pictureFile(file, isStream ? options.formats : decltype(options.formats){}, refusal);
    if (!picture) return {};
    outputs.pictures.push_back(*picture);
  }
  return outputs;
}

std::string refuseVariables(const std::vector<std::string>& variables) {
  for (const std::string& variable : variables) {
    const std::size_t equals = variable.find('=');
    if (equals == std::string::npos || equals == 0) return "--set " + variable + ": give it as NAME=VALUE";
    if (host::text::toUtf8(host::text::fromUtf8(variable)) != variable)
      return "--set " + variable + ": the value is not UTF-8";
  }
  return {};
}

std::string refuseRunOptions(const RunOptions& options) {
  if (options.drawings.size() > 1 && options.out)
    return "--out names one file; with several drawings give --out-dir DIR";
  if (options.drawings.size() > 1 && !options.pictures.empty())
    return "--picture names one file; with several drawings give --out-dir DIR --format png";
  const bool drawsToStream =
      std::find_if(options.pictures.begin(), options.pictures.end(), isStandardStream) != options.pictures.end();
  if (!options.formats.empty() && !options.folder && !drawsToStream)
    return "--format goes with --out-dir DIR, or with a picture on standard output (--picture -)";
  std::string refusal;
  for (const fs::path& drawing : options.drawings) {
    outputsOf(options, drawing, refusal);
    if (!refusal.empty()) return refusal;
    if (options.folder && isStandardStream(drawing))
      return "the drawing on standard input has no name for --out-dir; give --out FILE";
  }
  if (options.out && !isStandardStream(*options.out) &&
      host::text::folded(host::text::fromUtf8(options.out->extension().string())) != L".dxf")
    return (options.out->empty() ? "\"\"" : options.out->string()) +
           ": drawings are saved as DXF; the name must end in .dxf";
  for (const std::string& line : options.commands) {
    if (host::text::toUtf8(host::text::fromUtf8(line)) != line) return "--command " + line + ": the line is not UTF-8";
  }
  return refuseVariables(options.variables);
}

namespace {

host::editor::ApplicationOptions completed(host::editor::ApplicationOptions settings, const RunOptions& options) {
  settings.supportFolders = options.supportFolders;
  settings.failureCaptions = {L"Error", L"Out of memory"};  // of the plug-in's failure reports
  return settings;
}

}  // namespace

PlanSession::PlanSession(const RunOptions& options, host::editor::ApplicationOptions settings)
    : options_(options), application_(completed(std::move(settings), options)) {
  application_.addCommand(
      L"PICTURE", 0, [this](Prompter& prompter) { pictureCommand(application_, prompter); },
      L"draws the drawing into a .png, .svg or .pdf file");
}

RunStatus sayUnopened(const Result& opened) {
  // Ctrl+C at a terminal ends the process that reads DWG drawings too, and the drawing seems to be at fault.
  if (!Interruption::isAsked()) {
    complain(opened.status, opened.message);
    return opened.status;
  }
  complain(RunStatus::ScriptFailed, "interrupted; nothing was written");
  return Interruption::status();
}

RunStatus openDrawing(Application& application, const fs::path& file, const std::vector<std::string>& variables) {
  if (const Result opened = file.empty() ? application.newDrawing() : application.openDrawing(file); !opened)
    return sayUnopened(opened);
  for (const std::string& variable : variables) {
    const std::size_t equals = variable.find('=');
    const Result set = application.setVariable(host::text::fromUtf8(variable.substr(0, equals)),
                                               host::text::fromUtf8(variable.substr(equals + 1)));
    if (set) continue;
    complain(set.status, "--set " + variable + ": " + set.message);
    return set.status;
  }
  return RunStatus::Done;
}

RunStatus PlanSession::open(const fs::path& drawing) {
  const fs::path file = drawing.empty() ? drawing : readableFile(drawing);
  if (file.empty() && !drawing.empty()) return RunStatus::DrawingUnreadable;
  if (const RunStatus opened = openDrawing(application_, file, options_.variables); opened != RunStatus::Done)
    return opened;
  const fs::path plugIn = plugInFile();
  if (plugIn.empty()) {
    complain(RunStatus::WrongUsage, "/proc/self/exe cannot be read; it tells where the plug-in lies");
    return RunStatus::WrongUsage;
  }
  const Result loaded = application_.loadModule(plugIn);
  if (!loaded) complain(loaded.status, loaded.message);
  return loaded.status;
}

RunStatus PlanSession::save(const fs::path& file) {
  if (isStandardStream(file)) {
    std::string text;
    const Result made = application_.drawingText(text);
    if (made) return writeOutput(file, text);
    complain(made.status, made.message);
    return made.status;
  }
  const Interruption::Writing writing;
  const Result saved = application_.saveDrawing(file);
  if (!saved) complain(saved.status, saved.message);
  return saved.status;
}

RunStatus PlanSession::write(const PlanOutputs& outputs) {
  RunStatus status = RunStatus::Done;
  if (outputs.drawing) status = save(*outputs.drawing);
  for (const PictureFile& picture : outputs.pictures) {
    if (Interruption::isAsked()) {
      complain(RunStatus::ScriptFailed, "interrupted; " + picture.file.string() + " was not written");
      return RunStatus::ScriptFailed;
    }
    host::picture::PictureOptions options;
    options.layout = host::text::toUtf8(application_.currentLayoutName());
    status = std::max(status, writePicture(*application_.drawing(), options, picture));
  }
  return status;
}

}  // namespace tolmex

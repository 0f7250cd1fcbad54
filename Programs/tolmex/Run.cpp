#include <cstdio>
#include <fstream>
#include <sstream>

#include "Commands.h"
#include "Dxf/DxfFile.h"
#include "Editor/Application.h"
#include "Editor/ScriptInput.h"
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

/// The plug-in beside the program.
fs::path plugInFile() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  return (error ? fs::path(".") : program.parent_path()) / "tolmex.arx";
}

void printText(std::wstring_view text) {
  const std::string bytes = host::text::toUtf8(text);
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
}

/// PICTURE: draws the current drawing into a file whose ending names the format.
void pictureCommand(Application& application, Prompter& prompter) {
  const auto file = prompter.text(L"Enter name of picture file: ");
  if (!file || application.drawing() == nullptr) return;
  const fs::path path = host::text::toUtf8(file.value);
  if (!host::picture::formatOfFile(path.string())) {
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
  if (writePicture(*application.drawing(), options, path) != RunStatus::Done) {
    prompter.fail(RunStatus::OutputFailed, L"the picture could not be made");
  }
}

/// Wrong usage that shows without opening anything: one sentence, or empty.
std::string refuseOptions(const RunOptions& options) {
  for (const fs::path& picture : options.pictures) {
    if (std::string refusal = refusePictureName(picture); !refusal.empty()) return refusal;
  }
  if (options.savesDrawing && host::text::folded(host::text::fromUtf8(options.out.extension().string())) != L".dxf") {
    return (options.out.empty() ? "\"\"" : options.out.string()) +
           ": drawings are saved as DXF; the name must end in .dxf";
  }
  for (const std::string& variable : options.variables) {
    const std::size_t equals = variable.find('=');
    if (equals == std::string::npos || equals == 0) return "--set " + variable + ": give it as NAME=VALUE";
  }
  return {};
}

}  // namespace

int runDrawing(const RunOptions& options) {
  if (const std::string refusal = refuseOptions(options); !refusal.empty()) {
    return complain(RunStatus::WrongUsage, refusal);
  }
  std::vector<fs::path> inputs{options.drawing};
  if (!options.script.empty()) inputs.push_back(options.script);
  std::vector<fs::path> outputs = options.pictures;
  if (options.savesDrawing) outputs.push_back(options.out);
  if (const std::string refusal = refuseOutputs(inputs, outputs); !refusal.empty()) {
    return complain(RunStatus::OutputFailed, refusal);
  }
  const Interruption interruption(RunStatus::ScriptFailed);
  std::string script;
  std::string scriptName = "--command";
  if (!options.script.empty()) {
    std::error_code error;
    std::ifstream in(options.script, std::ios::binary);
    if (!in || fs::is_directory(options.script, error)) {
      return complain(RunStatus::ScriptFailed, options.script.string() + ": the script cannot be read");
    }
    std::stringstream all;
    all << in.rdbuf();
    script = all.str();
    scriptName = options.script.string();
    if (!script.empty() && script.back() != '\n') script += '\n';
  }
  for (const std::string& command : options.commands) script += command + "\n";

  host::editor::ApplicationOptions settings;
  if (!options.quiet) settings.transcript = printText;
  settings.problem = [](std::string_view sentence) { complain(RunStatus::Done, std::string(sentence)); };
  settings.supportFolders = options.supportFolders;
  Application application(settings);
  application.addCommand(L"PICTURE", 0, [&](Prompter& prompter) { pictureCommand(application, prompter); });

  if (const Result opened = application.openDrawing(options.drawing); !opened) {
    return complain(opened.status, opened.message);
  }
  for (const std::string& variable : options.variables) {
    const std::size_t equals = variable.find('=');
    const Result set = application.setVariable(host::text::fromUtf8(variable.substr(0, equals)),
                                               host::text::fromUtf8(variable.substr(equals + 1)));
    if (!set) return complain(set.status, "--set " + variable + ": " + set.message);
  }
  if (const Result loaded = application.loadModule(plugInFile()); !loaded) {
    return complain(loaded.status, loaded.message);
  }

  host::editor::ScriptInput input(script, scriptName);
  const Result result = application.run(input);
  std::fflush(stdout);
  if (!result) {
    return complain(result.status, result.message + (outputs.empty() ? "" : "; nothing was written"));
  }
  if (application.drawing() == nullptr) {
    return outputs.empty() ? 0 : complain(RunStatus::ScriptFailed, scriptName + ": the script left no drawing open");
  }

  RunStatus status = RunStatus::Done;
  if (options.savesDrawing) {
    const Interruption::Writing writing;
    if (const Result saved = application.saveDrawing(options.out); !saved) {
      complain(saved.status, saved.message);
      status = saved.status;
    }
  }
  for (const fs::path& picture : options.pictures) {
    if (Interruption::isAsked()) {
      return complain(RunStatus::ScriptFailed, "interrupted; " + picture.string() + " was not written");
    }
    host::picture::PictureOptions pictureOptions;
    pictureOptions.layout = host::text::toUtf8(application.currentLayoutName());
    status = std::max(status, writePicture(*application.drawing(), pictureOptions, picture));
  }
  return static_cast<int>(status);
}

}  // namespace tolmex

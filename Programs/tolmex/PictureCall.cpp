// `tolmex picture`, and making pictures for every call.
#include <algorithm>
#include <array>
#include <new>

#include "Commands.h"
#include "Console.h"
#include "Dxf/DxfFile.h"
#include "Editor/Application.h"
#include "Inputs.h"
#include "Interruption.h"
#include "Outputs.h"
#include "PlanSession.h"
#include "Repair.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::editor::RunStatus;
using host::picture::PictureFormat;

namespace {

/// Metres in one drawing unit by $INSUNITS; without one, and for plans that say millimetres though their figures are
/// metres, nobody can know: unitless counts as metres, as the plug-in takes them.
double metresPerUnit(const host::database::DrawingDatabase& drawing) {
  switch (drawing.headerInteger("$INSUNITS", 70).value_or(0)) {
    case 1:
      return 0.0254;
    case 2:
      return 0.3048;
    case 4:
      return 0.001;
    case 5:
      return 0.01;
    case 7:
      return 1000;
    default:
      return 1;
  }
}

/// The pictures a call asks for of one drawing.
std::vector<PictureFile> picturesOf(const PictureCallOptions& options, const fs::path& drawing, std::string& refusal) {
  std::vector<PictureFile> pictures;
  if (!options.folder) {
    if (const auto picture = pictureFile(options.out, options.formats, refusal)) pictures.push_back(*picture);
    return pictures;
  }
  if (isStandardStream(drawing)) {
    refusal = "the drawing on standard input has no name for --out-dir; name the picture";
    return pictures;
  }
  for (const PictureFormat format : options.formats.empty() ? std::vector{PictureFormat::Png} : options.formats)
    pictures.push_back({outputIn(*options.folder, drawing, endingOf(format)), format});
  return pictures;
}

RunStatus writeAll(const host::database::DrawingDatabase& drawing, const PictureCallOptions& options,
                   const std::vector<PictureFile>& pictures) {
  RunStatus status = RunStatus::Done;
  for (const PictureFile& picture : pictures)
    status = std::max(status, writePicture(drawing, options.picture, picture));
  return status;
}

int pictureDrawing(const PictureCallOptions& options, const fs::path& name, const std::vector<PictureFile>& pictures) {
  const Interruption interruption(RunStatus::OutputFailed);
  const fs::path file = readableFile(name);
  if (file.empty()) return static_cast<int>(RunStatus::DrawingUnreadable);
  if (!options.variables.empty()) {
    host::editor::ApplicationOptions settings;
    settings.supportFolders = options.supportFolders;
    settings.problem = [](std::string_view sentence) { complain(RunStatus::Done, std::string(sentence)); };
    host::editor::Application application(settings);
    const RunStatus opened = openDrawing(application, file, options.variables);
    return static_cast<int>(opened != RunStatus::Done ? opened : writeAll(*application.drawing(), options, pictures));
  }
  AcDbDatabase database(false);
  host::database::DrawingDatabase& drawing = host::database::databaseOf(&database);
  if (const auto read = host::dxf::readDrawing(drawing, file); !read.ok)
    return static_cast<int>(sayUnopened({RunStatus::DrawingUnreadable, read.message}));
  printProblems(shownName(name), drawing.problems());
  return static_cast<int>(writeAll(drawing, options, pictures));
}

}  // namespace

std::string_view endingOf(PictureFormat format) {
  constexpr std::array<std::string_view, 3> kEndings = {".png", ".svg", ".pdf"};
  return kEndings[static_cast<std::size_t>(format)];
}

fs::path outputIn(const fs::path& folder, const fs::path& drawing, std::string_view ending) {
  return folder / (drawing.stem().string() + std::string(ending));
}

std::optional<PictureFile> pictureFile(const fs::path& file, const std::vector<PictureFormat>& formats,
                                       std::string& refusal) {
  if (formats.size() > 1) {
    refusal = "--format: several formats go with --out-dir only";
    return std::nullopt;
  }
  if (isStandardStream(file)) return PictureFile{file, formats.empty() ? PictureFormat::Png : formats.front()};
  const std::string name = file.empty() ? "\"\"" : file.string();
  const auto format = host::picture::formatOfFile(file.string());
  if (!format) {
    refusal = name + ": a picture's name must end in .png, .svg or .pdf";
  } else if (!formats.empty() && formats.front() != *format) {
    refusal = name + ": the name and --format ask for different formats";
  } else {
    return PictureFile{file, *format};
  }
  return std::nullopt;
}

RunStatus writePicture(const host::database::DrawingDatabase& drawing, host::picture::PictureOptions options,
                       const PictureFile& picture) {
  options.metresPerUnit = metresPerUnit(drawing);
  const std::string name = isStandardStream(picture.file) ? "standard output" : picture.file.string();
  host::picture::PictureResult result;
  try {
    result = host::picture::drawPicture(drawing, options, picture.format);
  } catch (const std::bad_alloc&) {
    result.ok = false;
    result.message = "there is not enough memory for this picture";
  }
  if (!result.message.empty()) complain(RunStatus::Done, name + ": " + result.message);
  return result.ok ? writeOutput(picture.file, result.bytes) : RunStatus::OutputFailed;
}

int pictureDrawings(const PictureCallOptions& options) {
  std::vector<std::vector<PictureFile>> pictures;
  std::vector<fs::path> files;
  std::string refusal = refuseVariables(options.variables);
  for (const fs::path& drawing : options.drawings) {
    if (!refusal.empty()) break;
    pictures.push_back(picturesOf(options, drawing, refusal));
    for (const PictureFile& picture : pictures.back()) files.push_back(picture.file);
  }
  if (!refusal.empty()) return complain(RunStatus::WrongUsage, refusal);
  if (const RunStatus made = prepareOutputs(options.drawings, files, options.folder); made != RunStatus::Done)
    return static_cast<int>(made);
  return forEachDrawing(options, RunStatus::OutputFailed,
                        [&](std::size_t i) { return pictureDrawing(options, options.drawings[i], pictures[i]); });
}

}  // namespace tolmex

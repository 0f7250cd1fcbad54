// `tolmex picture`, and making pictures for every call.
#include <algorithm>
#include <array>
#include <memory>
#include <new>

#include "Commands.h"
#include "Console.h"
#include "Dxf/DxfFile.h"
#include "Editor/Application.h"
#include "GeoReference.h"
#include "Inputs.h"
#include "Interruption.h"
#include "Outputs.h"
#include "PlanFacts.h"
#include "PlanSession.h"
#include "PlanSheet.h"
#include "Repair.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::Code;
using host::Problem;
using host::problemOf;
using host::Result;
using host::RunStatus;
using host::picture::PictureFormat;

namespace {

std::string nameOf(const fs::path& picture) { return isStandardStream(picture) ? "standard output" : picture.string(); }

/// The pictures a call asks for of one drawing.
Result<std::vector<PictureFile>> picturesOf(const PictureCallOptions& options, const fs::path& drawing) {
  std::vector<PictureFile> pictures;
  if (!options.folder) {
    const Result<PictureFile> picture = pictureFile(options.out, options.formats);
    if (!picture) return picture;
    pictures.push_back(*picture);
    return fitting(std::move(pictures), options.picture);
  }
  if (isStandardStream(drawing))
    return problemOf(Code::WrongUsage, "the drawing on standard input has no name for --out-dir; name the picture");
  for (const PictureFormat format : options.formats.empty() ? std::vector{PictureFormat::Png} : options.formats)
    pictures.push_back({outputIn(*options.folder, drawing, endingOf(format)), format});
  return fitting(std::move(pictures), options.picture);
}

RunStatus writeAll(const host::database::DrawingDatabase& drawing, const PictureCallOptions& options,
                   const fs::path& name, const std::vector<PictureFile>& pictures) {
  RunStatus status = RunStatus::Done;
  host::picture::PictureOptions wanted = options.picture;
  host::picture::setDrawingFile(wanted, isStandardStream(name) ? "tolmex" : name);
  for (const PictureFile& picture : pictures) {
    const Result<> written = writePicture(drawing, wanted, picture, options.supportFolders);
    if (!written) complain(written.problem());
    status = std::max(status, written.status());
  }
  return status;
}

int pictureDrawing(const PictureCallOptions& options, const fs::path& name, const std::vector<PictureFile>& pictures) {
  const Interruption interruption(RunStatus::OutputFailed);
  const Result<fs::path> file = readableFile(name);
  if (!file) return complain(file.problem());
  if (!options.variables.empty()) {
    ProblemPrinter printer;
    host::editor::ApplicationOptions settings;
    settings.supportFolders = options.supportFolders;
    settings.observer = &printer;
    host::editor::Application application(settings);
    const Result<> opened = openDrawing(application, *file, options.variables);
    return opened ? static_cast<int>(writeAll(*application.drawing(), options, name, pictures))
                  : sayUnopened(opened.problem());
  }
  AcDbDatabase database(false);
  host::database::DrawingDatabase& drawing = host::database::databaseOf(&database);
  if (const Result<> read = host::dxf::readDrawing(drawing, *file); !read) return sayUnopened(read.problem());
  printProblems(shownName(name), drawing.problems());
  return static_cast<int>(writeAll(drawing, options, name, pictures));
}

}  // namespace

std::string_view endingOf(PictureFormat format) {
  constexpr std::array<std::string_view, 5> kEndings = {".png", ".svg", ".pdf", ".tif", ".html"};
  return kEndings[static_cast<std::size_t>(format)];
}

fs::path outputIn(const fs::path& folder, const fs::path& drawing, std::string_view ending) {
  return folder / drawing.stem().concat(ending);
}

Result<PictureFile> pictureFile(const fs::path& file, const std::vector<PictureFormat>& formats) {
  if (formats.size() > 1) return problemOf(Code::WrongUsage, "--format: several formats go with --out-dir only");
  if (isStandardStream(file)) return PictureFile{file, formats.empty() ? PictureFormat::Png : formats.front()};
  const std::string name = file.empty() ? "\"\"" : file.string();
  const auto format = host::picture::formatOfFile(file.string());
  if (!format) return problemOf(Code::WrongUsage, name, "a picture's name must end in .png, .svg, .pdf, .tif or .html");
  if (!formats.empty() && formats.front() != *format)
    return problemOf(Code::WrongUsage, name, "the name and --format ask for different formats");
  return PictureFile{file, *format};
}

Result<std::vector<PictureFile>> fitting(std::vector<PictureFile> pictures,
                                         const host::picture::PictureOptions& options) {
  for (const PictureFile& picture : pictures)
    if (const Result<> fits = host::picture::checkFormat(options, picture.format); !fits)
      return problemOf(fits.problem().code, nameOf(picture.file), fits.problem().text);
  return pictures;
}

Result<> writePicture(const host::database::DrawingDatabase& drawing, host::picture::PictureOptions options,
                      const PictureFile& picture, const std::vector<fs::path>& folders) {
  options.metresPerUnit = host::picture::metresPerUnit(drawing);
  options.supportFolders = folders;
  const std::string name = nameOf(picture.file);
  const auto inFile = [&name](Problem problem) {
    problem.file = name;
    return problem;
  };
  try {
    std::unique_ptr<PlanSheet> sheet;
    if (!options.sheetFile.empty()) {
      Result<std::unique_ptr<PlanSheet>> prepared = prepareSheet(drawing, options, folders);
      if (!prepared) return prepared.problem();
      sheet = std::move(prepared.value());
      options.sheet = &sheet->sheet;
    }
    host::picture::PlanFacts facts;
    if (picture.format == PictureFormat::Svg || picture.format == PictureFormat::Html) {
      facts = planFacts(drawing, options.metresPerUnit);
      options.facts = &facts;
    }
    options.measureOf = [&](const host::picture::Picture& laidOut) { return measureOf(laidOut, options, drawing); };
    Result<host::picture::Picture> made = host::picture::drawPicture(drawing, options, picture.format);
    if (!made) return inFile(made.problem());
    if (picture.format == PictureFormat::Tiff)
      if (const Result<> placed = makeTiff(*made, options, drawing); !placed) return inFile(placed.problem());
    if (made->remark) complain(inFile(*made->remark));
    if (Result<> written = writeOutput(picture.file, made->bytes); !written) return written;
    if (!options.hasWorldFile || picture.format != PictureFormat::Png || isStandardStream(picture.file)) return {};
    return writeOutput(fs::path(picture.file).replace_extension(".pgw"), host::picture::worldFile(*made));
  } catch (const std::bad_alloc&) {
    return problemOf(Code::OutputFailed, name, "there is not enough memory for this picture");
  }
}

int pictureDrawings(const PictureCallOptions& options) {
  std::vector<std::vector<PictureFile>> pictures;
  std::vector<fs::path> files;
  if (const Result<> fit = checkVariables(options.variables); !fit) return complain(fit.problem());
  for (const fs::path& drawing : options.drawings) {
    Result<std::vector<PictureFile>> asked = picturesOf(options, drawing);
    if (!asked) return complain(asked.problem());
    pictures.push_back(std::move(asked.value()));
    for (const PictureFile& picture : pictures.back()) files.push_back(picture.file);
  }
  if (const Result<> made = prepareOutputs(options.drawings, files, options.folder); !made)
    return complain(made.problem());
  return forEachDrawing(options, RunStatus::OutputFailed,
                        [&](std::size_t i) { return pictureDrawing(options, options.drawings[i], pictures[i]); });
}

}  // namespace tolmex

#include <cstdio>

#include "Commands.h"
#include "Dxf/DxfFile.h"
#include "Interruption.h"
#include "Outputs.h"

namespace tolmex {

using host::editor::RunStatus;

int complain(RunStatus status, const std::string& sentence) {
  std::fflush(stdout);
  std::fprintf(stderr, "tolmex: %s\n", sentence.c_str());
  return static_cast<int>(status);
}

std::string refusePictureName(const std::filesystem::path& file) {
  if (host::picture::formatOfFile(file.string())) return {};
  return (file.empty() ? "\"\"" : file.string()) + ": a picture's name must end in .png, .svg or .pdf";
}

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

}  // namespace

RunStatus writePicture(const host::database::DrawingDatabase& drawing, host::picture::PictureOptions options,
                       const std::filesystem::path& file) {
  const auto format = host::picture::formatOfFile(file.string());
  if (!format) {
    complain(RunStatus::WrongUsage, refusePictureName(file));
    return RunStatus::WrongUsage;
  }
  options.metresPerUnit = metresPerUnit(drawing);
  const host::picture::PictureResult picture = host::picture::drawPicture(drawing, options, *format);
  if (!picture.message.empty()) complain(RunStatus::Done, file.string() + ": " + picture.message);
  if (!picture.ok) return RunStatus::OutputFailed;
  const Interruption::Writing writing;
  const host::dxf::FileResult written = host::dxf::writeFileWhole(file, picture.bytes);
  if (written.ok) return RunStatus::Done;
  complain(RunStatus::OutputFailed, written.message);
  return RunStatus::OutputFailed;
}

int pictureDrawing(const PictureCallOptions& options) {
  if (const std::string refusal = refusePictureName(options.out); !refusal.empty()) {
    return complain(RunStatus::WrongUsage, refusal);
  }
  if (const std::string refusal = refuseOutputs({options.drawing}, {options.out}); !refusal.empty()) {
    return complain(RunStatus::OutputFailed, refusal);
  }
  const Interruption interruption(RunStatus::OutputFailed);
  AcDbDatabase database(false);
  host::database::DrawingDatabase& drawing = host::database::databaseOf(&database);
  if (const auto read = host::dxf::readDrawing(drawing, options.drawing); !read.ok) {
    return complain(RunStatus::DrawingUnreadable, read.message);
  }
  return static_cast<int>(writePicture(drawing, options.picture, options.out));
}

}  // namespace tolmex

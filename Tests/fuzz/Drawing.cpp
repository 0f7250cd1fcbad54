// Any bytes as a drawing: opened, looked at object by object, changed, painted, saved; what is saved is well-formed.
#include "Database/ChangeEverything.h"
#include "Dxf/DxfFile.h"
#include "Picture/Picture.h"
#include "Target.h"
#include "dbapserv.h"

using namespace host::database;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(fuzz::textOf(data, size));
  if (host::dxf::isDwg(bytes)) return 0;  // another program reads those
  AcDbDatabase db(false);
  DrawingDatabase& drawing = databaseOf(&db);
  const host::Result<> read = host::dxf::readDrawingText(drawing, bytes, "fuzz.dxf");
  fuzz::require(read.ok() == read.message().empty(), "a sentence when, and only when, nothing could be read");
  if (!read.ok()) return 0;
  if (drawing.problems().empty()) fuzz::require(host::dxf::drawingText(drawing) == bytes, "untouched bytes");
  host::picture::PictureOptions options;
  options.widthPx = 100;
  const auto picture = host::picture::drawPicture(drawing, options, host::picture::PictureFormat::Svg);
  fuzz::require(picture.ok() == picture.message().empty(), "a sentence when, and only when, there is no picture");
  acdbHostApplicationServices()->setWorkingDatabase(&db);
  tests::changeEverything(drawing);
  const std::string saved = host::dxf::drawingText(drawing);
  AcDbDatabase again(false);
  const host::Result<> reread = host::dxf::readDrawingText(databaseOf(&again), saved, "again");
  fuzz::require(reread.ok(), "what was saved can be read", reread.message());
  for (const Problem& problem : databaseOf(&again).problems()) fuzz::require(false, "saved sound", problem.text);
  return 0;
}

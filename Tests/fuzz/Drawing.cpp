// Any bytes as a drawing: opened, looked at object by object, changed, painted, saved; what is saved is well-formed.
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Dxf/DxfFile.h"
#include "Picture/Picture.h"
#include "Target.h"
#include "acutads.h"
#include "dbapserv.h"
#include "dbents.h"
#include "dbgroup.h"
#include "dbhatch.h"
#include "dbpl.h"
#include "sorttab.h"

namespace {

using namespace host::database;

void openEverything(DrawingDatabase& drawing) {
  std::vector<Slot*> slots;
  drawing.forEachSlot([&](Slot& slot) { slots.push_back(&slot); });
  for (Slot* const slot : slots) {
    AcDbObject* object = nullptr;
    if (acdbOpenAcDbObject(object, AcDbObjectId(slot), AcDb::kForWrite) != Acad::eOk) continue;
    acutRelRb(object->xData());
    if (auto* const entity = AcDbEntity::cast(object)) entity->setLayer(ACRX_T("0"));
    if (auto* const polyline = AcDbPolyline::cast(object)) polyline->setClosed(!polyline->isClosed());
    if (auto* const group = AcDbGroup::cast(object)) group->setDescription(ACRX_T("x"));
    if (auto* const table = AcDbSortentsTable::cast(object)) {
      AcDbObjectIdArray ids;
      table->getFullDrawOrder(ids);
      table->moveToTop(ids);
    }
    object->close();
  }
  drawing.layouts();
  drawing.drawOrder(drawing.modelSpace());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(fuzz::textOf(data, size));
  if (host::dxf::isDwg(bytes)) return 0;  // another program reads those
  AcDbDatabase db(false);
  DrawingDatabase& drawing = databaseOf(&db);
  const host::dxf::FileResult read = host::dxf::readDrawingText(drawing, bytes, "fuzz.dxf");
  fuzz::require(read.ok == read.message.empty(), "a sentence when, and only when, nothing could be read");
  if (!read.ok) return 0;
  if (drawing.problems().empty()) fuzz::require(host::dxf::drawingText(drawing) == bytes, "untouched bytes");
  host::picture::PictureOptions options;
  options.widthPx = 100;
  host::picture::drawPicture(drawing, options, host::picture::PictureFormat::Svg);
  acdbHostApplicationServices()->setWorkingDatabase(&db);
  openEverything(drawing);
  const std::string saved = host::dxf::drawingText(drawing);
  AcDbDatabase again(false);
  const host::dxf::FileResult reread = host::dxf::readDrawingText(databaseOf(&again), saved, "again");
  fuzz::require(reread.ok, "what was saved can be read", reread.message);
  for (const Problem& problem : databaseOf(&again).problems()) fuzz::require(false, "saved sound", problem.text);
  return 0;
}

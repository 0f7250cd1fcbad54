// What commands could do to a drawing, done to all of it; for drawings of which nobody knows what they hold.
#pragma once

#include <vector>

#include "Database/DrawingDatabase.h"
#include "acutads.h"
#include "dbents.h"
#include "dbgroup.h"
#include "dbpl.h"
#include "sorttab.h"

namespace tests {

/// Opens every object and changes what can be changed. The drawing is the working database.
inline void changeEverything(host::database::DrawingDatabase& drawing) {
  std::vector<host::database::Slot*> slots;
  drawing.forEachSlot([&](host::database::Slot& slot) { slots.push_back(&slot); });
  for (host::database::Slot* const slot : slots) {
    AcDbObject* object = nullptr;
    if (acdbOpenAcDbObject(object, AcDbObjectId(slot), AcDb::kForWrite) != Acad::eOk) continue;
    acutRelRb(object->xData());
    if (auto* const entity = AcDbEntity::cast(object)) {
      entity->setLayer(ACRX_T("0"));
      entity->setColorIndex(2);
    }
    if (auto* const polyline = AcDbPolyline::cast(object)) polyline->setClosed(!polyline->isClosed());
    if (auto* const group = AcDbGroup::cast(object)) group->setDescription(ACRX_T("x"));
    if (auto* const table = AcDbSortentsTable::cast(object)) {
      AcDbObjectIdArray ids;
      table->getFullDrawOrder(ids);
      table->moveToTop(ids);
    }
    object->createExtensionDictionary();
    object->close();
  }
  drawing.layouts();
  drawing.drawOrder(drawing.modelSpace());
}

}  // namespace tests

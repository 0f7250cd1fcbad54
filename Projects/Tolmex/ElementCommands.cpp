#include "Tolmex/ElementCommands.h"

#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/Status.h"
#include "OrvLib/GeomStructs/EntityMakers.h"
#include "OrvLib/Reports/Failures.h"
#include "Tolmex/ColorSchemeFile.h"
#include "Tolmex/EntityTag.h"

namespace OrvLib {
namespace {

void makeElement(AcDbObjectId polyline, Category category) {
  const ElementRow& kind = row(category);
  AcDbObjectId fill;
  // The host opens the boundary itself, so the fill comes before the polyline is opened.
  if (kind.pattern.name != nullptr) {
    fill = makeHatch(polyline, kColorByLayer, elementLayer(kind.fill.name),
                     {kind.pattern.name, kind.pattern.angleRad, kind.pattern.scale});
  }
  const Opened<AcDbEntity> outline(polyline, AcDb::kForWrite);
  if (!outline) {
    // A polyline on a locked layer cannot become an element; no tag would name its fill.
    if (!fill.isNull() && !eraseEntity(fill)) printFailed(kind.fill.name);
    return;
  }
  putOnElementLayer(*outline, kind.outline.name);
  if (!writeElementTag(category, fill, *outline)) printFailed(kind.tag, handleText(*outline).c_str());
}

}  // namespace

void makeElements(const SelectedIds& polylines, Category category) {
  for (const AcDbObjectId polyline : polylines) makeElement(polyline, category);
}

void makeRidgeLines(const SelectedIds& polylines) {
  const ElementRow& ridgeLine = row(Category::RidgeLine);
  for (const AcDbObjectId id : polylines) {
    const Opened<AcDbEntity> polyline(id, AcDb::kForWrite);
    if (!succeeded(polyline.status(), ridgeLine.tag)) continue;
    putOnElementLayer(*polyline, ridgeLine.outline.name);
    if (!writeElementTag(Category::RidgeLine, {}, *polyline, BuildingRecordIs::Kept)) {
      printFailed(ridgeLine.tag, handleText(*polyline).c_str());
    }
  }
}

}  // namespace OrvLib

#include "Tolmex/ElementCommands.h"

#include "OrvLib/ARX/Failures.h"
#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/Selector.h"
#include "OrvLib/GeomStructs/EntityMakers.h"
#include "Tolmex/ColorSchemeFile.h"
#include "Tolmex/DisplayFinish.h"
#include "Tolmex/DocumentLock.h"
#include "Tolmex/EntityTag.h"

namespace OrvLib {
namespace {

void makeElement(AcDbObjectId polyline, Category category) {
  const CategoryRow& kind = row(category);
  AcDbObjectId fill;
  // The host opens the boundary itself, so the fill comes before the polyline is opened.
  if (kind.fillPattern != nullptr) {
    fill = makeHatch(polyline, kColorByLayer, elementLayer(kind.fillLayer),
                     {kind.fillPattern, kind.patternAngleRad, kind.patternScale});
  }
  const Opened<AcDbEntity> outline(polyline, AcDb::kForWrite);
  if (!outline) {
    // A polyline on a locked layer cannot become an element; its fill would belong to nobody.
    if (!fill.isNull() && !eraseEntity(fill)) printFailed(kind.fillLayer);
    return;
  }
  putOnElementLayer(*outline, kind.outlineLayer);
  if (!writeElementTag(category, fill, *outline)) printFailed(kind.tag, handleText(*outline).c_str());
}

}  // namespace

void makeElements(const ElementCommand& command) {
  acutPrintf(L"%s", command.prompt);
  {
    const DocumentLock lock;
    if (!lock) return;
    for (const AcDbObjectId polyline : Selector::polylines().byUser()) makeElement(polyline, command.category);
  }
  finishDisplay();
}

}  // namespace OrvLib

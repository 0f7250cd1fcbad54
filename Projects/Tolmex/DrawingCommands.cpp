#include "Tolmex/DrawingCommands.h"

#include "OrvLib/ARX/DrawOrder.h"
#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/Reports/Failures.h"
#include "Tolmex/EntityTag.h"
#include "Tolmex/Model/Catalogue.h"

namespace OrvLib {
namespace {

Outcome moveEach(const SelectedIds& entities, bool (DrawOrder::*move)(AcDbObjectId)) {
  DrawOrder order;
  for (const AcDbObjectId id : entities) (order.*move)(id);
  return entities.empty() ? Outcome::Nothing : Outcome::Done;
}

void setFillLayers(const LayerState& state) {
  for (const ACHAR* const layer : kSwitchedLayers) setLayerState(layer, state);
}

void setCurrentLinetype(const ACHAR* name) {
  const int result = acedCommandS(RTSTR, L"linetype", RTSTR, L"s", RTSTR, name, RTSTR, L"", RTNONE);
  if (result < 0) acedAlert(L"linetype-cmd");
}

}  // namespace

Outcome bringToFront(const SelectedIds& entities) { return moveEach(entities, &DrawOrder::moveToTop); }

Outcome sendToBack(const SelectedIds& entities) { return moveEach(entities, &DrawOrder::moveToBottom); }

void drawContinuous() { setCurrentLinetype(kContinuous); }

void drawDashed() { setCurrentLinetype(L"HIDDEN2"); }

void drawDotted() { setCurrentLinetype(L"DOTS"); }

void showFills() { setFillLayers({}); }

void hideFills() {
  LayerState hidden;
  hidden.off = true;
  setFillLayers(hidden);
}

void removeData(const SelectedIds& entities) {
  for (const AcDbObjectId id : entities) {
    const Opened<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity && !removeTags(*entity)) printFailed(handleText(*entity).c_str());
  }
}

}  // namespace OrvLib

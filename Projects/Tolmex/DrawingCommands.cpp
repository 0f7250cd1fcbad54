#include "Tolmex/DrawingCommands.h"

#include <vector>

#include "OrvLib/ARX/DrawOrder.h"
#include "OrvLib/ARX/Failures.h"
#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/Selector.h"
#include "Tolmex/EntityTag.h"
#include "Tolmex/Names.h"

namespace OrvLib {
namespace {

void moveSelected(const ACHAR* prompt, bool (DrawOrder::*move)(AcDbObjectId)) {
  acutPrintf(L"%s", prompt);
  const std::vector<AcDbObjectId> selected = Selector::entities().byUser();
  if (selected.empty()) return;
  {
    DrawOrder order;
    for (const AcDbObjectId id : selected) (order.*move)(id);
  }
  regenerate();
}

void setFillLayers(const LayerState& state) {
  for (const ACHAR* const layer :
       {layers::kAsphaltFill, layers::kGravelFill, layers::kYardPavingFill, layers::kPathFill, layers::kStoneFenceFill,
        layers::kBoardFenceFill, layers::kHedgeFill, layers::kForestFill, layers::kGrassFill, layers::kRoofFillSun,
        layers::kRoofFillShadow}) {
    setLayerState(layer, state);
  }
}

}  // namespace

void bringSelectedToFront() { moveSelected(L"\nValitse objektit, jotka tuodaan eteen:\n", &DrawOrder::moveToTop); }

void sendSelectedToBack() { moveSelected(L"\nValitse objektit, jotka viedään taakse:\n", &DrawOrder::moveToBottom); }

void setCurrentLinetype(const ACHAR* name) {
  const int result = acedCommandS(RTSTR, L"linetype", RTSTR, L"s", RTSTR, name, RTSTR, L"", RTNONE);
  if (result < 0) acedAlert(L"linetype-cmd");
}

void showFills() { setFillLayers({}); }

void hideFills() {
  LayerState hidden;
  hidden.off = true;
  setFillLayers(hidden);
}

void removeDataFromSelected() {
  acutPrintf(L"\nValitse kohteet, joista poistetaan tiedot:\n");
  for (const AcDbObjectId id : Selector::entities().byUser()) {
    const Opened<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity && !removeTags(*entity)) printFailed(handleText(*entity).c_str());
  }
}

}  // namespace OrvLib

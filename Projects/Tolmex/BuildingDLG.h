// The building dialog as its caller sees it.
#pragma once

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// The ridge line chosen in the dialog.
struct RidgeChoice {
  bool hasRidge = false;
  AcDbObjectId ridgeLineId;
  double ridgeHeight = 0;  // above the eaves, drawing units
};

/// Shows the dialog "Rakennuksen ominaisuudet" modally. `building` is the building being edited, or null for new ones.
/// True when the user accepted: the numbers and roof colours are then in the current document's data.
bool askBuilding(AcDbObjectId building, bool offerRidgeButton, RidgeChoice& ridge);

}  // namespace OrvLib

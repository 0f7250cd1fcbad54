#include "Tolmex/DisplayFinish.h"

#include "OrvLib/ARX/DrawOrder.h"
#include "Tolmex/Catalogue.h"

namespace OrvLib {

void finishDisplay() {
  // Bottom first.
  for (const ACHAR* const layer : {layers::kShadow, layers::kRoofFillShadow, layers::kRoofFill, layers::kRoofFillSun,
                                   layers::kRoof, layers::kBuilding, layers::kRidgeLine}) {
    bringLayerToTop(layer);
  }
  regenerate();
}

}  // namespace OrvLib

#include "Tolmex/DisplayFinish.h"

#include "OrvLib/ARX/DrawOrder.h"
#include "Tolmex/Names.h"

namespace OrvLib {

void finishDisplay() {
  // Bottom first.
  bringLayersToTop({layers::kShadow, layers::kRoofFillShadow, layers::kRoofFill, layers::kRoofFillSun, layers::kRoof,
                    layers::kBuilding, layers::kRidgeLine});
  regenerate();
}

}  // namespace OrvLib

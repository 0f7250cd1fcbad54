#include "Tolmex/DisplayFinish.h"

#include "OrvLib/ARX/DrawOrder.h"
#include "Tolmex/Model/Catalogue.h"

namespace OrvLib {

void finishDisplay() {
  bringLayersToTop({kTopLayers.begin(), kTopLayers.end()});
  regenerate();
}

}  // namespace OrvLib

#include "Tolmex/FirstUse.h"

#include "Tolmex/ColorSchemeFile.h"
#include "Tolmex/DocData.h"

namespace OrvLib {

// The order matters: once the layers are made, nothing tells a drawing's own colours from the defaults any more.
void prepareCurrentDocument() {
  CDocData& data = currentDocData();
  if (data.prepared) {
    followAreaColors(data);
    readShadowSettings();
    return;
  }
  data.prepared = true;
  takeColorsFromDrawing(data);
  collectBuildings(data);
  data.buildingsAreFresh = true;
  readColorSchemeFile(data);
  data.preparedColors = data.colors;
  ensureElementLayers(data);
  readShadowSettings();
}

}  // namespace OrvLib

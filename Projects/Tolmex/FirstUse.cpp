#include "Tolmex/FirstUse.h"

#include "Tolmex/ColorSchemeFile.h"
#include "Tolmex/DocData.h"

namespace OrvLib {

// The order matters: once the layers are made, nothing tells a drawing's own colours from the defaults any more.
// Between the first two steps belongs what reads the drawing's buildings, after the last what reads its shadow
// settings.
void prepareCurrentDocument() {
  CDocData& data = currentDocData();
  if (data.prepared) return;
  data.prepared = true;
  takeColorsFromDrawing(data);
  readColorSchemeFile(data);
  ensureElementLayers(data.colors);
}

}  // namespace OrvLib

#include "Tolmex/ColorCommand.h"

#include "Tolmex/ColorSchemeFile.h"
#include "Tolmex/ColorSettings.h"
#include "Tolmex/DocData.h"

namespace OrvLib {
namespace {

void takeColors(const ColorScheme& chosen) {
  CDocData& data = currentDocData();
  data.colors = chosen;
  data.colorsChosen = true;
  applyAreaColors(data);
}

}  // namespace

void editColors() {
  showColorSettings(currentDocData().colors, takeColors, [](const ColorScheme& chosen) {
    takeColors(chosen);
    writeColorSchemeFile(chosen);
  });
}

}  // namespace OrvLib

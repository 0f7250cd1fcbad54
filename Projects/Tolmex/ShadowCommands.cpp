#include "Tolmex/ShadowCommands.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Selector.h"
#include "OrvLib/GeomStructs/EntityMakers.h"
#include "Tolmex/DisplayFinish.h"
#include "Tolmex/DocData.h"
#include "Tolmex/Fences.h"
#include "Tolmex/FirstUse.h"
#include "Tolmex/Model/Names.h"
#include "Tolmex/ShadowDrawing.h"
#include "Tolmex/ShadowSettings.h"
#include "Tolmex/VarjoDlg.h"

namespace OrvLib {
namespace {

/// The host's status-bar meter for as long as it lives.
class ProgressMeter {
 public:
  ProgressMeter(const ACHAR* label, std::size_t steps) {
    acedSetStatusBarProgressMeter(label, 0, static_cast<int>(std::min<std::size_t>(steps, kMost)));
  }
  ProgressMeter(const ProgressMeter&) = delete;
  ProgressMeter& operator=(const ProgressMeter&) = delete;
  ~ProgressMeter() { acedRestoreStatusBar(); }

  void show(std::size_t step) {
    acedSetStatusBarProgressMeterPos(static_cast<int>(std::min<std::size_t>(step, kMost)));
  }

 private:
  static constexpr std::size_t kMost = std::numeric_limits<int>::max();
};

/// Whether there was anything to erase. What a locked layer keeps is told: new shadows will lie on it.
bool eraseShadows() {
  const std::vector<AcDbObjectId> old = Selector::entities().onLayers({layers::kShadow, layers::kRoofFill});
  const auto kept = std::count_if(old.begin(), old.end(), [](AcDbObjectId id) { return !eraseEntity(id); });
  if (kept > 0) acutPrintf(L"\nVanhoista varjoista ja kattotäytöistä jäi poistamatta %d.\n", static_cast<int>(kept));
  return !old.empty();
}

void takeSettings(const ShadowSettings& settings) {
  static_cast<ShadowSettings&>(currentDocData()) = settings;
  setLayerColor(layers::kShadow, settings.shadowColor);
  updateShadows();
  writeShadowSettings();
}

}  // namespace

void updateShadows() {
  prepareCurrentDocument();
  CDocData& data = currentDocData();
  const bool haveErased = eraseShadows();
  // Updates leave many polylines behind that only bound hatches: those without data are not opened.
  const std::vector<AcDbObjectId> tagged = Selector::polylines().withDataOf(kTagApplication);
  if (haveErased || !data.buildingsAreFresh) collectBuildings(data);
  data.buildingsAreFresh = false;
  if (tagged.empty() && data.buildings.empty() && Selector::polylines().all().empty()) return;

  ProgressMeter meter(L"Varjojen päivitys...", data.buildings.size());
  ShadowDrawing drawing(data);
  for (const AcDbObjectId id : tagged) {
    Opened<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity && isFence(*entity)) drawing.makeFenceShadow(std::move(entity));
  }
  for (std::size_t i = 0; i < data.buildings.size(); ++i) {
    Building& building = data.buildings[i];
    building.refreshOutline();
    drawing.makeBuildingShadow(building);
    meter.show(i);
  }
  drawing.tellIfNothingWasHatched();
  finishDisplay();
}

void removeShadows() { eraseShadows(); }

void editShadowSettings() {
  collectBuildings(currentDocData());
  showShadowDialog(currentDocData(), takeSettings);
}

}  // namespace OrvLib

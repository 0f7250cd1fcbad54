#include "Tolmex/BuildingCommands.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "OrvLib/ARX/Failures.h"
#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/Resources.h"
#include "OrvLib/ARX/Selector.h"
#include "OrvLib/ARX/Status.h"
#include "OrvLib/DataStruct/Text.h"
#include "Tolmex/Building.h"
#include "Tolmex/BuildingDLG.h"
#include "Tolmex/BuildingRecord.h"
#include "Tolmex/ColorSchemeFile.h"
#include "Tolmex/DisplayFinish.h"
#include "Tolmex/DocData.h"
#include "Tolmex/DocumentLock.h"
#include "Tolmex/EntityTag.h"
#include "Tolmex/MessageBoxes.h"

namespace OrvLib {
namespace {

constexpr double kLowestRidge = -0.0001;  // a ridge as high as the eaves still makes a ridged roof

/// Gives the open polyline its layer and record. The building as it is now, record written or not; the user is told
/// when it was not.
Building convert(Opened<AcDbEntity> polyline, const RidgeChoice& ridge) {
  if (polyline && makeWritable(*polyline)) putOnElementLayer(*polyline, layers::kBuilding);
  const CDocData& data = currentDocData();
  Building building(std::move(polyline), toInt(data.nrFloors), data.eavesWidth, data.floorHeight, data.baseHeight,
                    ridge.hasRidge, ridge.ridgeLineId, ridge.ridgeHeight);
  if (!writeBuildingRecord(building)) showMessage(L"writing xdata failed");
  return building;
}

/// The ridge line chosen in the building dialog; nothing when the user cancels it.
std::optional<RidgeChoice> askBuilding(AcDbObjectId building, bool offerRidgeButton) {
  const OwnResources resources;
  BuildingDLG dialog(building, offerRidgeButton);
  if (dialog.DoModal() != IDOK) return std::nullopt;
  return dialog.ridge();
}

void editBuilding(AcDbObjectId id) {
  const std::optional<RidgeChoice> ridge = askBuilding(id, true);
  if (!ridge) return;
  acutPrintf(ridge->hasRidge && ridge->ridgeHeight > kLowestRidge
                 ? L"\nRakennukselle tehdään harjakatto.\n"
                 : L"\nRakennukselle ei saatu harjaviivaa, tehdään tasakatto.\n");
  // A polyline that cannot be written to, as on a locked layer, is refused by the record's writer.
  Building building = convert(Opened<AcDbEntity>(id, AcDb::kForRead), *ridge);
  Array<Building>& buildings = currentDocData().buildings;
  const auto former = std::find_if(buildings.begin(), buildings.end(),
                                   [&](const Building& candidate) { return candidate.entityId == id; });
  if (former != buildings.end()) buildings.erase(former);
  buildings.push_back(std::move(building));
  finishDisplay();
}

/// An element is never turned into a building; the user sees which one it is.
bool refuseElement(const AcDbEntity& polyline) {
  const std::optional<std::wstring> tag = readCategory(polyline);
  if (!tag) return false;
  polyline.highlight();
  showMessage(L"Muunnos " + *tag + L" -> rakennus ei ole mahdollinen\n");
  polyline.unhighlight();
  return true;
}

void makeNewBuildings(const std::vector<AcDbObjectId>& polylines) {
  std::optional<RidgeChoice> ridge = askBuilding({}, polylines.size() == 1);
  if (!ridge) return;
  if (!ridge->hasRidge) ridge->ridgeHeight = 0;
  for (const AcDbObjectId id : polylines) {
    Opened<AcDbEntity> polyline(id, AcDb::kForWrite);
    if (!polyline || refuseElement(*polyline)) continue;
    currentDocData().buildings.push_back(convert(std::move(polyline), *ridge));
  }
  finishDisplay();
}

/// What the user's one polyline is.
struct Single {
  std::optional<std::wstring> tag;
  bool isBuilding = false;
};

Single lookAt(AcDbObjectId id) {
  const Opened<AcDbEntity> polyline(id, AcDb::kForRead);
  if (!polyline) return {};
  return {readCategory(*polyline), isBuilding(*polyline)};
}

}  // namespace

void makeBuildings() {
  acutPrintf(L"\nValitse muokattava rakennus:\n");
  const DocumentLock lock;
  if (!lock) return;
  const std::vector<AcDbObjectId> selected = Selector::polylines().byUser();
  if (selected.empty()) return;
  collectBuildings(currentDocData());
  if (selected.size() > 1) return makeNewBuildings(selected);
  const Single single = lookAt(selected.front());
  if (single.tag) {
    showMessage(L"Muunnos " + lowerCase(*single.tag) + L" -> rakennus ei ole mahdollinen.\n");
  } else if (single.isBuilding) {
    editBuilding(selected.front());
  } else {
    makeNewBuildings(selected);
  }
}

void makeRidgeLines() {
  acutPrintf(L"\nValitse muokattava harjaviiva:\n");
  {
    const DocumentLock lock;
    if (!lock) return;
    for (const AcDbObjectId id : Selector::polylines().byUser()) {
      const Opened<AcDbEntity> polyline(id, AcDb::kForWrite);
      if (!succeeded(polyline.status(), row(Category::RidgeLine).tag)) continue;
      putOnElementLayer(*polyline, layers::kRidgeLine);
      if (!writeElementTag(Category::RidgeLine, {}, *polyline, BuildingRecordIs::Kept)) {
        printFailed(row(Category::RidgeLine).tag, handleText(*polyline).c_str());
      }
    }
  }
  finishDisplay();
}

}  // namespace OrvLib

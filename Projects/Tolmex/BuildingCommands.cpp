#include "Tolmex/BuildingCommands.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/Resources.h"
#include "OrvLib/DataStruct/Text.h"
#include "Tolmex/Building.h"
#include "Tolmex/BuildingDLG.h"
#include "Tolmex/BuildingRecord.h"
#include "Tolmex/ColorSchemeFile.h"
#include "Tolmex/DocData.h"
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

/// The ridge line chosen in the building dialog, whose numbers and colours the document's data take; nothing when the
/// user cancels it.
std::optional<RidgeChoice> askBuilding(AcDbObjectId building, bool offerRidgeButton) {
  CDocData& data = currentDocData();
  const OwnResources resources;
  BuildingDLG dialog(formFor(building, data), offerRidgeButton);
  const bool isAccepted = dialog.DoModal() == IDOK;
  // Also when the user cancels after an OK that was refused.
  if (const auto& colours = dialog.chosenColours()) data.roofColours = *colours;
  if (!isAccepted) return std::nullopt;
  takeForm(dialog.form(), data);
  return dialog.form().ridge;
}

Outcome editBuilding(AcDbObjectId id) {
  const std::optional<RidgeChoice> ridge = askBuilding(id, true);
  if (!ridge) return Outcome::Nothing;
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
  return Outcome::Done;
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

Outcome makeNewBuildings(const SelectedIds& polylines) {
  std::optional<RidgeChoice> ridge = askBuilding({}, polylines.size() == 1);
  if (!ridge) return Outcome::Nothing;
  if (!ridge->hasRidge) ridge->ridgeHeight = 0;
  for (const AcDbObjectId id : polylines) {
    Opened<AcDbEntity> polyline(id, AcDb::kForWrite);
    if (!polyline || refuseElement(*polyline)) continue;
    currentDocData().buildings.push_back(convert(std::move(polyline), *ridge));
  }
  return Outcome::Done;
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

Outcome makeBuildings(const SelectedIds& polylines) {
  if (polylines.empty()) return Outcome::Nothing;
  collectBuildings(currentDocData());
  if (polylines.size() > 1) return makeNewBuildings(polylines);
  const Single single = lookAt(polylines.front());
  if (single.tag) {
    showMessage(L"Muunnos " + lowerCase(*single.tag) + L" -> rakennus ei ole mahdollinen.\n");
    return Outcome::Nothing;
  }
  return single.isBuilding ? editBuilding(polylines.front()) : makeNewBuildings(polylines);
}

}  // namespace OrvLib

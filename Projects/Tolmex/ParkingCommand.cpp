#include "Tolmex/ParkingCommand.h"

#include <optional>

#include "OrvLib/ARX/EntityGeometry.h"
#include "OrvLib/ARX/Groups.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/Status.h"
#include "OrvLib/GeomStructs/EntityMakers.h"
#include "Tolmex/Model/Names.h"
#include "Tolmex/Model/ParkingLayout.h"

namespace OrvLib {
namespace {

constexpr const ACHAR* kGroupPrefix = L"Parkkipaikka";
constexpr const ACHAR* kGroupDescription = L"Pysäköintialueiden viivat";

std::optional<Line> askBaseLine() {
  ads_point start = {0, 0, 0};
  ads_point end = {0, 0, 0};
  if (acedGetPoint(nullptr, L"\nOsoita parkkipaikan alkupiste:", start) != RTNORM) return std::nullopt;
  if (acedGetPoint(start, L"\nOsoita parkkipaikan loppupiste:", end) != RTNORM) return std::nullopt;
  return Line{toPoint3d(asPnt3d(start)), toPoint3d(asPnt3d(end))};
}

/// False when the user cancels; an empty answer keeps the value.
bool askNumber(const ACHAR* prompt, double& value) {
  ads_real answer = 0;
  const int result = acedGetReal(prompt, &answer);
  if (result == RTNORM) value = answer;
  return result == RTNORM || result == RTNONE;
}

bool askPlaces(ParkingRow& row) {
  return askNumber(L"\nPaikan kulma asteina [90] (0-360):", row.angleDegrees) &&
         askNumber(L"\nPaikan leveys metreinä [2.5]:", row.width) &&
         askNumber(L"\nPaikan pituus metreinä [5.0]:", row.length);
}

void appendIfMade(AcDbObjectIdArray& ids, AcDbObjectId id) {
  if (!id.isNull()) ids.append(id);
}

/// The group of the row, holding its base line. The host wants it in the drawing before it takes members.
AcDbObjectId makeRowGroup(AcDbObjectId baseLine) {
  const Opened<AcDbGroup> group = NumberedGroups(kGroupPrefix).make(kGroupDescription);
  AcDbObjectIdArray members;
  appendIfMade(members, baseLine);
  appendToGroup(group, members);
  return group ? group->objectId() : AcDbObjectId();
}

void drawPlaces(const ParkingRow& row, AcDbObjectId groupId) {
  AcDbObjectIdArray members;
  for (const Line& line : stallLines(row)) appendIfMade(members, makeLine(line, kNoColor, layers::kParking));
  appendToGroup(groupId, members);
  const Opened<AcDbGroup> group(groupId, AcDb::kForWrite);
  if (group) succeeded(group->setLayer(layers::kParking), layers::kParking);
}

}  // namespace

Outcome makeParkingPlaces() {
  const std::optional<Line> baseLine = askBaseLine();
  if (!baseLine) return Outcome::Nothing;
  const AcDbObjectId group = makeRowGroup(makeLine(*baseLine, kNoColor, layers::kParking));
  ParkingRow row{*baseLine};
  if (!askPlaces(row)) return Outcome::Nothing;
  if (!row.hasUsableWidth()) {
    acutPrintf(L"\nPaikan leveyden on oltava suurempi kuin nolla.\n");
    return Outcome::Nothing;
  }
  if (!row.hasUsableCount()) {
    acutPrintf(L"\nPaikkoja tulisi yli %d; anna suurempi leveys.\n", ParkingRow::kMostPlaces);
    return Outcome::Nothing;
  }
  drawPlaces(row, group);
  return Outcome::Done;
}

}  // namespace OrvLib

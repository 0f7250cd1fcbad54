#include "Tolmex/RoofRaster.h"

#include <cmath>
#include <numbers>
#include <optional>

#include "OrvLib/ARX/EntityGeometry.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/GeomStructs/EntityMakers.h"
#include "OrvLib/Reports/Failures.h"
#include "Tolmex/BuildingRecord.h"
#include "Tolmex/MessageBoxes.h"
#include "Tolmex/Model/Names.h"

namespace OrvLib {
namespace {

bool isBuildingId(AcDbObjectId id) {
  const Opened<AcDbEntity> entity(id, AcDb::kForRead);
  return entity && isBuilding(*entity);
}

bool readRoofColoursOf(AcDbObjectId id, RoofColours& colours) {
  const Opened<AcDbEntity> entity(id, AcDb::kForRead);
  return entity && readRoofColours(*entity, colours);
}

/// Nothing when the user does not give every point.
std::optional<PolyLine> askFace(int pointCount) {
  PolyLine face;
  for (int i = 1; i <= pointCount; ++i) {
    ads_point point = {0, 0, 0};
    if (acedGetPoint(nullptr, (L"\nPiste " + std::to_wstring(i)).c_str(), point) != RTNORM) return std::nullopt;
    face.append(toPoint3d(asPnt3d(point)));
  }
  face.setClosed(true);
  return face;
}

/// Plan direction of the edge. Ends at one point give a number just under a full turn, as the rasters of drawings in
/// use were made with it.
double directionOf(const Line& edge) {
  if (edge.start.isEqualTo(edge.end)) return std::atan(1.0) * 7.999999999999999;
  return std::atan2(edge.end.y - edge.start.y, edge.end.x - edge.start.x);
}

enum class Filling { Done, WithoutColors };

Filling fill(AcDbObjectId boundary, AcDbObjectId building, bool isShaded) {
  RoofColours colours;
  if (!readRoofColoursOf(building, colours)) {
    showMessage(L"\nEi saatu luettua katolle määritettyjä täyttövärejä. Täyttöä ei tehdä.\n");
    return Filling::WithoutColors;
  }
  makeHatch(boundary, isShaded ? colours.shaded : colours.sunlit,
            isShaded ? layers::kRoofFillShadow : layers::kRoofFillSun, {});
  return Filling::Done;
}

}  // namespace

Outcome makeRoofRaster(AcDbObjectId building, double rasterScale, int pointCount, bool isShaded) {
  if (!isBuildingId(building)) {
    acutPrintf(L"\nEi valittu rakennusta.\n");
    return Outcome::Nothing;
  }
  acutPrintf(pointCount == 3
                 ? L"\nValitse ensin rakennuksen ulkoreunan pisteet ja lopuksi kolmas piste kiertosuunnassa.\n"
                 : L"\nValitse ensin harjaviivan pisteet ja lopuksi muut pisteet kiertosuunnassa.\n");
  const std::optional<PolyLine> points = askFace(pointCount);
  if (!points) return Outcome::Nothing;
  const AcDbObjectId boundary = makeClosed3dPolyline(*points, kColorByLayer, nullptr);
  const double downSlope = directionOf(points->segment(0)) + std::numbers::pi / 2;
  makeHatch(boundary, kColorByLayer, layers::kRoof, {L"LINE", downSlope, rasterScale});
  // Without colours the outline stays: the user sees which face went unfilled.
  const bool keepsOutline =
      askYesNo(L"Tehdäänkö katolle täyttö?\n") && fill(boundary, building, isShaded) == Filling::WithoutColors;
  if (!keepsOutline && !boundary.isNull() && !eraseEntity(boundary)) printFailed();
  return Outcome::Done;
}

}  // namespace OrvLib

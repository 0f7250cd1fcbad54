#include "OrvLib/ARX/EntityGeometry.h"

#include <memory>

#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/Reports/Failures.h"

namespace OrvLib {
namespace {

double bulgeFromAbove(double bulge, const AcGeVector3d& normal) { return normal.z < 0 ? -bulge : bulge; }

/// What readers answer for a polyline that the host does not give whole: the rest of it would be another course.
std::nullopt_t unreadable(const AcDbEntity& polyline, const ACHAR* what) {
  printFailed(what, handleText(polyline).c_str());
  return std::nullopt;
}

std::optional<PolyArc> readLightweight(const AcDbPolyline& polyline) {
  PolyArc course;
  course.setClosed(polyline.isClosed());
  const AcGeVector3d normal = polyline.normal();
  for (unsigned int i = 0; i < polyline.numVerts(); ++i) {
    AcGePoint3d point;
    double bulge = 0;
    if (polyline.getPointAt(i, point) != Acad::eOk || polyline.getBulgeAt(i, bulge) != Acad::eOk) {
      return unreadable(polyline, L"LightWeight PolyLine conversion to PolyLine failed!");
    }
    course.append({toPoint3d(point), bulgeFromAbove(bulge, normal)});
  }
  return course;
}

/// Calls `visit` with every vertex of an old-style polyline, whether it is in a drawing or not. False when the host
/// does not give one of them.
template <class Vertex, class Polyline, class Visit>
bool visitVertices(const Polyline& polyline, const Visit& visit) {
  const std::unique_ptr<AcDbObjectIterator> iterator(polyline.vertexIterator());
  if (!iterator) return false;
  for (iterator->start(); !iterator->done(); iterator->step()) {
    const auto opened = Opened<Vertex>::by(
        [&](Vertex*& vertex) { return polyline.openVertex(vertex, iterator->objectId(), AcDb::kForRead); });
    const Vertex* const vertex = opened ? opened.get() : Vertex::cast(iterator->entity());
    if (vertex == nullptr) return false;
    visit(*vertex);
  }
  return true;
}

std::optional<PolyArc> read2d(const AcDb2dPolyline& polyline) {
  PolyArc course;
  course.setClosed(polyline.isClosed());
  const AcGeVector3d normal = polyline.normal();
  const bool isWhole = visitVertices<AcDb2dVertex>(polyline, [&](const AcDb2dVertex& vertex) {
    if (vertex.vertexType() == AcDb::k2dSplineCtlVertex) return;
    course.append({toPoint3d(polyline.vertexPosition(vertex)), bulgeFromAbove(vertex.bulge(), normal)});
  });
  if (!isWhole) return unreadable(polyline, L"2D PolyLine conversion to PolyLine failed!");
  return course;
}

std::optional<PolyArc> read3d(const AcDb3dPolyline& polyline) {
  PolyArc course;
  course.setClosed(polyline.isClosed());
  const bool isWhole = visitVertices<AcDb3dPolylineVertex>(polyline, [&](const AcDb3dPolylineVertex& vertex) {
    if (vertex.vertexType() != AcDb::k3dControlVertex) course.append({toPoint3d(vertex.position())});
  });
  if (!isWhole) return unreadable(polyline, L"3D PolyLine conversion to PolyLine failed!");
  return course;
}

}  // namespace

bool isBoundary(const AcDbEntity& entity) {
  for (const AcRxClass* const type : {AcDbPolyline::desc(), AcDb2dPolyline::desc(), AcDb3dPolyline::desc(),
                                      AcDbRegion::desc(), AcDbLine::desc(), AcDbPoint::desc()}) {
    if (entity.isKindOf(type)) return true;
  }
  return false;
}

std::optional<PolyArc> readPolyArc(const AcDbEntity& entity) {
  if (const auto* const lightweight = AcDbPolyline::cast(&entity)) return readLightweight(*lightweight);
  if (const auto* const old2d = AcDb2dPolyline::cast(&entity)) return read2d(*old2d);
  if (const auto* const old3d = AcDb3dPolyline::cast(&entity)) return read3d(*old3d);
  if (const auto* const line = AcDbLine::cast(&entity)) {
    return PolyArc({{toPoint3d(line->startPoint())}, {toPoint3d(line->endPoint())}});
  }
  if (const auto* const point = AcDbPoint::cast(&entity)) return PolyArc({{toPoint3d(point->position())}});
  if (AcDbRegion::cast(&entity) != nullptr) return PolyArc();
  return std::nullopt;
}

}  // namespace OrvLib

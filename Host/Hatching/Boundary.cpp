#include "Hatching/Boundary.h"

#include <algorithm>
#include <cmath>
#include <list>
#include <memory>

#include "Curves/EntityCurves.h"
#include "Database/ObjectAccess.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbpl.h"

namespace host::hatching {

namespace {

using database::DxfType;
using database::ObjectAxes;

constexpr double kParallel = 1e-12;    // of the squared sine between normals
constexpr double kOwnDetail = 0;       // deviation of chords: the curve's own, a part of its size
constexpr double kBulgeDetail = 1e-4;  // the same of a bulge, of half its chord or of its diameter
constexpr double kJoint = 1e-8;        // gap between joined entities, of the boundary's size

/// One entity's shape in the hatch's plane.
struct Chain {
  std::vector<LoopVertex> vertices;
  bool isClosed = false;
};

LoopVertex vertexAt(Point2 p, double bulge = 0) { return {p.x, p.y, bulge}; }

/// Takes world points and flat shapes into the hatch's plane.
class HatchPlane {
 public:
  explicit HatchPlane(const AcGeVector3d& normal) : axes_(normal) {}

  Point2 point(const AcGePoint3d& world) const {
    const AcGePoint3d p = axes_.fromWorld(world);
    return {p.x, p.y};
  }

  /// Whether planes with that normal lie parallel to this one, seen from either side.
  bool isParallel(const AcGeVector3d& normal) const {
    const AcGeVector3d sine = normal.crossProduct(axes_.az);
    return sine.dotProduct(sine) < kParallel;
  }
  bool isSeenFromBehind(const AcGeVector3d& normal) const { return !(normal.dotProduct(axes_.az) > 0); }

  Chain points(const std::vector<AcGePoint3d>& world, bool isClosed) const {
    Chain chain;
    chain.isClosed = isClosed;
    for (const AcGePoint3d& p : world) chain.vertices.push_back(vertexAt(point(p)));
    return chain;
  }

  /// A shape in its own object coordinates.
  Chain shape(const std::vector<LoopVertex>& own, double elevation, const AcGeVector3d& normal, bool isClosed) const {
    const ObjectAxes from(normal);
    const bool keepsArcs = isParallel(from.az);
    const double side = isSeenFromBehind(from.az) ? -1 : 1;
    Chain chain;
    chain.isClosed = isClosed;
    for (std::size_t i = 0; i < own.size(); ++i) {
      const LoopVertex& v = own[i];
      const Point2 at = point(from.toWorld(v.x, v.y, elevation));
      chain.vertices.push_back(vertexAt(at, keepsArcs ? side * v.bulge : 0));
      if (v.bulge == 0 || keepsArcs || (i + 1 == own.size() && !isClosed)) continue;
      const Point2 next = own[(i + 1) % own.size()].point();
      const double size = std::max(std::abs(v.bulge), 1.0) * distance(v.point(), next) / 2;
      Polygon path;
      curves::flattenBulge(v.point(), next, v.bulge, size * kBulgeDetail, path);
      path.pop_back();
      for (const Point2 p : path) chain.vertices.push_back(vertexAt(point(from.toWorld(p.x, p.y, elevation))));
    }
    return chain;
  }

 private:
  ObjectAxes axes_;
};

// ---- polylines ----

Chain chainOf(const AcDbPolyline& polyline, const HatchPlane& plane) {
  std::vector<LoopVertex> own(polyline.numVerts());
  for (unsigned int i = 0; i < own.size(); ++i) {
    AcGePoint2d p;
    polyline.getPointAt(i, p);
    own[i] = {p.x, p.y, 0};
    polyline.getBulgeAt(i, own[i].bulge);
  }
  return plane.shape(own, polyline.elevation(), polyline.normal(), polyline.isClosed());
}

/// Gives the living vertices of an old-style polyline to `visit`.
template <class Vertex, class Polyline, class Visit>
Acad::ErrorStatus forEachVertex(const Polyline& polyline, const Visit& visit) {
  const std::unique_ptr<AcDbObjectIterator> iterator(polyline.vertexIterator());
  for (iterator->start(); !iterator->done(); iterator->step()) {
    if (iterator->objectId().isNull()) {
      if (const Vertex* const vertex = Vertex::cast(iterator->entity())) visit(*vertex);
      continue;
    }
    const AcDbObjectPointer<Vertex> vertex(iterator->objectId(), AcDb::kForRead);
    if (vertex.openStatus() == Acad::eWasErased) continue;
    if (vertex.openStatus() != Acad::eOk) return vertex.openStatus();
    visit(*vertex);
  }
  return Acad::eOk;
}

Acad::ErrorStatus readChain(const AcDb2dPolyline& polyline, const HatchPlane& plane, Chain& chain) {
  std::vector<LoopVertex> own;
  const Acad::ErrorStatus status = forEachVertex<AcDb2dVertex>(polyline, [&](const AcDb2dVertex& vertex) {
    if (vertex.vertexType() == AcDb::k2dSplineCtlVertex) return;
    const AcGePoint3d p = vertex.position();
    own.push_back({p.x, p.y, vertex.bulge()});
  });
  chain = plane.shape(own, polyline.elevation(), polyline.normal(), polyline.isClosed());
  return status;
}

Acad::ErrorStatus readChain(const AcDb3dPolyline& polyline, const HatchPlane& plane, Chain& chain) {
  std::vector<AcGePoint3d> world;
  const Acad::ErrorStatus status =
      forEachVertex<AcDb3dPolylineVertex>(polyline, [&](const AcDb3dPolylineVertex& vertex) {
        if (vertex.vertexType() != AcDb::k3dControlVertex) world.push_back(vertex.position());
      });
  chain = plane.points(world, polyline.isClosed());
  return status;
}

// ---- curves that the interface has no class for, from their records ----

/// Circles and their arcs stay arcs, in halves, so that none is nearly a full turn over a tiny chord.
Chain arcChain(const database::Slot& slot, const HatchPlane& plane) {
  const auto arc = curves::readArc(slot);
  if (!arc) return {};
  const AcGeVector3d normal = arc->major.crossProduct(arc->minor).normal();
  if (slot.type == DxfType::Ellipse || !plane.isParallel(normal)) {
    std::vector<AcGePoint3d> path;
    flatten(*arc, kOwnDetail, path);
    return plane.points(path, arc->isWhole());
  }
  const double side = plane.isSeenFromBehind(normal) ? -1 : 1;
  Chain chain;
  if (slot.type == DxfType::Circle) {
    chain.isClosed = true;
    for (const AcGePoint3d& p : {arc->centre - arc->major, arc->centre + arc->major})
      chain.vertices.push_back(vertexAt(plane.point(p), side));
    return chain;
  }
  const double bulge = side * std::tan(arc->sweep / 8);
  for (const double fraction : {0.0, 0.5, 1.0})
    chain.vertices.push_back(
        vertexAt(plane.point(arc->at(arc->start + fraction * arc->sweep)), fraction < 1 ? bulge : 0));
  return chain;
}

Chain splineChain(const database::Slot& slot, const HatchPlane& plane) {
  const auto spline = curves::readSpline(slot);
  return spline ? plane.points(flatten(*spline, kOwnDetail), spline->isClosed) : Chain();
}

Acad::ErrorStatus readChain(const AcDbEntity& entity, const HatchPlane& plane, Chain& chain) {
  if (const auto* const polyline = AcDbPolyline::cast(&entity)) {
    chain = chainOf(*polyline, plane);
    return Acad::eOk;
  }
  if (const auto* const polyline = AcDb2dPolyline::cast(&entity)) return readChain(*polyline, plane, chain);
  if (const auto* const polyline = AcDb3dPolyline::cast(&entity)) return readChain(*polyline, plane, chain);
  if (const auto* const line = AcDbLine::cast(&entity)) {
    chain = plane.points({line->startPoint(), line->endPoint()}, false);
    return Acad::eOk;
  }
  const database::Slot* const slot = HostObjectAccess::slot(entity);
  switch (slot != nullptr ? slot->type : DxfType::Unknown) {
    case DxfType::Circle:
    case DxfType::Arc:
    case DxfType::Ellipse:
      chain = arcChain(*slot, plane);
      return Acad::eOk;
    case DxfType::Spline:
      chain = splineChain(*slot, plane);
      return Acad::eOk;
    default:
      return Acad::eInvalidInput;  // points, texts, regions: nothing that closes a loop here
  }
}

// ---- joining ----

/// The same way back: each piece keeps its arc, seen from its other end.
void turnRound(std::vector<LoopVertex>& vertices) {
  std::reverse(vertices.begin(), vertices.end());
  for (std::size_t i = 0; i + 1 < vertices.size(); ++i) vertices[i].bulge = -vertices[i + 1].bulge;
  if (!vertices.empty()) vertices.back().bulge = 0;
}

double gapBetween(const LoopVertex& a, const LoopVertex& b) { return distance(a.point(), b.point()); }

/// One open chain of all; false when they do not join end to end in one run.
bool join(std::vector<Chain> chains, Chain& whole) {
  double size = 0;
  for (const Chain& chain : chains) {
    if (chain.isClosed || chain.vertices.size() < 2) return false;
    for (const LoopVertex& v : chain.vertices) size = std::max(size, gapBetween(chains.front().vertices.front(), v));
  }
  const double tolerance = size * kJoint;
  std::list<Chain> rest(std::make_move_iterator(chains.begin() + 1), std::make_move_iterator(chains.end()));
  whole = std::move(chains.front());
  while (!rest.empty()) {
    const LoopVertex end = whole.vertices.back();
    const auto next = std::find_if(rest.begin(), rest.end(), [&](const Chain& chain) {
      return std::min(gapBetween(end, chain.vertices.front()), gapBetween(end, chain.vertices.back())) <= tolerance;
    });
    if (next == rest.end()) return false;
    if (gapBetween(end, next->vertices.front()) > tolerance) turnRound(next->vertices);
    whole.vertices.pop_back();  // the joint is the next chain's first vertex, with the bulge from there on
    whole.vertices.insert(whole.vertices.end(), next->vertices.begin(), next->vertices.end());
    rest.erase(next);
  }
  return true;
}

}  // namespace

Acad::ErrorStatus boundaryLoop(const AcDbObjectIdArray& boundaries, const AcGeVector3d& normal, Loop& loop) {
  if (boundaries.isEmpty()) return Acad::eInvalidInput;
  const auto refuse = [&](std::string_view why) {
    for (const AcDbObjectId id : boundaries)
      id.slot()->database().tellRefused(*id.slot(), database::WorkObserver::Refusal::Use, why);
    return Acad::eInvalidInput;
  };
  const HatchPlane plane(normal);
  std::vector<Chain> chains;
  for (const AcDbObjectId id : boundaries) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk) return entity.openStatus();
    const Acad::ErrorStatus status = readChain(*entity, plane, chains.emplace_back());
    if (status == Acad::eInvalidInput) return refuse("of a kind that bounds nothing");
    if (status != Acad::eOk) return status;
  }
  Chain whole;
  if (chains.size() == 1) {
    whole = std::move(chains.front());
  } else if (!join(std::move(chains), whole)) {
    return refuse("not joined end to end");
  }
  const LoopFault fault = makeLoop(whole.vertices, whole.isClosed, loop);
  return fault == LoopFault::None ? Acad::eOk : refuse(textOf(fault));
}

}  // namespace host::hatching

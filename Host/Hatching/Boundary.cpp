#include "Hatching/Boundary.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <list>
#include <memory>
#include <numbers>

#include "Database/ObjectAccess.h"
#include "Hatching/Arcs.h"
#include "Hatching/Curves.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbpl.h"

namespace host::hatching {

namespace {

using database::DxfType;
using database::ObjectAxes;
using database::Tag;

constexpr double kRadPerDegree = std::numbers::pi / 180;
constexpr double kTurn = 2 * std::numbers::pi;
constexpr double kParallel = 1e-12;    // of the squared sine between normals
constexpr double kCurveDetail = 1e-4;  // deviation of chords, of the curve's size
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

  /// A direction: points far from the origin would lose its digits.
  Point2 vector(const AcGeVector3d& v) const { return {v.dotProduct(axes_.ax), v.dotProduct(axes_.ay)}; }

  Chain points(const std::vector<AcGePoint3d>& world, bool isClosed) const {
    Chain chain;
    chain.isClosed = isClosed;
    for (const AcGePoint3d& p : world) chain.vertices.push_back(vertexAt(point(p)));
    return chain;
  }

  /// A shape in its own object coordinates.
  Chain shape(const std::vector<LoopVertex>& own, double elevation, const AcGeVector3d& normal, bool isClosed) const {
    const ObjectAxes from(normal);
    const double facing = from.az.dotProduct(axes_.az);
    const bool isParallel = from.az.crossProduct(axes_.az).dotProduct(from.az.crossProduct(axes_.az)) < kParallel;
    Chain chain;
    chain.isClosed = isClosed;
    for (std::size_t i = 0; i < own.size(); ++i) {
      const LoopVertex& v = own[i];
      const Point2 at = point(from.toWorld(v.x, v.y, elevation));
      if (v.bulge == 0 || isParallel) {
        chain.vertices.push_back(vertexAt(at, facing > 0 ? v.bulge : -v.bulge));
        continue;
      }
      chain.vertices.push_back(vertexAt(at));
      if (i + 1 == own.size() && !isClosed) continue;
      const LoopVertex& next = own[(i + 1) % own.size()];
      const Arc arc = arcOf({v.x, v.y}, {next.x, next.y}, v.bulge);
      const int chords = chordCount(arc.radius, arc.sweep, arc.radius * kCurveDetail);
      for (int k = 1; k < chords; ++k) {
        const Point2 p = arc.at(static_cast<double>(k) / chords);
        chain.vertices.push_back(vertexAt(point(from.toWorld(p.x, p.y, elevation))));
      }
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
    Vertex* vertex = nullptr;
    const Acad::ErrorStatus status = polyline.openVertex(vertex, iterator->objectId(), AcDb::kForRead);
    if (status == Acad::eWasErased) continue;
    if (status != Acad::eOk) return status;
    visit(*vertex);
    vertex->close();
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

/// The single-valued tags of a curve's record.
struct CurveTags {
  AcGePoint3d centre;
  AcGeVector3d major;
  AcGeVector3d normal{0, 0, 1};
  double size = 0, angle50 = 0, angle51 = 0, angle41 = 0, angle42 = kTurn;
};

CurveTags readCurve(const AcDbEntity& entity) {
  CurveTags curve;
  database::TagCursor tags = HostObjectAccess::tags(entity);
  Tag tag;
  while (tags.next(tag) && tag.code < 1000) {
    switch (tag.code) {
      case 10:
        curve.centre.x = tag.real();
        break;
      case 20:
        curve.centre.y = tag.real();
        break;
      case 30:
        curve.centre.z = tag.real();
        break;
      case 11:
        curve.major.x = tag.real();
        break;
      case 21:
        curve.major.y = tag.real();
        break;
      case 31:
        curve.major.z = tag.real();
        break;
      case 210:
        curve.normal.x = tag.real();
        break;
      case 220:
        curve.normal.y = tag.real();
        break;
      case 230:
        curve.normal.z = tag.real();
        break;
      case 40:
        curve.size = tag.real();
        break;
      case 41:
        curve.angle41 = tag.real();
        break;
      case 42:
        curve.angle42 = tag.real();
        break;
      case 50:
        curve.angle50 = tag.real();
        break;
      case 51:
        curve.angle51 = tag.real();
        break;
      default:
        break;
    }
  }
  return curve;
}

/// Counter-clockwise from `start` to `end`; a full turn when they are the same.
double sweepBetween(double start, double end) {
  double sweep = std::fmod(end - start, kTurn);
  if (sweep < 0) sweep += kTurn;
  return sweep < 1e-9 || kTurn - sweep < 1e-9 ? kTurn : sweep;
}

Chain circleChain(const CurveTags& curve, const HatchPlane& plane) {
  const AcGePoint3d& c = curve.centre;
  return plane.shape({{c.x - curve.size, c.y, 1}, {c.x + curve.size, c.y, 1}}, c.z, curve.normal, true);
}

Chain arcChain(const CurveTags& curve, const HatchPlane& plane) {
  const double start = curve.angle50 * kRadPerDegree;
  const double sweep = sweepBetween(start, curve.angle51 * kRadPerDegree);
  const Arc arc{{curve.centre.x, curve.centre.y}, curve.size, start, sweep};
  const double bulge = std::tan(sweep / 8);  // of one half: no arc of nearly a full turn over a tiny chord
  return plane.shape({vertexAt(arc.at(0), bulge), vertexAt(arc.at(0.5), bulge), vertexAt(arc.at(1))}, curve.centre.z,
                     curve.normal, false);
}

Chain chordChain(const Polygon& path, bool isClosed) {
  Chain chain;
  chain.isClosed = isClosed;
  for (const Point2 p : path) chain.vertices.push_back(vertexAt(p));
  return chain;
}

Chain ellipseChain(const CurveTags& curve, const HatchPlane& plane) {
  const AcGeVector3d minor = curve.normal.normal().crossProduct(curve.major) * curve.size;
  const double sweep = sweepBetween(curve.angle41, curve.angle42);
  const EllipseArc arc{plane.point(curve.centre), plane.vector(curve.major), plane.vector(minor), curve.angle41, sweep};
  return chordChain(flatten(arc, curve.major.length() * kCurveDetail), sweep == kTurn);
}

Chain splineChain(const AcDbEntity& entity, const HatchPlane& plane) {
  Spline spline;
  std::vector<AcGePoint3d> controls;
  std::vector<AcGePoint3d> fits;
  bool isClosed = false;
  database::TagCursor tags = HostObjectAccess::tags(entity);
  Tag tag;
  bool isInside = false;
  while (tags.next(tag) && tag.code < 1000) {
    if (tag.code == 100) isInside = tag.trimmed() == "AcDbSpline";
    if (!isInside) continue;
    std::vector<AcGePoint3d>& points = tag.code % 10 == 0 ? controls : fits;
    switch (tag.code) {
      case 70:
        isClosed = (tag.integer() & 1) != 0;
        break;
      case 71:
        spline.degree = static_cast<int>(std::clamp<std::int64_t>(tag.integer(), 0, 1000));
        break;
      case 40:
        spline.knots.push_back(tag.real());
        break;
      case 41:
        spline.weights.push_back(tag.real());
        break;
      case 10:
      case 11:
        points.emplace_back(tag.real(), 0, 0);
        break;
      case 20:
      case 21:
        if (!points.empty()) points.back().y = tag.real();
        break;
      case 30:
      case 31:
        if (!points.empty()) points.back().z = tag.real();
        break;
      default:
        break;
    }
  }
  for (const AcGePoint3d& p : controls) spline.controls.push_back(plane.point(p));
  for (const AcGePoint3d& p : fits) spline.fits.push_back(plane.point(p));
  const std::vector<Point2>& frame = spline.controls.empty() ? spline.fits : spline.controls;
  double size = 0;
  for (const Point2 p : frame) size = std::max(size, distance(frame.front(), p));
  return chordChain(flatten(spline, size * kCurveDetail).value_or(Polygon()), isClosed);
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
      chain = circleChain(readCurve(entity), plane);
      return Acad::eOk;
    case DxfType::Arc:
      chain = arcChain(readCurve(entity), plane);
      return Acad::eOk;
    case DxfType::Ellipse:
      chain = ellipseChain(readCurve(entity), plane);
      return Acad::eOk;
    case DxfType::Spline:
      chain = splineChain(entity, plane);
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

double gapBetween(const LoopVertex& a, const LoopVertex& b) { return std::hypot(b.x - a.x, b.y - a.y); }

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
  const HatchPlane plane(normal);
  std::vector<Chain> chains;
  for (const AcDbObjectId id : boundaries) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk) return entity.openStatus();
    const Acad::ErrorStatus status = readChain(*entity, plane, chains.emplace_back());
    if (status != Acad::eOk) return status;
  }
  Chain whole;
  if (chains.size() == 1) {
    whole = std::move(chains.front());
  } else if (!join(std::move(chains), whole)) {
    return Acad::eInvalidInput;
  }
  const LoopFault fault = makeLoop(whole.vertices, whole.isClosed, loop);
  return fault == LoopFault::None ? Acad::eOk : Acad::eInvalidInput;
}

}  // namespace host::hatching

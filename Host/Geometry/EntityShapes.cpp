#include "Geometry/EntityShapes.h"

#include <algorithm>
#include <numbers>

#include "Database/ObjectAccess.h"
#include "Geometry/MeshShapes.h"
#include "Geometry/PolylineShapes.h"
#include "Geometry/TagValues.h"

namespace host::geometry {
namespace {

using database::DxfType;
using database::ObjectAxes;
using database::Slot;
using database::Tag;

constexpr double kRadiansPerDegree = std::numbers::pi / 180;

/// The points, axes and numbers simple entities are made of.
struct SimpleTags {
  AcGePoint3d p[4];
  bool has[4] = {};
  AcGePoint3d normal{0, 0, 1};
  double real40 = 0, real41 = 0, real42 = 0, begin = 0, end = 360;
  int flags = 0;

  explicit SimpleTags(const Slot& slot) {
    GeometryTags tags(slot.tags());
    for (Tag tag; tags.next(tag);) {
      for (int i = 0; i < 4; ++i)
        if (takePoint(tag, 10 + i, p[i])) has[i] = true;
      takePoint(tag, 210, normal);
      switch (tag.code) {
        case 40:
          real40 = coordinate(tag);
          break;
        case 41:
          real41 = coordinate(tag);
          break;
        case 42:
          real42 = coordinate(tag);
          break;
        case 50:
          begin = coordinate(tag);
          break;
        case 51:
          end = coordinate(tag);
          break;
        case 70:
          flags = static_cast<int>(tag.integer());
          break;
        default:
          break;
      }
    }
  }
};

void add(EntityShape& shape, Wire wire) {
  if (wire.points.empty() || !std::ranges::all_of(wire.points, isUsable)) return;
  shape.wires.push_back(std::move(wire));
}

void readLine(const SimpleTags& tags, EntityShape& shape) {
  add(shape, {.points = {tags.p[0], tags.p[1]}, .corners = {}, .outline = {}});
}

void readCircleOrArc(const Slot& slot, const SimpleTags& tags, double deviation, EntityShape& shape) {
  if (!(tags.real40 > 0) || !isUsable(tags.p[0])) return;
  const ObjectAxes axes(tags.normal.asVector());
  EllipseArc arc;
  arc.center = axes.toWorld(tags.p[0].x, tags.p[0].y, tags.p[0].z);
  arc.major = axes.ax * tags.real40;
  arc.minor = axes.ay * tags.real40;
  arc.end = 2 * std::numbers::pi;
  if (slot.type == DxfType::Arc) {
    if (!std::isfinite(tags.begin) || !std::isfinite(tags.end)) return;
    arc.begin = std::fmod(tags.begin, 360) * kRadiansPerDegree;
    arc.end = std::fmod(tags.end, 360) * kRadiansPerDegree;
    while (arc.end <= arc.begin) arc.end += 2 * std::numbers::pi;
    while (arc.end > arc.begin + 2 * std::numbers::pi) arc.end -= 2 * std::numbers::pi;
  }
  Wire wire;
  wire.closed = slot.type == DxfType::Circle;
  flatten(arc, deviation, wire.points);
  add(shape, std::move(wire));
}

void readEllipse(const SimpleTags& tags, double deviation, EntityShape& shape) {
  EllipseArc arc;
  arc.center = tags.p[0];
  arc.major = tags.p[1].asVector();
  arc.minor = tags.normal.asVector().normal().crossProduct(arc.major) * tags.real40;
  arc.begin = std::fmod(tags.real41, 2 * std::numbers::pi);
  arc.end = std::fmod(tags.real42, 2 * std::numbers::pi);
  if (!isUsable(arc.center) || !isUsable(tags.p[1]) || !std::isfinite(tags.real40 + arc.begin + arc.end)) return;
  if (arc.end <= arc.begin + 1e-9) arc.end += 2 * std::numbers::pi;
  Wire wire;
  wire.closed = arc.isWhole();
  flatten(arc, deviation, wire.points);
  add(shape, std::move(wire));
}

void readSolid(const SimpleTags& tags, EntityShape& shape) {
  const ObjectAxes axes(tags.normal.asVector());
  const auto corner = [&](int i) { return axes.toWorld(tags.p[i].x, tags.p[i].y, tags.p[i].z); };
  Wire wire;
  // Third and fourth corner are exchanged; a triangle repeats the third.
  wire.points = {corner(0), corner(1)};
  if (tags.has[3]) wire.points.push_back(corner(3));
  wire.points.push_back(corner(2));
  wire.closed = wire.filled = true;
  add(shape, std::move(wire));
}

void readFace(const SimpleTags& tags, EntityShape& shape) {
  const int count = tags.has[3] && !(tags.p[3] == tags.p[2]) ? 4 : 3;
  const bool allVisible = (tags.flags & 15) == 0;
  if (allVisible) {
    Wire wire;
    wire.points.assign(tags.p, tags.p + count);
    wire.closed = true;
    add(shape, std::move(wire));
    return;
  }
  for (int i = 0; i < count; ++i)
    if ((tags.flags & (1 << i)) == 0)
      add(shape, {.points = {tags.p[i], tags.p[(i + 1) % count]}, .corners = {}, .outline = {}});
}

void readSpline(const Slot& slot, double deviation, EntityShape& shape) {
  Nurbs curve;
  Chain fit;
  AcGePoint3d startTangent, endTangent;
  int flags = 0;
  GeometryTags tags(slot.tags());
  for (Tag tag; tags.next(tag);) {
    if (tag.code == 100 && tag.trimmed() == "AcDbHelix") break;  // its own figures follow the curve's
    switch (tag.code) {
      case 10:
        curve.controls.push_back({coordinate(tag), 0, 0});
        break;
      case 11:
        fit.push_back({coordinate(tag), 0, 0});
        break;
      case 20:
      case 30:
        if (!curve.controls.empty()) curve.controls.back()[tag.code == 20 ? 1 : 2] = coordinate(tag);
        break;
      case 21:
      case 31:
        if (!fit.empty()) fit.back()[tag.code == 21 ? 1 : 2] = coordinate(tag);
        break;
      case 40:
        curve.knots.push_back(coordinate(tag));
        break;
      case 41:
        curve.weights.push_back(coordinate(tag));
        break;
      case 70:
        flags = static_cast<int>(tag.integer());
        break;
      case 71:
        curve.degree = static_cast<int>(tag.integer());
        break;
      default:
        takePoint(tag, 12, startTangent) || takePoint(tag, 13, endTangent);
        break;
    }
  }
  if (!std::ranges::all_of(curve.controls, isUsable) || !std::ranges::all_of(fit, isUsable)) return;
  const auto isFinite = [](double v) { return std::isfinite(v); };
  if (!std::ranges::all_of(curve.knots, isFinite)) curve.knots.clear();
  if (!std::ranges::all_of(curve.weights, isFinite)) curve.weights.clear();
  Wire wire;
  wire.points = flatten(curve, deviation);
  if (wire.points.empty() && fit.size() >= 2) {
    if (!isUsable(startTangent)) startTangent = {};
    if (!isUsable(endTangent)) endTangent = {};
    wire.points = interpolate(fit, (flags & 1) != 0, startTangent.asVector(), endTangent.asVector(), deviation);
  }
  add(shape, std::move(wire));
}

void readInfinite(const Slot& slot, const SimpleTags& tags, EntityShape& shape) {
  const AcGeVector3d direction = tags.p[1].asVector();
  if (!isUsable(tags.p[0]) || !isUsable(tags.p[1]) || direction.length() == 0) return;
  shape.infinite.push_back({tags.p[0], direction.normal(), slot.type == DxfType::XLine});
}

void readImage(const Slot& slot, EntityShape& shape) {
  AcGePoint3d origin, u, v, size;
  std::vector<Point> clip;
  bool isClipped = false;
  int clipKind = 1;
  GeometryTags tags(slot.tags());
  for (Tag tag; tags.next(tag);) {
    if (takePoint(tag, 10, origin) || takePoint(tag, 11, u) || takePoint(tag, 12, v) || takePoint(tag, 13, size))
      continue;
    if (tag.code == 14)
      clip.push_back({coordinate(tag), 0});
    else if (tag.code == 24 && !clip.empty())
      clip.back().y = coordinate(tag);
    else if (tag.code == 71)
      clipKind = static_cast<int>(tag.integer());
    else if (tag.code == 280)
      isClipped = tag.integer() != 0;
  }
  const bool isWipeout = slot.type == DxfType::Wipeout;
  if (clipKind == 1 && clip.size() == 2) clip = {clip[0], {clip[1].x, clip[0].y}, clip[1], {clip[0].x, clip[1].y}};
  if (clip.size() < 3 || (!isClipped && !isWipeout))
    clip = {{-0.5, -0.5}, {size.x - 0.5, -0.5}, {size.x - 0.5, size.y - 0.5}, {-0.5, size.y - 0.5}};
  if (clip.front().x == clip.back().x && clip.front().y == clip.back().y) clip.pop_back();
  ImageFrame frame;
  frame.isWipeout = isWipeout;
  // Clip points count pixels from the upper left corner, whose pixel has its centre at (0, 0).
  for (const Point& p : clip)
    frame.ring.push_back(origin + u.asVector() * (p.x + 0.5) + v.asVector() * (size.y - 0.5 - p.y));
  if (std::ranges::all_of(frame.ring, isUsable)) shape.image = std::move(frame);
}

void readViewport(const Slot& slot, EntityShape& shape) {
  if (isSheetViewport(slot)) return;
  GeometryTags tags(slot.tags());
  for (Tag tag; tags.next(tag);)
    if (tag.code == 90 && (tag.integer() & kClippedViewport) != 0) return;
  const SimpleTags simple(slot);
  const AcGePoint3d& c = simple.p[0];
  const double w = simple.real40 / 2, h = simple.real41 / 2;
  if (!(w > 0) || !(h > 0)) return;
  Wire wire;
  wire.points = {{c.x - w, c.y - h, 0}, {c.x + w, c.y - h, 0}, {c.x + w, c.y + h, 0}, {c.x - w, c.y + h, 0}};
  wire.closed = true;
  add(shape, std::move(wire));
}

bool isHelix(const Slot& entity) {
  return entity.type >= DxfType::FirstOther && entity.database().typeName(entity) == "HELIX";
}

bool isEmbeddedDocument(const Slot& entity) {
  return entity.type >= DxfType::FirstOther && entity.database().typeName(entity) == "OLE2FRAME";
}

/// Its frame, by two opposite corners.
void readEmbeddedDocument(const SimpleTags& tags, EntityShape& shape) {
  if (!tags.has[0] || !tags.has[1]) return;
  const AcGePoint3d &a = tags.p[0], &b = tags.p[1];
  Wire wire;
  wire.points = {a, {b.x, a.y, a.z}, b, {a.x, b.y, b.z}};
  wire.closed = true;
  add(shape, std::move(wire));
}

}  // namespace

bool isSheetViewport(const Slot& viewport) {
  AcGePoint3d center, viewCenter;
  double height = 0, viewHeight = 0;
  GeometryTags tags(viewport.tags());
  for (Tag tag; tags.next(tag);) {
    if (tag.code == 69 && tag.integer() == 1) return true;
    if (tag.code == 41) height = coordinate(tag);
    if (tag.code == 45) viewHeight = coordinate(tag);
    takePoint(tag, 10, center) || takePoint(tag, 12, viewCenter);
  }
  // Numbers are missing in layouts that were never looked at, and not always right: the sheet shows itself unmoved.
  return height == viewHeight && center.x == viewCenter.x && center.y == viewCenter.y;
}

bool hasShape(const Slot& entity) {
  switch (entity.type) {
    case DxfType::Unknown:
    case DxfType::Region:
    case DxfType::Solid3d:
    case DxfType::Body:
    case DxfType::Shape:
    case DxfType::Tolerance:
    case DxfType::Table:
    case DxfType::Proxy:
      return false;
    default:
      return entity.type < DxfType::FirstOther || isHelix(entity) || isEmbeddedDocument(entity);
  }
}

EntityShape readShape(const Slot& entity, double deviation) {
  EntityShape shape;
  switch (entity.type) {
    case DxfType::Line:
      readLine(SimpleTags(entity), shape);
      break;
    case DxfType::Point: {
      const SimpleTags tags(entity);
      if (isUsable(tags.p[0])) shape.points.push_back(tags.p[0]);
      break;
    }
    case DxfType::Circle:
    case DxfType::Arc:
      readCircleOrArc(entity, SimpleTags(entity), deviation, shape);
      break;
    case DxfType::Ellipse:
      readEllipse(SimpleTags(entity), deviation, shape);
      break;
    case DxfType::Solid:
    case DxfType::Trace:
      readSolid(SimpleTags(entity), shape);
      break;
    case DxfType::Face3d:
      readFace(SimpleTags(entity), shape);
      break;
    case DxfType::Spline:
      readSpline(entity, deviation, shape);
      break;
    case DxfType::XLine:
    case DxfType::Ray:
      readInfinite(entity, SimpleTags(entity), shape);
      break;
    case DxfType::Image:
    case DxfType::Wipeout:
      readImage(entity, shape);
      break;
    case DxfType::Viewport:
      readViewport(entity, shape);
      break;
    case DxfType::LwPolyline:
    case DxfType::Polyline2d:
    case DxfType::Polyline3d:
      readPolyline(entity, deviation, shape.wires);
      break;
    case DxfType::Leader:
      readLeader(entity, deviation, shape.wires);
      break;
    case DxfType::MLine:
      readMultiline(entity, shape.wires);
      break;
    case DxfType::PolygonMesh:
    case DxfType::PolyFaceMesh:
    case DxfType::Mesh:
      readMesh(entity, shape.wires);
      break;
    default:
      if (isHelix(entity)) readSpline(entity, deviation, shape);
      if (isEmbeddedDocument(entity)) readEmbeddedDocument(SimpleTags(entity), shape);
      break;
  }
  std::erase_if(shape.wires,
                [](const Wire& w) { return w.points.empty() || !std::ranges::all_of(w.points, isUsable); });
  return shape;
}

}  // namespace host::geometry

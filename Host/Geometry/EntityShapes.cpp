#include "Geometry/EntityShapes.h"

#include <algorithm>

#include "Curves/EntityCurves.h"
#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"
#include "Geometry/MeshShapes.h"
#include "Geometry/PolylineShapes.h"

namespace host::geometry {
namespace {

using database::DxfType;
using database::GeometryTags;
using database::isUsable;
using database::ObjectAxes;
using database::Slot;
using database::Tag;

/// The points, axes and numbers simple entities are made of.
struct SimpleTags {
  AcGePoint3d p[4];
  bool has[4] = {};
  AcGePoint3d normal{0, 0, 1};
  double real40 = 0, real41 = 0;
  int flags = 0;

  explicit SimpleTags(const Slot& slot) {
    GeometryTags tags(slot.tags());
    for (Tag tag; tags.next(tag);) {
      for (int i = 0; i < 4; ++i)
        if (takePoint(tag, 10 + i, p[i])) has[i] = true;
      takePoint(tag, 210, normal) || takeReal(tag, 40, real40) || takeReal(tag, 41, real41);
      if (tag.code == 70) flags = static_cast<int>(tag.integer());
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

void readArc(const Slot& slot, double deviation, EntityShape& shape) {
  const auto arc = curves::readArc(slot);
  if (!arc) return;
  Wire wire;
  wire.closed = slot.type == DxfType::Circle || (slot.type == DxfType::Ellipse && arc->isWhole());
  flatten(*arc, deviation, wire.points);
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
  const auto spline = curves::readSpline(slot);
  if (!spline) return;
  Wire wire;
  wire.points = flatten(*spline, deviation);
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
  int clipKind = 1, fade = 0;
  std::uint64_t definition = 0;
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
    else if (tag.code == 283)
      fade = static_cast<int>(std::clamp<std::int64_t>(tag.integer(), 0, 100));
    else if (tag.code == 340)
      definition = tag.handle();
  }
  const bool isWipeout = slot.type == DxfType::Wipeout;
  if (clipKind == 1 && clip.size() == 2) clip = {clip[0], {clip[1].x, clip[0].y}, clip[1], {clip[0].x, clip[1].y}};
  if (clip.size() < 3 || (!isClipped && !isWipeout))
    clip = {{-0.5, -0.5}, {size.x - 0.5, -0.5}, {size.x - 0.5, size.y - 0.5}, {-0.5, size.y - 0.5}};
  if (clip.front().x == clip.back().x && clip.front().y == clip.back().y) clip.pop_back();
  ImageFrame frame;
  frame.isWipeout = isWipeout;
  frame.topLeft = origin + v.asVector() * size.y;
  frame.across = u.asVector() * size.x;
  frame.down = -v.asVector() * size.y;
  frame.definition = definition;
  frame.fadePercent = fade;
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
    case DxfType::Ellipse:
      readArc(entity, deviation, shape);
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

#include "Geometry/PolylineShapes.h"

#include <algorithm>

#include "Curves/Bulges.h"
#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"
#include "Database/UnwrittenTags.h"
#include "Geometry/WideOutline.h"

namespace host::geometry {
namespace {

using database::DxfType;
using database::GeometryTags;
using database::isUsable;
using database::ObjectAxes;
using database::Slot;
using database::Tag;

enum PolylineFlag { kClosed = 1, kLinetypeGeneration = 128 };
enum VertexFlag { kSplineFrame = 16 };

struct Vertex {
  AcGePoint3d p;
  double bulge = 0, startWidth = -1, endWidth = -1;  // -1: the polyline's default
};

struct Polyline {
  std::vector<Vertex> vertices;
  AcGePoint3d normal{0, 0, 1};
  int flags = 0;
  double startWidth = 0, endWidth = 0;
};

double usableWidth(double width, double otherwise) { return std::isfinite(width) && width >= 0 ? width : otherwise; }

Polyline readLightPolyline(const Slot& slot) {
  Polyline line;
  double elevation = 0, width = 0;
  GeometryTags tags(slot.tags());
  for (Tag tag; tags.next(tag);) {
    switch (tag.code) {
      case 10:
        line.vertices.push_back({.p = {coordinate(tag), 0, 0}});
        continue;
      case 38:
        elevation = coordinate(tag);
        continue;
      case 43:
        width = usableWidth(coordinate(tag), 0);
        continue;
      case 70:
        line.flags = static_cast<int>(tag.integer());
        continue;
      default:
        break;
    }
    if (takePoint(tag, 210, line.normal) || line.vertices.empty()) continue;
    Vertex& v = line.vertices.back();
    if (tag.code == 20)
      v.p.y = coordinate(tag);
    else if (tag.code == 40)
      v.startWidth = coordinate(tag);
    else if (tag.code == 41)
      v.endWidth = coordinate(tag);
    else if (tag.code == 42)
      v.bulge = coordinate(tag);
  }
  line.startWidth = line.endWidth = width;
  for (Vertex& v : line.vertices) v.p.z = std::isfinite(elevation) ? elevation : 0;
  return line;
}

Polyline readOldPolyline(const Slot& slot) {
  Polyline line;
  AcGePoint3d base;
  GeometryTags tags(slot.tags());
  for (Tag tag; tags.next(tag);) {
    if (takePoint(tag, 210, line.normal) || takePoint(tag, 10, base)) continue;
    if (tag.code == 40)
      line.startWidth = usableWidth(coordinate(tag), 0);
    else if (tag.code == 41)
      line.endWidth = usableWidth(coordinate(tag), 0);
    else if (tag.code == 70)
      line.flags = static_cast<int>(tag.integer());
  }
  if (const database::UnmadeVertices* const unmade = slot.unmadeVertices()) {
    for (std::uint32_t i = 0; i < unmade->count; ++i) line.vertices.push_back({.p = unmade->points[i]});
    return line;
  }
  const bool isFlat = slot.type == DxfType::Polyline2d;
  for (const Slot* sub = slot.firstSub(); sub != nullptr; sub = sub->nextSub) {
    if (sub->isErased() || (sub->type != DxfType::Vertex2d && sub->type != DxfType::Vertex3d)) continue;
    Vertex v;
    int flags = 0;
    GeometryTags vertexTags(sub->tags());
    for (Tag tag; vertexTags.next(tag);) {
      if (takePoint(tag, 10, v.p)) continue;
      if (tag.code == 40)
        v.startWidth = coordinate(tag);
      else if (tag.code == 41)
        v.endWidth = coordinate(tag);
      else if (tag.code == 42)
        v.bulge = coordinate(tag);
      else if (tag.code == 70)
        flags = static_cast<int>(tag.integer());
    }
    if ((flags & kSplineFrame) != 0) continue;
    if (isFlat) v.p.z = std::isfinite(base.z) ? base.z : 0;
    line.vertices.push_back(v);
  }
  return line;
}

/// The line flattened in its own plane, with widths of every chord.
struct FlatPolyline {
  Chain points;
  std::vector<double> widths;
  std::vector<std::uint32_t> corners;
  bool hasWidth = false, constantWidth = true;
};

FlatPolyline flattened(const Polyline& line, bool closed, double deviation) {
  FlatPolyline flat;
  const std::size_t count = line.vertices.size();
  const std::size_t pieces = closed ? count : count - 1;
  flat.points.push_back(line.vertices.front().p);
  for (std::size_t i = 0; i < pieces; ++i) {
    const Vertex& from = line.vertices[i];
    const AcGePoint3d& to = line.vertices[(i + 1) % count].p;
    const std::size_t before = flat.points.size();
    if (i > 0) flat.corners.push_back(static_cast<std::uint32_t>(before - 1));
    curves::flattenBulge(from.p, to, from.bulge, deviation, flat.points);
    const double w0 = usableWidth(from.startWidth, line.startWidth), w1 = usableWidth(from.endWidth, line.endWidth);
    if (w0 > 0 || w1 > 0) flat.hasWidth = true;
    const auto chords = static_cast<double>(flat.points.size() - before);
    for (double k = 0; k < chords; ++k) {
      flat.widths.push_back(w0 + (w1 - w0) * k / chords);
      flat.widths.push_back(w0 + (w1 - w0) * (k + 1) / chords);
    }
  }
  flat.constantWidth = std::ranges::all_of(flat.widths, [&](double w) { return w == flat.widths.front(); });
  if (closed) flat.points.pop_back();
  return flat;
}

void toWorld(const ObjectAxes& axes, Chain& chain) {
  if (axes.isWorld()) return;
  for (AcGePoint3d& p : chain) p = axes.toWorld(p.x, p.y, p.z);
}

}  // namespace

double dimensionStyleReal(const database::DrawingDatabase& db, std::string_view style, int code, const char* variable,
                          double otherwise) {
  double value = db.headerReal(variable, 40).value_or(otherwise);
  if (const Slot* record = style.empty() ? nullptr : db.findRecord(DxfType::DimStyle, db.codec().decode(style))) {
    value = otherwise;  // styles leave out what has its factory value
    GeometryTags tags(record->tags());
    for (Tag tag; tags.next(tag);)
      if (tag.code == code) value = coordinate(tag);
  }
  return std::isfinite(value) ? value : otherwise;
}

void readPolyline(const Slot& entity, double deviation, std::vector<Wire>& wires) {
  const Polyline line = entity.type == DxfType::LwPolyline ? readLightPolyline(entity) : readOldPolyline(entity);
  if (line.vertices.empty()) return;
  if (!std::ranges::all_of(line.vertices, [](const Vertex& v) { return isUsable(v.p); })) return;
  const bool closed = (line.flags & kClosed) != 0 && line.vertices.size() > 1;
  Wire wire;
  wire.closed = closed;
  if (entity.type == DxfType::Polyline3d) {
    for (const Vertex& v : line.vertices) wire.points.push_back(v.p);
    for (std::size_t i = 1; i < wire.points.size(); ++i) wire.corners.push_back(static_cast<std::uint32_t>(i));
  } else {
    FlatPolyline flat = flattened(line, closed, deviation);
    const ObjectAxes axes(line.normal.asVector());
    if (flat.hasWidth) {
      wire.outline = wideOutline(flat.points, closed, flat.widths);
      for (Chain& ring : wire.outline) toWorld(axes, ring);
      std::erase_if(wire.outline, [](const Chain& ring) { return !std::ranges::all_of(ring, isUsable); });
      if (flat.constantWidth) wire.constantWidth = flat.widths.front();
    }
    wire.points = std::move(flat.points);
    toWorld(axes, wire.points);
    wire.corners = std::move(flat.corners);
  }
  if ((line.flags & kLinetypeGeneration) != 0) wire.corners.clear();
  wires.push_back(std::move(wire));
}

Wire arrowhead(const AcGePoint3d& tip, const AcGePoint3d& towards, double size) {
  // Three times as long as it is wide.
  const AcGeVector3d along = AcGeVector3d{towards.x - tip.x, towards.y - tip.y, 0}.normal() * size;
  const AcGeVector3d across{-along.y / 6, along.x / 6, 0};
  Wire wire;
  wire.points = {tip, tip + along + across, tip + along - across};
  wire.closed = wire.filled = true;
  return wire;
}

void readLeader(const Slot& entity, double deviation, std::vector<Wire>& wires) {
  Wire wire;
  bool hasArrow = true, isSpline = false;
  std::string_view style;
  GeometryTags tags(entity.tags());
  for (Tag tag; tags.next(tag);) {
    if (tag.code == 10)
      wire.points.push_back({coordinate(tag), 0, 0});
    else if (tag.code == 20 && !wire.points.empty())
      wire.points.back().y = coordinate(tag);
    else if (tag.code == 30 && !wire.points.empty())
      wire.points.back().z = coordinate(tag);
    else if (tag.code == 3)
      style = tag.value;
    else if (tag.code == 71)
      hasArrow = tag.integer() != 0;
    else if (tag.code == 72)
      isSpline = tag.integer() == 1;
  }
  if (wire.points.size() < 2 || !std::ranges::all_of(wire.points, isUsable)) return;
  const AcGePoint3d tip = wire.points[0], next = wire.points[1];
  if (isSpline) wire.points = flatten(curves::splineThrough(std::move(wire.points)), deviation);
  wires.push_back(std::move(wire));
  const auto& db = entity.database();
  const double scale = dimensionStyleReal(db, style, 40, "$DIMSCALE", 1);
  const double size = dimensionStyleReal(db, style, 41, "$DIMASZ", 0.18) * (scale > 0 ? scale : 1);
  // A head needs room, as the host's own do.
  if (hasArrow && size > 0 && tip.distanceTo(next) > 2 * size) wires.push_back(arrowhead(tip, next, size));
}

void readMultiline(const Slot& entity, std::vector<Wire>& wires) {
  constexpr std::size_t kMostElements = 16;
  constexpr int kClosedMultiline = 2;
  struct Corner {
    AcGePoint3d p;
    AcGePoint3d mitre;
    std::vector<double> offsets;
  };
  std::vector<Corner> corners;
  bool closed = false, isFirstParameter = false;
  GeometryTags tags(entity.tags());
  for (Tag tag; tags.next(tag);) {
    if (tag.code == 71) closed = (tag.integer() & kClosedMultiline) != 0;
    if (tag.code == 11) corners.push_back({{coordinate(tag), 0, 0}, {}, {}});
    if (corners.empty()) continue;
    Corner& corner = corners.back();
    if (tag.code == 21 || tag.code == 31) takePoint(tag, 11, corner.p);
    takePoint(tag, 13, corner.mitre);
    if (tag.code == 74) isFirstParameter = true;  // the first parameter of an element is its distance along the mitre
    if (tag.code == 41 && isFirstParameter) {
      if (corner.offsets.size() < kMostElements) corner.offsets.push_back(coordinate(tag));
      isFirstParameter = false;
    }
  }
  if (corners.size() < 2) return;
  for (std::size_t element = 0; element < corners.front().offsets.size(); ++element) {
    Wire wire;
    wire.closed = closed;
    for (const Corner& corner : corners)
      if (element < corner.offsets.size())
        wire.points.push_back(corner.p + corner.mitre.asVector() * corner.offsets[element]);
    wires.push_back(std::move(wire));
  }
}

}  // namespace host::geometry

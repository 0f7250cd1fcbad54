#include "Geometry/Snaps.h"

#include <algorithm>
#include <cmath>

#include "Curves/Bulges.h"
#include "Curves/EntityCurves.h"
#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"
#include "Geometry/EntityShapes.h"
#include "Geometry/References.h"

namespace host::geometry {
namespace {

using database::DxfType;
using database::Slot;

constexpr std::size_t kMostLines = 2000;  // of one entity
constexpr std::size_t kMostPieces = 400;  // near the cursor, of which crossings are looked for
constexpr std::size_t kDeepestReference = 8;

/// A polyline with arcs, by its vertices: ends are the vertices, middles lie on the pieces.
std::optional<SnapLine> polylineWithArcs(const Slot& entity, const Transform& placement, double deviation) {
  if (entity.type != DxfType::LwPolyline) return std::nullopt;
  curves::Loop loop;
  bool closed = false, hasArcs = false;
  double elevation = 0;
  AcGeVector3d normal{0, 0, 1};
  database::GeometryTags tags(entity.tags());
  for (database::Tag tag; tags.next(tag);) {
    if (tag.code == 10) loop.push_back({tag.real(), 0, 0});
    if (loop.empty()) {
      if (tag.code == 70) closed = (tag.integer() & 1) != 0;
      if (tag.code == 38) elevation = tag.real();
      continue;
    }
    if (tag.code == 20) loop.back().y = tag.real();
    if (tag.code == 42) {
      loop.back().bulge = tag.real();
      hasArcs = hasArcs || loop.back().bulge != 0;
    }
    if (tag.code == 210) normal.x = tag.real();
    if (tag.code == 220) normal.y = tag.real();
    if (tag.code == 230) normal.z = tag.real();
  }
  if (!hasArcs || loop.size() < 2) return std::nullopt;
  const database::ObjectAxes axes(normal);
  const auto placed = [&](Point p) {
    const AcGePoint3d at = AcGePoint3d{} + axes.ax * p.x + axes.ay * p.y + axes.az * elevation;
    return placement.plan(at);
  };
  SnapLine line;
  line.closed = closed;
  std::vector<Point> plane{loop.front().point()};
  const std::size_t pieces = loop.size() - (closed ? 0 : 1);
  for (std::size_t i = 0; i < loop.size(); ++i) line.ends.push_back(placed(loop[i].point()));
  for (std::size_t i = 0; i < pieces; ++i) {
    const Point from = loop[i].point(), to = loop[(i + 1) % loop.size()].point();
    const double bulge = loop[i].bulge;
    curves::flattenBulge(from, to, bulge, deviation, plane);
    // The sagitta is half the chord times the bulge, to the right of the way for positive ones.
    const Point middle = (from + to) * 0.5 - curves::left(to - from) * (bulge / 2);
    line.middles.push_back(placed(std::isfinite(bulge) ? middle : (from + to) * 0.5));
  }
  if (closed) plane.pop_back();
  for (const Point p : plane) {
    line.points.push_back(placed(p));
    if (!isFinite(line.points.back())) return std::nullopt;
  }
  return line;
}

class LineCollector {
 public:
  explicit LineCollector(double deviation) : deviation_(deviation) {}

  void collect(const Slot& entity, const Transform& placement) {
    if (lines.size() > kMostLines) return;
    if (isReference(entity)) return collectReference(entity, placement);
    if (entity.type == DxfType::Hatch || entity.type == DxfType::Solid || entity.type == DxfType::Wipeout) return;
    const double scale = placement.planScale();
    const double deviation = deviation_ > 0 && scale > 0 ? deviation_ / scale : 0;
    if (auto line = polylineWithArcs(entity, placement, deviation)) {
      lines.push_back(std::move(*line));
      return;
    }
    const EntityShape shape = readShape(entity, deviation);
    for (const AcGePoint3d& p : shape.points) lines.push_back({{placement.plan(p)}, false, false, {}, {}, {}});
    const auto arc = curves::readArc(entity);
    for (const Wire& wire : shape.wires) {
      if (wire.filled || lines.size() > kMostLines) continue;
      SnapLine line;
      line.closed = wire.closed;
      for (const AcGePoint3d& p : wire.points) line.points.push_back(placement.plan(p));
      if (!std::ranges::all_of(line.points, [](Point p) { return isFinite(p); })) continue;
      if (arc) {
        line.isCurve = true;
        line.centre = placement.plan(arc->centre);
        if (!arc->isWhole()) {
          line.ends = {line.points.front(), line.points.back()};
          line.middles = {placement.plan(arc->at(arc->start + arc->sweep / 2))};
        }
      } else if (entity.type == DxfType::Spline && !line.points.empty()) {
        line.isCurve = true;
        if (!line.closed) line.ends = {line.points.front(), line.points.back()};
      }
      lines.push_back(std::move(line));
    }
  }

  std::vector<SnapLine> lines;

 private:
  void collectReference(const Slot& entity, const Transform& placement) {
    const auto reference = readReference(entity);
    if (!reference || chain_.depth() >= kDeepestReference || !chain_.enter(reference->block)) return;
    if (chain_.depth() == 1) {
      const Point at = placement.after(reference->first).plan(AcGePoint3d{});
      if (isFinite(at) && entity.type == DxfType::Insert) lines.push_back({{at}, false, false, {}, {}, {}});
    }
    for (std::int64_t row = 0; row < reference->rows && lines.size() <= kMostLines; ++row)
      for (std::int64_t column = 0; column < reference->columns && lines.size() <= kMostLines; ++column)
        for (const Slot* inner : reference->block->entities)
          if (isDrawnInReference(*inner)) collect(*inner, placement.after(reference->cell(column, row)));
    chain_.leave();
  }

  double deviation_;
  ReferenceChain chain_;
};

struct Piece {
  Point a, b;
  std::size_t line = 0;
};

class SnapFinder {
 public:
  SnapFinder(Point cursor, double reach, std::uint32_t kinds) : cursor_(cursor), reach_(reach), kinds_(kinds) {}

  void add(SnapKind kind, Point at) {
    if ((kinds_ & snapBit(kind)) == 0) return;
    const double distance = curves::distance(cursor_, at);
    if (distance <= reach_) snaps.push_back({kind, at, distance});
  }

  void look(const SnapLine& line, std::size_t number, const std::optional<Point>& base) {
    const std::vector<Point>& p = line.points;
    if (line.ends.empty() && !line.isCurve)
      for (const Point& end : p) add(SnapKind::End, end);
    for (const Point& end : line.ends) add(SnapKind::End, end);
    for (const Point& middle : line.middles) add(SnapKind::Middle, middle);
    if (line.centre) lookAtCentre(line);
    const std::size_t count = p.size() < 2 ? 0 : p.size() - (line.closed && p.size() > 2 ? 0 : 1);
    for (std::size_t i = 0; i < count; ++i) {
      const Point a = p[i], b = p[(i + 1) % p.size()];
      if (line.middles.empty() && !line.isCurve) add(SnapKind::Middle, (a + b) * 0.5);
      if (curves::distanceToSegment(cursor_, a, b) > reach_) continue;
      const Point d = b - a;
      const double square = dot(d, d);
      if (!(square > 0)) continue;
      add(SnapKind::Nearest, a + d * std::clamp(dot(cursor_ - a, d) / square, 0.0, 1.0));
      if (base) {
        const double t = dot(*base - a, d) / square;
        if (t >= 0 && t <= 1) add(SnapKind::Perpendicular, a + d * t);
      }
      if (pieces.size() < kMostPieces) pieces.push_back({a, b, number});
    }
  }

  void lookForCrossings() {
    if ((kinds_ & snapBit(SnapKind::Intersection)) == 0) return;
    for (std::size_t i = 0; i < pieces.size(); ++i)
      for (std::size_t k = i + 1; k < pieces.size(); ++k) {
        // Neighbours of one line meet at its corners, which are ends.
        if (const auto at = intersection(pieces[i].a, pieces[i].b, pieces[k].a, pieces[k].b)) {
          const bool isCorner = pieces[i].line == pieces[k].line && (same(*at, pieces[i].a) || same(*at, pieces[i].b));
          if (!isCorner) add(SnapKind::Intersection, *at);
        }
      }
  }

  std::vector<Snap> snaps;
  std::vector<Piece> pieces;

 private:
  bool same(Point a, Point b) const { return curves::distance(a, b) <= reach_ * 1e-6; }

  /// A centre is found at its place, and from the line around it.
  void lookAtCentre(const SnapLine& line) {
    if ((kinds_ & snapBit(SnapKind::Centre)) == 0) return;
    const double distance = curves::distance(cursor_, *line.centre);
    if (distance <= reach_) snaps.push_back({SnapKind::Centre, *line.centre, distance});
  }

  Point cursor_;
  double reach_;
  std::uint32_t kinds_;
};

}  // namespace

std::optional<Point> intersection(Point a, Point b, Point c, Point d) {
  const Point u = b - a, v = d - c;
  const double area = cross(u, v);
  if (!(std::abs(area) > 1e-12 * length(u) * length(v))) return std::nullopt;
  const double s = cross(c - a, v) / area, t = cross(c - a, u) / area;
  constexpr double kSlack = 1e-9;
  if (s < -kSlack || s > 1 + kSlack || t < -kSlack || t > 1 + kSlack) return std::nullopt;
  return a + u * s;
}

std::vector<SnapLine> snapLines(const Slot& entity, double deviation) {
  LineCollector collector(deviation);
  collector.collect(entity, {});
  return std::move(collector.lines);
}

std::vector<Snap> findSnaps(const std::vector<SnapLine>& lines, Point cursor, double reach, double advantage,
                            std::uint32_t kinds, std::optional<Point> base) {
  SnapFinder finder(cursor, reach, kinds);
  for (std::size_t i = 0; i < lines.size(); ++i) finder.look(lines[i], i, base);
  finder.lookForCrossings();
  std::vector<Snap>& snaps = finder.snaps;
  std::ranges::sort(snaps, [](const Snap& a, const Snap& b) { return a.distance < b.distance; });
  // Of each kind the nearest first; then kind by kind the best of what is left.
  std::vector<Snap> order;
  std::vector<bool> isTaken(snaps.size());
  for (std::size_t round = 0; round < snaps.size(); ++round) {
    // Sorted by distance: the best kind among those that are not much farther than the nearest.
    std::size_t best = snaps.size();
    double nearest = 0;
    for (std::size_t i = 0; i < snaps.size(); ++i) {
      if (isTaken[i]) continue;
      if (best == snaps.size()) {
        best = i;
        nearest = snaps[i].distance;
      } else if (snaps[i].distance - nearest >= advantage) {
        break;
      } else if (snaps[i].kind < snaps[best].kind) {
        best = i;
      }
    }
    isTaken[best] = true;
    const bool isKnown = std::ranges::any_of(
        order, [&](const Snap& snap) { return curves::distance(snap.at, snaps[best].at) <= reach * 1e-6; });
    if (!isKnown) order.push_back(snaps[best]);
    constexpr std::size_t kMostSnaps = 32;
    if (order.size() >= kMostSnaps) break;
  }
  return order;
}

Point orthoPoint(Point base, Point cursor) {
  const Point d = cursor - base;
  return std::abs(d.x) >= std::abs(d.y) ? Point{cursor.x, base.y} : Point{base.x, cursor.y};
}

}  // namespace host::geometry

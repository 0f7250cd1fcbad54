#include <algorithm>
#include <cmath>
#include <numbers>

#include "Curves/Curve.h"
#include "Hatching/HatchContent.h"

namespace host::hatching {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;
constexpr double kRadPerDegree = std::numbers::pi / 180;

/// Angles of an edge in radians, counter-clockwise. A clockwise edge measures its angles clockwise too.
struct Range {
  double start = 0, sweep = 0;
};

Range rangeOf(const HatchEdge& edge) {
  const double start = edge.startDeg * kRadPerDegree;
  double sweep = std::fmod((edge.endDeg - edge.startDeg) * kRadPerDegree, kTurn);
  if (sweep < 0) sweep += kTurn;
  if (sweep < 1e-9 || kTurn - sweep < 1e-9) sweep = kTurn;
  return edge.isCounterClockwise ? Range{start, sweep} : Range{-start, -sweep};
}

enum class EllipseAngles { Parameters, Directions };

using EllipseArc = curves::EllipseArc<Point2>;

EllipseArc arcOf(const HatchEdge& edge) {
  const Range range = rangeOf(edge);
  return {edge.first, {edge.size, 0}, {0, edge.size}, range.start, range.sweep};
}

EllipseArc ellipseOf(const HatchEdge& edge, EllipseAngles angles) {
  const Range range = rangeOf(edge);
  EllipseArc arc{edge.first, edge.second, left(edge.second) * edge.size, range.start, range.sweep};
  if (angles == EllipseAngles::Directions && std::abs(range.sweep) < kTurn && edge.size > 0) {
    const auto parameter = [&](double angle) {
      const double within = std::atan2(std::sin(angle) / edge.size, std::cos(angle));
      return within + kTurn * std::round((angle - within) / kTurn);  // on the same turn
    };
    arc.start = parameter(range.start);
    arc.sweep = parameter(range.start + range.sweep) - arc.start;
  }
  return arc;
}

/// From end to end: a whole turn comes back to its first point.
Polygon pathOf(const EllipseArc& arc, double deviation) {
  Polygon path;
  flatten(arc, deviation, path);
  if (arc.isWhole() && !path.empty()) path.push_back(path.front());
  return path;
}

Polygon pathOf(const HatchEdge& edge, EllipseAngles angles, double deviation) {
  switch (edge.kind) {
    case HatchEdge::Kind::Line:
      return {edge.first, edge.second};
    case HatchEdge::Kind::Arc:
      return pathOf(arcOf(edge), deviation);
    case HatchEdge::Kind::Ellipse:
      return pathOf(ellipseOf(edge, angles), deviation);
    case HatchEdge::Kind::Spline:
      return flatten(edge.spline, deviation);
  }
  return {};
}

/// How far a path's ends are from the ends of its neighbours, whichever way round they run.
double gapTo(const Polygon& path, const Polygon& before, const Polygon& after) {
  const auto nearest = [](Point2 p, const Polygon& other) {
    return std::min(distance(p, other.front()), distance(p, other.back()));
  };
  return std::min(nearest(path.front(), before) + nearest(path.back(), after),
                  nearest(path.back(), before) + nearest(path.front(), after));
}

/// The paths of all edges; empty when one cannot be drawn. Writers disagree on what the angles of an ellipse measure:
/// the reading that joins the neighbours is taken.
std::vector<Polygon> pathsOf(const std::vector<HatchEdge>& edges, double deviation) {
  std::vector<Polygon> paths;
  paths.reserve(edges.size());
  for (const HatchEdge& edge : edges) {
    paths.push_back(pathOf(edge, EllipseAngles::Parameters, deviation));
    if (paths.back().size() < 2) return {};
  }
  for (std::size_t i = 0; i < edges.size() && edges.size() > 1; ++i) {
    if (edges[i].kind != HatchEdge::Kind::Ellipse) continue;
    Polygon other = pathOf(edges[i], EllipseAngles::Directions, deviation);
    const Polygon& before = paths[(i + paths.size() - 1) % paths.size()];
    const Polygon& after = paths[(i + 1) % paths.size()];
    if (other.size() >= 2 && 2 * gapTo(other, before, after) < gapTo(paths[i], before, after))
      paths[i] = std::move(other);
  }
  return paths;
}

void turnRound(Polygon& path) { std::reverse(path.begin(), path.end()); }

Polygon joined(std::vector<Polygon> paths) {
  if (paths.size() > 1) {
    const Polygon& next = paths[1];
    const auto nearest = [&](Point2 p) { return std::min(distance(p, next.front()), distance(p, next.back())); };
    if (2 * nearest(paths[0].front()) < nearest(paths[0].back())) turnRound(paths[0]);
  }
  Polygon all;
  for (Polygon& path : paths) {
    if (!all.empty() && 2 * distance(all.back(), path.back()) < distance(all.back(), path.front())) turnRound(path);
    for (const Point2 p : path) {
      if (all.empty() || all.back().x != p.x || all.back().y != p.y) all.push_back(p);
    }
  }
  while (all.size() > 1 && all.front().x == all.back().x && all.front().y == all.back().y) all.pop_back();
  return all;
}

}  // namespace

Polygon flatten(const HatchLoop& loop, double deviation) {
  if (loop.isDamaged) return {};
  Polygon polygon = loop.isPolyline() ? flatten(loop.vertices, deviation) : joined(pathsOf(loop.edges, deviation));
  if (polygon.size() < 3 || !std::all_of(polygon.begin(), polygon.end(), curves::isFinite)) return {};
  return polygon;
}

}  // namespace host::hatching

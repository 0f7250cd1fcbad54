// Picks, windows and fences against entity paths.
#include <algorithm>
#include <map>

#include "Geometry/EntityPaths.h"

namespace host::geometry {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Calls visit(a, b) for every straight piece; a lone point is a piece of no length. Stops when visit answers true.
template <class Visit>
bool anySegment(const std::vector<Point>& points, bool closed, const Visit& visit) {
  if (points.size() == 1) return visit(points[0], points[0]);
  for (std::size_t i = 0; i + 1 < points.size(); ++i)
    if (visit(points[i], points[i + 1])) return true;
  return closed && points.size() > 2 && visit(points.back(), points.front());
}

/// True when p lies in a filled area of the paths.
bool isInFilledArea(const std::vector<Path>& paths, Point p) {
  std::map<std::uint32_t, bool> inside;
  for (const Path& path : paths)
    if (path.filled && isInsideRing(path.points, p)) inside[path.area] = !inside[path.area];
  return std::ranges::any_of(inside, [](const auto& area) { return area.second; });
}

std::vector<Point> polygonOf(const std::vector<Point>& given) {
  if (given.size() != 2) return given;
  const Point a = given[0], b = given[1];
  return {a, {b.x, a.y}, b, {a.x, b.y}};
}

Box boxOf(const std::vector<Point>& points) {
  Box box;
  for (const Point p : points) box.add(p);
  return box;
}

bool crosses(const std::vector<Path>& paths, const std::vector<Point>& line, bool closed) {
  const Box box = boxOf(line);
  return std::ranges::any_of(paths, [&](const Path& path) {
    return anySegment(path.points, path.closed, [&](Point a, Point b) {
      Box piece;
      piece.add(a);
      piece.add(b);
      return piece.intersects(box) &&
             anySegment(line, closed, [&](Point c, Point d) { return segmentsTouch(a, b, c, d); });
    });
  });
}

/// Curves need to be only as true as the tool is fine.
double deviationFor(const Box& tool) { return std::max({tool.maxX - tool.minX, tool.maxY - tool.minY, 1e-6}) / 1000; }

}  // namespace

double distanceTo(const database::Slot& entity, Point p, double within) {
  const std::vector<Path> paths = entityPaths(entity, within > 0 ? within / 10 : 0);
  if (isInFilledArea(paths, p)) return 0;
  double nearest = kInfinity;
  for (const Path& path : paths)
    anySegment(path.points, path.closed, [&](Point a, Point b) {
      nearest = std::min(nearest, distanceToSegment(p, a, b));
      return nearest == 0;
    });
  return nearest;
}

bool isInWindow(const database::Slot& entity, const std::vector<Point>& corners, Window kind) {
  const std::vector<Point> polygon = polygonOf(corners);
  if (polygon.size() < 3) return false;
  const std::vector<Path> paths = entityPaths(entity, deviationFor(boxOf(polygon)));
  if (paths.empty()) return false;
  const Box box = boxOf(polygon);
  const double tolerance = deviationFor(box) * 1e-6;  // what lies on the border is inside
  const auto isInside = [&](Point p) {
    return isInsideRing(polygon, p) ||
           anySegment(polygon, true, [&](Point a, Point b) { return distanceToSegment(p, a, b) <= tolerance; });
  };
  if (kind == Window::Inside) {
    // A piece between two inner points can still leave a window that is not convex.
    return std::ranges::all_of(paths, [&](const Path& path) {
      return !anySegment(path.points, path.closed, [&](Point a, Point b) {
        const Point middle{(a.x + b.x) / 2, (a.y + b.y) / 2};
        if (!isInside(a) || !isInside(b) || !isInside(middle)) return true;
        return anySegment(polygon, true, [&](Point c, Point d) { return segmentsCross(a, b, c, d); });
      });
    });
  }
  return crosses(paths, polygon, true) ||
         std::ranges::any_of(paths, [&](const Path& path) { return isInside(path.points.front()); }) ||
         isInFilledArea(paths, polygon.front());
}

bool crossesFence(const database::Slot& entity, const std::vector<Point>& fence) {
  if (fence.size() < 2) return false;
  return crosses(entityPaths(entity, deviationFor(boxOf(fence))), fence, false);
}

}  // namespace host::geometry

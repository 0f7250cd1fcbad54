#include "Geometry/Seams.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

namespace host::geometry {
namespace {

using curves::Point2;
using curves::Polygon;

constexpr double kOnCorner = 1e-9;  // of an edge's length: a seam that ends so near a corner ends in it
constexpr double kOnLine = 1e-6;    // drawing units: how far the foot of a seam may lie off its edge

bool isSame(Point2 a, Point2 b) { return a.x == b.x && a.y == b.y; }

struct Foot {
  std::size_t edge = 0;  // that starts at this point of the ring
  double distance = 0;
  std::optional<Point2> between;  // nothing: the edge's own start
};

/// Where the ray meets the ring first.
std::optional<Foot> firstMet(const Polygon& ring, Point2 from, Point2 direction) {
  std::optional<Foot> first;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const Point2 a = ring[i] - from, b = ring[(i + 1) % ring.size()] - from, edge = b - a;
    const double across = curves::cross(direction, edge);
    if (across == 0) continue;
    const double along = curves::cross(a, edge) / across;  // in lengths of `direction`
    double part = curves::cross(a, direction) / across;
    if (!(along > 0) || part < -kOnCorner || part > 1 + kOnCorner) continue;
    if (first && along >= first->distance) continue;
    if (part <= kOnCorner) {
      first = Foot{i, along, std::nullopt};
    } else if (part >= 1 - kOnCorner) {
      first = Foot{(i + 1) % ring.size(), along, std::nullopt};
    } else {
      first = Foot{i, along, from + direction * along};
    }
  }
  return first;
}

std::size_t farthest(const Polygon& ring, Point2 direction) {
  std::size_t best = 0;
  for (std::size_t i = 1; i < ring.size(); ++i) {
    if (curves::dot(ring[i] - ring[best], direction) > 0) best = i;
  }
  return best;
}

void turn(Polygon& ring, bool counterClockwise) {
  if ((signedArea(ring) > 0) != counterClockwise) std::reverse(ring.begin(), ring.end());
}

bool isOnLine(Point2 p, Point2 a, Point2 b) {
  const Point2 edge = b - a;
  const double size = curves::length(edge);
  if (size == 0) return false;
  const double along = curves::dot(p - a, edge) / size;
  return along > 0 && along < size && std::abs(curves::cross(edge, p - a)) <= kOnLine * size;
}

/// The ring from a corner on that no hole can have: one that lies farthest out and that no seam starts at.
Polygon fromOutside(const Polygon& ring) {
  constexpr Point2 kDirections[] = {{1, 0.1}, {-1, 0.1}, {0.1, 1}, {0.1, -1}, {1, 1}, {-1, -1}, {1, -1}, {-1, 1}};
  for (const Point2 direction : kDirections) {
    const std::size_t start = farthest(ring, direction);
    if (std::count_if(ring.begin(), ring.end(), [&](Point2 p) { return isSame(p, ring[start]); }) > 1) continue;
    Polygon turned(ring.begin() + static_cast<std::ptrdiff_t>(start), ring.end());
    turned.insert(turned.end(), ring.begin(), ring.begin() + static_cast<std::ptrdiff_t>(start));
    return turned;
  }
  return ring;
}

/// The shortest piece between two equal points that the ring enters and leaves by the same edge: from, to.
std::optional<std::pair<std::size_t, std::size_t>> innermostSeam(const Polygon& ring) {
  const auto before = [&ring](std::size_t a, std::size_t b) {
    return ring[a].x != ring[b].x ? ring[a].x < ring[b].x : ring[a].y != ring[b].y ? ring[a].y < ring[b].y : a < b;
  };
  std::vector<std::size_t> sorted(ring.size());
  for (std::size_t i = 0; i < sorted.size(); ++i) sorted[i] = i;
  std::sort(sorted.begin(), sorted.end(), before);
  std::optional<std::pair<std::size_t, std::size_t>> found;
  for (std::size_t k = 0; k + 1 < sorted.size(); ++k) {
    for (std::size_t other = k + 1; other < sorted.size() && isSame(ring[sorted[k]], ring[sorted[other]]); ++other) {
      const std::size_t i = sorted[k], j = sorted[other];
      if (j - i < 5 || !isSame(ring[i + 1], ring[j - 1])) continue;
      if (!found || j - i < found->second - found->first) found = {i, j};
    }
  }
  return found;
}

}  // namespace

double signedArea(const Polygon& ring) {
  double sum = 0;
  for (std::size_t i = 1; i + 1 < ring.size(); ++i) sum += curves::cross(ring[i] - ring[0], ring[i + 1] - ring[0]);
  return sum;
}

Polygon joinHoles(const HoledArea& area, Point2 direction) {
  Polygon ring = area.outer;
  turn(ring, true);
  std::vector<Polygon> holes = area.holes;
  for (Polygon& hole : holes) turn(hole, false);
  // Seen from a hole, what lies farther in the direction is part of the ring by then.
  const auto reach = [&](const Polygon& hole) {
    return curves::dot(hole[farthest(hole, direction)] - ring.front(), direction);
  };
  std::stable_sort(holes.begin(), holes.end(), [&](const Polygon& a, const Polygon& b) { return reach(a) > reach(b); });
  for (const Polygon& hole : holes) {
    const std::size_t start = farthest(hole, direction);
    const std::optional<Foot> foot = firstMet(ring, hole[start], direction);
    if (!foot) continue;  // the hole does not lie in the ring
    Polygon detour;
    if (foot->between) detour.push_back(*foot->between);
    for (std::size_t i = 0; i <= hole.size(); ++i) detour.push_back(hole[(start + i) % hole.size()]);
    detour.push_back(foot->between ? *foot->between : ring[foot->edge]);
    ring.insert(ring.begin() + static_cast<std::ptrdiff_t>(foot->edge) + 1, detour.begin(), detour.end());
  }
  return ring;
}

HoledArea splitSeams(const Polygon& ring) {
  if (ring.empty()) return {};
  HoledArea area{fromOutside(ring), {}};
  while (const auto seam = innermostSeam(area.outer)) {
    const auto at = [&area](std::size_t i) { return area.outer.begin() + static_cast<std::ptrdiff_t>(i); };
    const auto [from, to] = *seam;
    area.holes.emplace_back(at(from + 1), at(to - 1));
    area.outer.erase(at(from + 1), at(to + 1));
    const std::size_t size = area.outer.size();
    if (size > 3 && isOnLine(area.outer[from], area.outer[(from + size - 1) % size], area.outer[(from + 1) % size]))
      area.outer.erase(at(from));
  }
  return area;
}

}  // namespace host::geometry

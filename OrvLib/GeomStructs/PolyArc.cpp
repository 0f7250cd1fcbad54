#include "OrvLib/GeomStructs/PolyArc.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace OrvLib {
namespace {

bool isArc(double bulge) { return std::abs(bulge) >= PolyArc::kSmallestBulge && std::isfinite(bulge); }

/// A circular arc in plan, counter-clockwise.
///
/// With chord c and bulge b the radius is c (1 + b²) / (4 b) and the centre lies c (1 - b²) / (4 b) to the left of the
/// chord's middle, which follows from b being the tangent of a quarter of the included angle.
struct Arc {
  Point3d start;
  Point3d end;
  double bulge;  // positive

  double radius() const { return std::hypot(end.x - start.x, end.y - start.y) * (1 + bulge * bulge) / (4 * bulge); }
  double angle() const { return 4 * std::atan(bulge); }
  double length() const { return radius() * angle(); }
  bool isUsable() const { return length() > 0 && std::isfinite(length()); }

  Point3d centre() const {
    const double aside = (1 - bulge * bulge) / (4 * bulge);
    return {(start.x + end.x) / 2 - (end.y - start.y) * aside, (start.y + end.y) / 2 + (end.x - start.x) * aside, 0};
  }
};

/// The arc from vertex `i` to the next one, which may wrap to the first.
Arc arcAt(const std::vector<ArcVertex>& vertices, std::size_t i) {
  const auto& [start, bulge] = vertices[i];
  const Point3d& end = vertices[(i + 1) % vertices.size()].point;
  return bulge > 0 ? Arc{start, end, bulge} : Arc{end, start, -bulge};
}

void appendPieces(Point3dArray& points, const Arc& arc, double chordArcLength) {
  points.push_back(arc.start);
  if (arc.isUsable() && chordArcLength > 0) {
    const double angle = arc.angle();
    const double step = chordArcLength / arc.radius();
    const Point3d centre = arc.centre();
    const Point3d toStart = arc.start - centre;
    for (int i = 1; angle - i * step > step; ++i) {
      const double turn = i * step;
      const double c = std::cos(turn);
      const double s = std::sin(turn);
      points.push_back({centre.x + toStart.x * c - toStart.y * s, centre.y + toStart.x * s + toStart.y * c,
                        arc.start.z + (arc.end.z - arc.start.z) * turn / angle});
    }
  }
  points.push_back(arc.end);
}

}  // namespace

PolyArc::PolyArc(std::vector<ArcVertex> vertices, bool closed) : vertices_(std::move(vertices)), closed_(closed) {}

std::size_t PolyArc::segmentCount() const {
  if (vertices_.size() < 2) return 0;
  return closed_ ? vertices_.size() : vertices_.size() - 1;
}

bool PolyArc::firstSegmentIsArc() const {
  return !vertices_.empty() && std::abs(vertices_.front().bulge) >= kSmallestBulge;
}

bool PolyArc::hasTooManyPieces(double chordArcLength) const {
  if (!(chordArcLength > 0)) return false;
  double length = 0;
  for (std::size_t i = 0; i < segmentCount(); ++i) {
    if (isArc(vertices_[i].bulge) && arcAt(vertices_, i).isUsable()) length += arcAt(vertices_, i).length();
  }
  return length > chordArcLength * kMostPieces;
}

PolyLine PolyArc::approximated(double chordArcLength) const {
  const double step = chordArcLength > 0 && !hasTooManyPieces(chordArcLength) ? chordArcLength : 0;
  Point3dArray points;
  for (std::size_t i = 0; i < segmentCount(); ++i) {
    if (!isArc(vertices_[i].bulge)) {
      points.push_back(vertices_[i].point);
      points.push_back(vertices_[(i + 1) % vertices_.size()].point);
      continue;
    }
    const auto first = static_cast<std::ptrdiff_t>(points.size());
    appendPieces(points, arcAt(vertices_, i), step);
    if (vertices_[i].bulge < 0) std::reverse(std::next(points.begin(), first), points.end());
  }
  return PolyLine(std::move(points), closed_);
}

}  // namespace OrvLib

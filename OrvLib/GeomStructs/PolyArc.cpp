#include "OrvLib/GeomStructs/PolyArc.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <system_error>

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

void appendNumber(std::string& text, double value) {
  char digits[32];
  text.append(std::begin(digits), std::to_chars(std::begin(digits), std::end(digits), value).ptr);
}

bool takeNumber(std::string_view& text, double& value) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc()) return false;
  text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
  return true;
}

bool takeText(std::string_view& text, std::string_view expected) {
  if (!text.starts_with(expected)) return false;
  text.remove_prefix(expected.size());
  return true;
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

PolyArc PolyArc::reversed() const {
  PolyArc back;
  back.closed_ = closed_;
  const std::size_t n = vertices_.size();
  for (std::size_t i = 0; i < n; ++i) {
    // Going back, the segment that starts at a vertex is the one that ended there.
    const std::size_t at = n - 1 - i;
    back.append({vertices_[at].point, -vertices_[(at + n - 1) % n].bulge});
  }
  return back;
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

std::string PolyArc::toText() const {
  std::string text;
  for (const ArcVertex& vertex : vertices_) {
    if (!text.empty()) text += "; ";
    appendNumber(text, vertex.point.x);
    text += ',';
    appendNumber(text, vertex.point.y);
    if (vertex.point.z != 0) {
      text += ',';
      appendNumber(text, vertex.point.z);
    }
    if (vertex.bulge != 0) {
      text += " b=";
      appendNumber(text, vertex.bulge);
    }
  }
  if (closed_) text += " closed";
  return text;
}

PolyArc PolyArc::fromText(std::string_view text) {
  PolyArc read;
  while (!text.empty()) {
    ArcVertex vertex;
    if (!takeNumber(text, vertex.point.x) || !takeText(text, ",") || !takeNumber(text, vertex.point.y)) return {};
    if (takeText(text, ",") && !takeNumber(text, vertex.point.z)) return {};
    if (takeText(text, " b=") && !takeNumber(text, vertex.bulge)) return {};
    read.append(vertex);
    if (text == " closed") {
      read.setClosed(true);
      return read;
    }
    if (!text.empty() && (!takeText(text, "; ") || text.empty())) return {};
  }
  return read;
}

}  // namespace OrvLib

#include "Hatching/Loops.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "Hatching/SelfCrossing.h"

namespace host::hatching {

namespace {

constexpr double kCoincidence = 1e-8;  // of the loop's size: nearer points are one
constexpr double kCrossing = 1e-7;     // of the loop's size: pieces that overlap less only touch
constexpr double kLeastArea = 1e-10;   // drawing units squared
constexpr double kRoundings = 4;       // steps of the coordinates' own precision that a point may be off by

/// Box, size and local origin of some vertices.
struct Frame {
  Point2 origin;
  double size = 0;      // of the longer side
  double rounding = 0;  // what coordinates of this magnitude cannot tell apart

  explicit Frame(const std::vector<LoopVertex>& vertices) {
    curves::Box box;
    for (const LoopVertex& v : vertices) box.add(v.point());
    origin = {box.minX, box.minY};
    size = std::max(box.maxX - box.minX, box.maxY - box.minY);
    const double magnitude = std::max({std::abs(box.minX), std::abs(box.minY), std::abs(box.maxX), std::abs(box.maxY)});
    rounding = kRoundings * std::numeric_limits<double>::epsilon() * magnitude;
  }
};

bool areFinite(const std::vector<LoopVertex>& vertices) {
  return std::all_of(vertices.begin(), vertices.end(), [](const LoopVertex& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.bulge);
  });
}

double gap(const LoopVertex& a, const LoopVertex& b) { return distance(a.point(), b.point()); }

/// Whether two vertices are no farther apart than the tolerance; most are, in one direction already.
bool areNear(const LoopVertex& a, const LoopVertex& b, double tolerance) {
  return std::abs(b.x - a.x) <= tolerance && std::abs(b.y - a.y) <= tolerance && gap(a, b) <= tolerance;
}

double perimeter(const Loop& loop) {
  double sum = 0;
  for (std::size_t i = 0; i < loop.size(); ++i) {
    const LoopVertex& next = loop[i + 1 < loop.size() ? i + 1 : 0];
    sum += gap(loop[i], next) * (1 + std::abs(loop[i].bulge));
  }
  return sum;
}

/// Above the perimeter, and quicker to know.
double cityBlockPerimeter(const Loop& loop) {
  double sum = 0;
  for (std::size_t i = 0; i < loop.size(); ++i) {
    const LoopVertex& next = loop[i + 1 < loop.size() ? i + 1 : 0];
    sum += (std::abs(next.x - loop[i].x) + std::abs(next.y - loop[i].y)) * (1 + std::abs(loop[i].bulge));
  }
  return sum * (1 + 1e-9);  // what the sum is rounded by
}

/// Drops pieces without length; what follows keeps its bulge.
Loop withoutRepeats(const std::vector<LoopVertex>& vertices, double tolerance) {
  Loop loop;
  loop.reserve(vertices.size());
  for (const LoopVertex& v : vertices) {
    if (!loop.empty() && areNear(loop.back(), v, tolerance)) {
      loop.back().bulge = v.bulge;
    } else {
      loop.push_back(v);
    }
  }
  while (loop.size() > 1 && areNear(loop.back(), loop.front(), tolerance)) loop.pop_back();
  return loop;
}

}  // namespace

std::string_view textOf(LoopFault fault) {
  switch (fault) {
    case LoopFault::None:
      break;
    case LoopFault::NotFinite:
      return "with numbers that are not finite";
    case LoopFault::NotClosed:
      return "not closed";
    case LoopFault::TooFewPoints:
      return "with too few points";
    case LoopFault::ZeroArea:
      return "without area";
    case LoopFault::SelfCrossing:
      return "crossing itself";
  }
  return {};
}

LoopFault makeLoop(const std::vector<LoopVertex>& vertices, bool closedFlag, Loop& loop) {
  if (!areFinite(vertices)) return LoopFault::NotFinite;
  if (vertices.size() < 2) return LoopFault::TooFewPoints;
  const Frame frame(vertices);
  if (!std::isfinite(frame.size * frame.size)) return LoopFault::NotFinite;
  const double tolerance = std::max(kCoincidence * frame.size, frame.rounding);
  if (!closedFlag && !areNear(vertices.back(), vertices.front(), tolerance)) return LoopFault::NotClosed;

  Loop candidate = withoutRepeats(vertices, tolerance);
  const bool hasArc = std::any_of(candidate.begin(), candidate.end(), [](const LoopVertex& v) { return v.bulge != 0; });
  if (candidate.size() < 3 && !(candidate.size() == 2 && hasArc)) return LoopFault::TooFewPoints;

  const double inside = std::abs(area(candidate));
  if (!std::isfinite(inside)) return LoopFault::NotFinite;
  Loop local = candidate;
  for (LoopVertex& v : local) {
    v.x -= frame.origin.x;
    v.y -= frame.origin.y;
  }
  if (crossesItself(local, std::max(kCrossing * frame.size, frame.rounding))) return LoopFault::SelfCrossing;
  // Far from the origin a flat loop has the area that its points were rounded by.
  if (inside < kLeastArea ||
      (inside <= frame.rounding * cityBlockPerimeter(candidate) && inside <= frame.rounding * perimeter(candidate))) {
    return LoopFault::ZeroArea;
  }
  loop = std::move(candidate);
  return LoopFault::None;
}

}  // namespace host::hatching

#include "Hatching/Loops.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "Hatching/Arcs.h"
#include "Hatching/SelfCrossing.h"

namespace host::hatching {

namespace {

constexpr double kCoincidence = 1e-8;  // of the loop's size: nearer points are one
constexpr double kCrossing = 1e-7;     // of the loop's size: pieces that overlap less only touch
constexpr double kLeastArea = 1e-10;   // drawing units squared
constexpr double kRoundings = 4;       // steps of the coordinates' own precision that a point may be off by

constexpr int kMostChordsPerTurn = 4096;

/// Box, size and local origin of some vertices.
struct Frame {
  Point2 origin;
  double size = 0;      // of the longer side
  double rounding = 0;  // what coordinates of this magnitude cannot tell apart

  explicit Frame(const std::vector<LoopVertex>& vertices) {
    double minX = INFINITY;
    double minY = INFINITY;
    double maxX = -INFINITY;
    double maxY = -INFINITY;
    for (const LoopVertex& v : vertices) {
      minX = std::min(minX, v.x);
      minY = std::min(minY, v.y);
      maxX = std::max(maxX, v.x);
      maxY = std::max(maxY, v.y);
    }
    origin = {minX, minY};
    size = std::max(maxX - minX, maxY - minY);
    const double magnitude = std::max({std::abs(minX), std::abs(minY), std::abs(maxX), std::abs(maxY)});
    rounding = kRoundings * std::numeric_limits<double>::epsilon() * magnitude;
  }
};

bool areFinite(const std::vector<LoopVertex>& vertices) {
  return std::all_of(vertices.begin(), vertices.end(), [](const LoopVertex& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.bulge);
  });
}

double gap(const LoopVertex& a, const LoopVertex& b) { return std::hypot(b.x - a.x, b.y - a.y); }

/// Whether two vertices are no farther apart than the tolerance; most are, in one direction already.
bool areNear(const LoopVertex& a, const LoopVertex& b, double tolerance) {
  return std::abs(b.x - a.x) <= tolerance && std::abs(b.y - a.y) <= tolerance && gap(a, b) <= tolerance;
}

/// Area between an arc and its chord, with the sign of the bulge.
double segmentArea(double chord, double bulge) {
  const double b2 = bulge * bulge;
  if (b2 < 1e-5) return chord * chord * bulge / 3 * (1 + b2 / 5);  // series: the difference below would cancel
  const double angle = 4 * std::atan(bulge);
  const double radius = chord * (1 + b2) / (4 * bulge);
  return radius * radius / 2 * (angle - std::sin(angle));
}

double localArea(const Loop& loop, Point2 origin) {
  double twice = 0;
  double arcs = 0;
  for (std::size_t i = 0; i < loop.size(); ++i) {
    const LoopVertex& a = loop[i];
    const LoopVertex& b = loop[i + 1 < loop.size() ? i + 1 : 0];
    twice += (a.x - origin.x) * (b.y - origin.y) - (b.x - origin.x) * (a.y - origin.y);
    if (a.bulge != 0) arcs += segmentArea(gap(a, b), a.bulge);
  }
  return twice / 2 + arcs;
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

int chordCount(double radius, double sweep, double deviation) {
  const double turn = std::abs(sweep);
  if (!std::isfinite(turn) || !std::isfinite(radius)) return 1;
  double step = std::numbers::pi / 2;
  if (!(deviation > 0)) {
    step = 0;
  } else if (deviation < radius) {
    // 1 - cos(step / 2) = deviation / radius, in a form that keeps small deviations.
    step = std::min(step, 4 * std::asin(std::sqrt(deviation / radius / 2)));
  }
  const double least = 2 * std::numbers::pi / kMostChordsPerTurn;
  return std::max(1, static_cast<int>(std::ceil(turn / std::max(step, least) - 1e-9)));
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

  const double inside = std::abs(localArea(candidate, frame.origin));
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

Polygon flatten(const Loop& loop, double deviation) {
  Polygon polygon;
  polygon.reserve(loop.size());
  for (std::size_t i = 0; i < loop.size(); ++i) {
    const LoopVertex& next = loop[i + 1 < loop.size() ? i + 1 : 0];
    const Point2 from{loop[i].x, loop[i].y};
    polygon.push_back(from);
    if (loop[i].bulge == 0) continue;
    // Around the piece's own start: centre and radius keep their digits.
    const Arc arc = arcOf({}, Point2{next.x, next.y} - from, loop[i].bulge);
    const int chords = chordCount(arc.radius, arc.sweep, deviation);
    for (int k = 1; k < chords; ++k) polygon.push_back(from + arc.at(static_cast<double>(k) / chords));
  }
  return polygon;
}

double area(const Loop& loop) {
  if (loop.empty()) return 0;
  return localArea(loop, {loop.front().x, loop.front().y});
}

}  // namespace host::hatching

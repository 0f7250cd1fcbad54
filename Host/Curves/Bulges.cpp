#include "Curves/Bulges.h"

#include <numbers>

namespace host::curves {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kStraightBulge = 1e-9;   // less rises less than coordinates can tell
constexpr double kLargestRadius = 1e9;    // in chords
constexpr double kStraightAngle = 1e-12;  // radians between a tangent and its chord
constexpr double kTurnBack = 1e-9;        // radians short of a half or whole turn

double directionOf(Point2 from, Point2 to) { return std::atan2(to.y - from.y, to.x - from.x); }

/// Into (-pi, pi].
double normalized(double angle) {
  angle = std::remainder(angle, 2 * kPi);
  return angle <= -kPi ? kPi : angle;
}

bool coincide(Point2 a, Point2 b) { return a.x == b.x && a.y == b.y; }

Point2 planOf(const AcGeVector3d& v) { return {v.x, v.y}; }
Point2 planOf(Point2 v) { return v; }
AcGePoint3d moved(const AcGePoint3d& p, Point2 by) { return {p.x + by.x, p.y + by.y, p.z}; }
Point2 moved(Point2 p, Point2 by) { return p + by; }

}  // namespace

Arc arcOf(Point2 from, Point2 to, double bulge) {
  Arc arc;
  const Point2 chord = to - from;
  arc.centre = (from + to) * 0.5 + left(chord) * ((1 - bulge * bulge) / (4 * bulge));
  arc.radius = length(chord) * (1 + bulge * bulge) / (4 * std::abs(bulge));
  arc.startAngle = std::atan2(from.y - arc.centre.y, from.x - arc.centre.x);
  arc.sweep = 4 * std::atan(bulge);
  return arc;
}

template <class Point>
void flattenBulge(const Point& from, const Point& to, double bulge, double deviation, std::vector<Point>& chain) {
  if (std::isfinite(bulge) && std::abs(bulge) >= kStraightBulge) {
    // Around the piece's own start: centre and radius keep their digits.
    const Point2 chord = planOf(to - from);
    const Arc arc = arcOf({}, chord, bulge);
    if (std::isfinite(arc.radius) && arc.radius > 0 && arc.radius <= kLargestRadius * length(chord)) {
      std::vector<Point2> points;
      flatten(EllipseArc<Point2>{arc.centre, {arc.radius, 0}, {0, arc.radius}, arc.startAngle, arc.sweep}, deviation,
              points);
      for (std::size_t i = 1; i + 1 < points.size(); ++i) chain.push_back(moved(from, points[i]));
    }
  }
  chain.push_back(to);
}

template void flattenBulge(const Point2&, const Point2&, double, double, std::vector<Point2>&);
template void flattenBulge(const AcGePoint3d&, const AcGePoint3d&, double, double, std::vector<AcGePoint3d>&);

Polygon flatten(const Loop& loop, double deviation) {
  Polygon polygon;
  polygon.reserve(loop.size());
  for (std::size_t i = 0; i < loop.size(); ++i) {
    const Point2 from = loop[i].point();
    polygon.push_back(from);
    if (loop[i].bulge == 0) continue;
    flattenBulge(from, loop[i + 1 < loop.size() ? i + 1 : 0].point(), loop[i].bulge, deviation, polygon);
    polygon.pop_back();  // the next piece begins there
  }
  return polygon;
}

double segmentArea(double chord, double bulge) {
  const double b2 = bulge * bulge;
  if (b2 < 1e-5) return chord * chord * bulge / 3 * (1 + b2 / 5);  // series: the difference below would cancel
  const double angle = 4 * std::atan(bulge);
  const double radius = chord * (1 + b2) / (4 * bulge);
  return radius * radius / 2 * (angle - std::sin(angle));
}

double arcLength(double chord, double bulge) {
  const double quarter = std::atan(std::abs(bulge));
  return bulge == 0 ? chord : chord * 2 * quarter / std::sin(2 * quarter);
}

double area(const Loop& loop) {
  if (loop.empty()) return 0;
  const Point2 origin = loop.front().point();  // keeps digits when coordinates are large
  double twice = 0, arcs = 0;
  for (std::size_t i = 0; i < loop.size(); ++i) {
    const Point2 a = loop[i].point(), b = loop[i + 1 < loop.size() ? i + 1 : 0].point();
    twice += cross(a - origin, b - origin);
    if (loop[i].bulge != 0) arcs += segmentArea(distance(a, b), loop[i].bulge);
  }
  return twice / 2 + arcs;
}

std::optional<double> tangentBulge(Point2 from, double directionRad, Point2 to) {
  if (coincide(from, to)) return std::nullopt;
  // The chord turns from the tangent by half the included angle.
  const double half = normalized(directionOf(from, to) - directionRad);
  if (std::abs(half) < kStraightAngle) return 0.0;
  if (kPi - std::abs(half) < kTurnBack) return std::nullopt;
  return std::tan(half / 2);
}

std::optional<double> bulgeThrough(Point2 from, Point2 on, Point2 to) {
  if (coincide(from, on) || coincide(on, to) || coincide(from, to)) return std::nullopt;
  // The turn at the middle point is half the included angle.
  const double half = normalized(directionOf(on, to) - directionOf(from, on));
  if (kPi - std::abs(half) < kTurnBack) return std::nullopt;
  return std::tan(half / 2);
}

std::optional<double> bulgeAbout(Point2 centre, Point2 from, Point2 to, Point2& end) {
  if (coincide(centre, from) || coincide(centre, to)) return std::nullopt;
  const double radius = distance(centre, from);
  const double toAngle = directionOf(centre, to);
  double included = toAngle - directionOf(centre, from);
  while (included <= 0) included += 2 * kPi;
  end = {centre.x + radius * std::cos(toAngle), centre.y + radius * std::sin(toAngle)};
  if (2 * kPi - included < kTurnBack) return std::nullopt;
  return std::tan(included / 4);
}

double endDirection(Point2 from, Point2 to, double bulge) { return directionOf(from, to) + 2 * std::atan(bulge); }

}  // namespace host::curves

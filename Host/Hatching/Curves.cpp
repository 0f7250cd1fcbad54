#include "Hatching/Curves.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "Hatching/Arcs.h"

namespace host::hatching {

namespace {

constexpr int kMostHalvings = 9;
constexpr int kMostDegree = 25;

/// Adds the points of a curve after `t0` up to and with `t1`, halving until the middle and the quarters lie within the
/// deviation of the chord. (The middle alone may lie on the chord of an S.)
template <class Curve>
void addChords(const Curve& curve, double t0, Point2 p0, double t1, Point2 p1, double deviation, int halvings,
               Polygon& out) {
  if (halvings < kMostHalvings) {
    const Point2 chord = p1 - p0;
    const double chordLength = length(chord);
    const auto isOff = [&](double fraction) {
      const Point2 q = curve(t0 + (t1 - t0) * fraction) - p0;
      const double off = chordLength > 0 ? std::abs(cross(chord, q)) / chordLength : length(q);
      return !(off <= deviation);
    };
    if (isOff(0.5) || isOff(0.25) || isOff(0.75)) {
      const double middle = (t0 + t1) / 2;
      const Point2 p = curve(middle);
      addChords(curve, t0, p0, middle, p, deviation, halvings + 1, out);
      addChords(curve, middle, p, t1, p1, deviation, halvings + 1, out);
      return;
    }
  }
  out.push_back(p1);
}

template <class Curve>
void addCurve(const Curve& curve, double from, double to, int pieces, double deviation, Polygon& out) {
  double t = from;
  Point2 p = curve(t);
  if (out.empty()) out.push_back(p);
  for (int i = 1; i <= pieces; ++i) {
    const double tNext = i == pieces ? to : from + (to - from) * i / pieces;
    const Point2 next = curve(tNext);
    addChords(curve, t, p, tNext, next, deviation, 0, out);
    t = tNext;
    p = next;
  }
}

bool areFinite(const std::vector<Point2>& points) { return std::all_of(points.begin(), points.end(), isFinite); }
bool areFinite(const std::vector<double>& numbers) {
  return std::all_of(numbers.begin(), numbers.end(), [](double number) { return std::isfinite(number); });
}

bool isConsistent(const Spline& spline) {
  const std::size_t count = spline.controls.size();
  if (spline.degree < 1 || spline.degree > kMostDegree) return false;
  const auto degree = static_cast<std::size_t>(spline.degree);
  if (count < degree + 1 || spline.knots.size() != count + degree + 1) return false;
  if (!spline.weights.empty() && spline.weights.size() != count) return false;
  if (!areFinite(spline.knots) || !areFinite(spline.controls) || !areFinite(spline.weights)) return false;
  if (std::any_of(spline.weights.begin(), spline.weights.end(), [](double w) { return w <= 0; })) return false;
  return std::is_sorted(spline.knots.begin(), spline.knots.end()) && spline.knots[degree] < spline.knots[count];
}

/// Point of the knot span [knots[span], knots[span + 1]] by de Boor's scheme, on points lifted by their weights.
Point2 splinePoint(const Spline& spline, std::size_t span, double t) {
  struct Lifted {
    double x, y, w;
  };
  Lifted lifted[kMostDegree + 1];
  const auto degree = static_cast<std::size_t>(spline.degree);
  for (std::size_t j = 0; j <= degree; ++j) {
    const std::size_t i = span - degree + j;
    const double w = spline.weights.empty() ? 1 : spline.weights[i];
    lifted[j] = {spline.controls[i].x * w, spline.controls[i].y * w, w};
  }
  for (std::size_t level = 1; level <= degree; ++level) {
    for (std::size_t j = degree; j >= level; --j) {
      const std::size_t i = span - degree + j;
      const double width = spline.knots[i + degree + 1 - level] - spline.knots[i];
      const double f = width > 0 ? (t - spline.knots[i]) / width : 0;
      lifted[j] = {lifted[j - 1].x * (1 - f) + lifted[j].x * f, lifted[j - 1].y * (1 - f) + lifted[j].y * f,
                   lifted[j - 1].w * (1 - f) + lifted[j].w * f};
    }
  }
  return {lifted[degree].x / lifted[degree].w, lifted[degree].y / lifted[degree].w};
}

/// Cubic pieces through the fit points; inner tangents are parallel to the chord between the neighbours.
Polygon throughFitPoints(const Spline& spline, double deviation) {
  const std::vector<Point2>& points = spline.fits;
  const auto tangent = [&](std::size_t i, double span) -> Point2 {
    if (i == 0 || i + 1 == points.size()) {
      const std::optional<Point2>& given = i == 0 ? spline.startTangent : spline.endTangent;
      if (given && isFinite(*given) && length(*given) > 0) return *given * (span / length(*given));
      return i == 0 ? points[1] - points[0] : points[i] - points[i - 1];
    }
    const double around = distance(points[i - 1], points[i]) + distance(points[i], points[i + 1]);
    return around > 0 ? (points[i + 1] - points[i - 1]) * (span / around) : Point2{};
  };
  Polygon out;
  for (std::size_t i = 0; i + 1 < points.size(); ++i) {
    const Point2 a = points[i];
    const Point2 b = points[i + 1];
    const double span = distance(a, b);
    const Point2 fromA = tangent(i, span);
    const Point2 toB = tangent(i + 1, span);
    addCurve(
        [&](double t) {
          const double s = 1 - t;
          return a * (s * s * (1 + 2 * t)) + fromA * (s * s * t) + b * (t * t * (1 + 2 * s)) - toB * (t * t * s);
        },
        0, 1, 1, deviation, out);
  }
  return out;
}

}  // namespace

Point2 EllipseArc::at(double t) const { return centre + major * std::cos(t) + minor * std::sin(t); }

Polygon flatten(const EllipseArc& arc, double deviation) {
  Polygon out;
  if (!isFinite(arc.centre) || !isFinite(arc.major) || !isFinite(arc.minor)) return out;
  if (!std::isfinite(arc.start) || !std::isfinite(arc.sweep)) return out;
  const int quarters = std::max(1, static_cast<int>(std::ceil(std::abs(arc.sweep) / (std::numbers::pi / 2) - 1e-9)));
  addCurve([&](double t) { return arc.at(t); }, arc.start, arc.start + arc.sweep, std::min(quarters, 8), deviation,
           out);
  return out;
}

std::optional<Polygon> flatten(const Spline& spline, double deviation) {
  if (spline.controls.empty()) {
    if (spline.fits.size() < 2 || !areFinite(spline.fits)) return std::nullopt;
    return throughFitPoints(spline, deviation);
  }
  if (!isConsistent(spline)) return std::nullopt;
  Polygon out;
  for (auto span = static_cast<std::size_t>(spline.degree); span < spline.controls.size(); ++span) {
    if (!(spline.knots[span] < spline.knots[span + 1])) continue;
    addCurve([&](double t) { return splinePoint(spline, span, t); }, spline.knots[span], spline.knots[span + 1], 1,
             deviation, out);
  }
  if (!areFinite(out)) return std::nullopt;
  return out;
}

}  // namespace host::hatching

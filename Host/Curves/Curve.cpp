#include "Curves/Curve.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>

namespace host::curves {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr int kMostStepsPerQuarter = 4096;
constexpr int kDeepestSplit = 10;
constexpr int kHighestDegree = 25;
constexpr double kRelativeDeviation = 1e-4;  // of the curve's size, where the caller names none
constexpr double kWholeTurn = 1e-9;          // radians: an arc that lacks less is whole

double length(const AcGeVector3d& v) { return v.length(); }
bool isFinite(const AcGePoint3d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }
bool isFinite(const AcGeVector3d& v) { return isFinite(AcGePoint3d{} + v); }
using curves::isFinite;
using curves::length;

template <class Point>
bool areFinite(const std::vector<Point>& points) {
  return std::ranges::all_of(points, [](const Point& p) { return isFinite(p); });
}

template <class Point>
double sizeOf(const std::vector<Point>& points) {
  double size = 0;
  for (const Point& p : points) size = std::max(size, length(p - points.front()));
  return size;
}

template <class Point>
double deviationFor(const std::vector<Point>& points, double asked) {
  return asked <= 0 ? std::max(sizeOf(points) * kRelativeDeviation, 1e-12) : asked;
}

int stepsPerQuarter(double radius, double deviation) {
  if (deviation <= 0) deviation = radius * kRelativeDeviation;
  if (!(deviation < radius)) return 2;
  const double step = 2 * std::acos(1 - deviation / radius);
  // Where the deviation is lost beside the radius there is no step at all.
  return static_cast<int>(std::clamp(std::ceil(kPi / 2 / step), 2.0, double{kMostStepsPerQuarter}));
}

/// Splits [a, b] until the middle of every piece is within `deviation` of its chord; adds everything after pa.
template <class Evaluate, class Point>
void subdivide(const Evaluate& at, double a, const Point& pa, double b, const Point& pb, double deviation, int depth,
               std::vector<Point>& chain) {
  const double m = (a + b) / 2;
  const Point pm = at(m);
  const Point chordMiddle = pa + (pb - pa) * 0.5;
  // At least two levels: an S-shaped piece may pass through the middle of its own chord.
  if (depth < 2 || (depth < kDeepestSplit && length(pm - chordMiddle) > deviation)) {
    subdivide(at, a, pa, m, pm, deviation, depth + 1, chain);
    subdivide(at, m, pm, b, pb, deviation, depth + 1, chain);
    return;
  }
  chain.push_back(pm);
  chain.push_back(pb);
}

// ---- B-splines ----

bool areUsable(const std::vector<double>& knots, std::size_t degree, std::size_t controls) {
  return knots.size() == controls + degree + 1 &&
         std::ranges::all_of(knots, [](double knot) { return std::isfinite(knot); }) && std::ranges::is_sorted(knots) &&
         knots[degree] < knots[controls];
}

std::vector<double> clampedKnots(std::size_t degree, std::size_t controls) {
  std::vector<double> knots(controls + degree + 1);
  for (std::size_t i = 0; i < knots.size(); ++i)
    knots[i] =
        std::clamp(static_cast<double>(i) - static_cast<double>(degree), 0.0, static_cast<double>(controls - degree));
  return knots;
}

/// Points of a B-spline by de Boor's algorithm, on control points lifted by their weights.
template <class Point>
class DeBoor {
 public:
  DeBoor(const Spline<Point>& curve, std::span<const double> knots, std::span<const double> weights)
      : controls_(curve.controls), knots_(knots), weights_(weights), degree_(static_cast<std::size_t>(curve.degree)) {
    work_.resize(degree_ + 1);
  }

  /// At u in the knot span [knots[span], knots[span + 1]].
  Point at(std::size_t span, double u) {
    const Point& base = controls_.front();  // keeps digits when coordinates are large
    for (std::size_t i = 0; i <= degree_; ++i) {
      const std::size_t control = span - degree_ + i;
      const double w = weights_.empty() ? 1 : weights_[control];
      work_[i] = {(controls_[control] - base) * w, w};
    }
    for (std::size_t level = 1; level <= degree_; ++level)
      for (std::size_t i = degree_; i >= level; --i) {
        const double low = knots_[span - degree_ + i], high = knots_[span + 1 + i - level];
        const double t = high > low ? (u - low) / (high - low) : 0;
        work_[i].vector = work_[i - 1].vector * (1 - t) + work_[i].vector * t;
        work_[i].weight = work_[i - 1].weight * (1 - t) + work_[i].weight * t;
      }
    return base + work_[degree_].vector * (1 / work_[degree_].weight);
  }

 private:
  struct Lifted {
    VectorOf<Point> vector;
    double weight = 1;
  };
  const std::vector<Point>& controls_;
  std::span<const double> knots_, weights_;
  std::size_t degree_;
  std::vector<Lifted> work_;
};

template <class Point>
std::vector<Point> flattenControls(const Spline<Point>& spline, double deviation) {
  std::vector<Point> chain;
  if (spline.degree < 1 || spline.degree > kHighestDegree) return chain;
  const auto degree = static_cast<std::size_t>(spline.degree);
  const std::size_t count = spline.controls.size();
  if (count < degree + 1 || !areFinite(spline.controls)) return chain;
  const std::vector<double> evenKnots =
      areUsable(spline.knots, degree, count) ? std::vector<double>() : clampedKnots(degree, count);
  const std::vector<double>& knots = evenKnots.empty() ? spline.knots : evenKnots;
  const bool isRational = spline.weights.size() == count &&
                          std::ranges::all_of(spline.weights, [](double w) { return std::isfinite(w) && w > 0; });
  deviation = deviationFor(spline.controls, deviation);
  DeBoor<Point> curve(spline, knots, isRational ? std::span<const double>(spline.weights) : std::span<const double>());
  for (std::size_t span = degree; span < count; ++span) {
    const double a = knots[span], b = knots[span + 1];
    if (!(b > a)) continue;
    const auto at = [&](double u) { return curve.at(span, u); };
    if (chain.empty()) chain.push_back(at(a));
    const Point from = chain.back();
    subdivide(at, a, from, b, at(b), deviation, 0, chain);
  }
  return chain;
}

// ---- curves through fit points ----

/// A tridiagonal system; row i is lower[i] x[i-1] + diagonal[i] x[i] + upper[i] x[i+1].
struct Tridiagonal {
  std::vector<double> lower, diagonal, upper;

  explicit Tridiagonal(std::size_t size) : lower(size, 0), diagonal(size, 1), upper(size, 0) {}

  /// By the Thomas algorithm. Values are numbers or vectors.
  template <class Value>
  std::vector<Value> solve(std::vector<Value> right) const {
    const std::size_t n = diagonal.size();
    std::vector<double> pivot = diagonal;
    for (std::size_t i = 1; i < n; ++i) {
      const double f = lower[i] / pivot[i - 1];
      pivot[i] -= f * upper[i - 1];
      right[i] = right[i] - right[i - 1] * f;
    }
    right[n - 1] = right[n - 1] * (1 / pivot[n - 1]);
    for (std::size_t i = n - 1; i-- > 0;) right[i] = (right[i] - right[i + 1] * upper[i]) * (1 / pivot[i]);
    return right;
  }
};

/// Second derivatives at the points of a cubic with continuous curvature. `steps` are the parameter steps of the
/// pieces, `slopes` the vectors of their chords per step; end slopes are used when given.
template <class Vector>
std::vector<Vector> openCurvatures(const std::vector<double>& steps, const std::vector<Vector>& slopes,
                                   const Vector* startSlope, const Vector* endSlope) {
  const std::size_t n = steps.size();
  Tridiagonal system(n + 1);
  std::vector<Vector> right(n + 1);
  if (startSlope != nullptr) {
    system.diagonal[0] = 2 * steps[0];
    system.upper[0] = steps[0];
    right[0] = (slopes[0] - *startSlope) * 6;
  }
  for (std::size_t i = 1; i < n; ++i) {
    system.lower[i] = steps[i - 1];
    system.diagonal[i] = 2 * (steps[i - 1] + steps[i]);
    system.upper[i] = steps[i];
    right[i] = (slopes[i] - slopes[i - 1]) * 6;
  }
  if (endSlope != nullptr) {
    system.lower[n] = steps[n - 1];
    system.diagonal[n] = 2 * steps[n - 1];
    right[n] = (*endSlope - slopes[n - 1]) * 6;
  }
  return system.solve(std::move(right));
}

/// The same where the last piece leads back to the first point: a cyclic system, solved as a tridiagonal one and its
/// change by the two corners (Sherman and Morrison's formula). At least three pieces; the first value comes again last.
template <class Vector>
std::vector<Vector> closedCurvatures(const std::vector<double>& steps, const std::vector<Vector>& slopes) {
  const std::size_t n = steps.size();
  Tridiagonal system(n);
  std::vector<Vector> right(n);
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t before = (i + n - 1) % n;
    system.lower[i] = steps[before];
    system.diagonal[i] = 2 * (steps[before] + steps[i]);
    system.upper[i] = steps[i];
    right[i] = (slopes[i] - slopes[before]) * 6;
  }
  const double corner = steps[n - 1], shift = -system.diagonal[0];
  system.diagonal[0] -= shift;
  system.diagonal[n - 1] -= corner * corner / shift;
  std::vector<double> corners(n, 0);
  corners[0] = shift;
  corners[n - 1] = corner;
  const std::vector<double> change = system.solve(std::move(corners));
  std::vector<Vector> values = system.solve(std::move(right));
  const Vector factor =
      (values[0] + values[n - 1] * (corner / shift)) * (1 / (1 + change[0] + change[n - 1] * (corner / shift)));
  for (std::size_t i = 0; i < n; ++i) values[i] = values[i] - factor * change[i];
  values.push_back(values.front());
  return values;
}

/// Unit vector, or zero for a tangent that is none.
template <class Vector>
Vector direction(const Vector& tangent) {
  const double l = length(tangent);
  return std::isfinite(l) && l > 0 ? tangent * (1 / l) : Vector{};
}

template <class Point>
std::vector<Point> flattenFits(const Spline<Point>& spline, double deviation) {
  using Vector = VectorOf<Point>;
  std::vector<Point> points;
  if (spline.fits.size() < 2 || !areFinite(spline.fits)) return points;
  for (const Point& p : spline.fits)
    if (points.empty() || length(p - points.back()) > 0) points.push_back(p);
  if (spline.isClosed && points.size() > 1 && length(points.back() - points.front()) == 0) points.pop_back();
  const Vector start = direction(spline.startTangent), end = direction(spline.endTangent);
  const bool hasStart = length(start) > 0, hasEnd = length(end) > 0;
  if (points.size() < 2 || (points.size() == 2 && !hasStart && !hasEnd)) return points;
  const bool isPeriodic = spline.isClosed && points.size() > 2 && !hasStart && !hasEnd;
  if (spline.isClosed) points.push_back(points.front());

  const std::size_t n = points.size() - 1;
  std::vector<double> steps(n);
  std::vector<Vector> slopes(n);
  for (std::size_t i = 0; i < n; ++i) {
    steps[i] = length(points[i + 1] - points[i]);
    slopes[i] = (points[i + 1] - points[i]) * (1 / steps[i]);
  }
  const std::vector<Vector> second =
      isPeriodic ? closedCurvatures(steps, slopes)
                 : openCurvatures(steps, slopes, hasStart ? &start : nullptr, hasEnd ? &end : nullptr);
  deviation = deviationFor(points, deviation);
  std::vector<Point> chain{points.front()};
  for (std::size_t i = 0; i < n; ++i) {
    const Vector piece = points[i + 1] - points[i];
    const auto at = [&](double t) {
      const double a = 1 - t;
      const Vector bend = second[i] * (a * a * a - a) + second[i + 1] * (t * t * t - t);
      return points[i] + (piece * t + bend * (steps[i] * steps[i] / 6));
    };
    subdivide(at, 0, points[i], 1, points[i + 1], deviation, 0, chain);
  }
  return chain;
}

}  // namespace

template <class Point>
Point EllipseArc<Point>::at(double t) const {
  return centre + major * std::cos(t) + minor * std::sin(t);
}

template <class Point>
bool EllipseArc<Point>::isWhole() const {
  return std::abs(sweep) > 2 * kPi - kWholeTurn;
}

template <class Point>
void flatten(const EllipseArc<Point>& arc, double deviation, std::vector<Point>& chain) {
  if (!isFinite(arc.centre) || !isFinite(arc.major) || !isFinite(arc.minor)) return;
  if (!std::isfinite(arc.start) || !std::isfinite(arc.sweep)) return;
  // Counter-clockwise from one end; the chords are the same whichever way round the arc runs.
  const double sweep = std::min(std::abs(arc.sweep), 2 * kPi);
  if (!(sweep > 0)) return;
  const double from = std::fmod(arc.sweep < 0 ? arc.start - sweep : arc.start, 2 * kPi);  // no huge angle drowns steps
  const double to = from + sweep;
  const auto first = static_cast<std::ptrdiff_t>(chain.size());
  const int quarter = stepsPerQuarter(std::max(length(arc.major), length(arc.minor)), deviation);
  const double step = kPi / 2 / quarter;
  chain.push_back(arc.at(from));
  // At multiples of the step, so that the ends of the axes are hit, to the last digit.
  const double slack = step * 1e-6;
  for (auto i = static_cast<std::int64_t>(std::floor((from + slack) / step)) + 1;
       static_cast<double>(i) * step < to - slack; ++i) {
    if (i % quarter != 0) {
      chain.push_back(arc.at(static_cast<double>(i) * step));
      continue;
    }
    const auto which = ((i / quarter) % 4 + 4) % 4;
    const VectorOf<Point>& axis = which % 2 == 0 ? arc.major : arc.minor;
    chain.push_back(arc.centre + (which < 2 ? axis : -axis));
  }
  if (!arc.isWhole()) chain.push_back(arc.at(to));
  if (arc.sweep < 0) std::reverse(chain.begin() + first, chain.end());
}

template <class Point>
std::vector<Point> flatten(const Spline<Point>& spline, double deviation) {
  std::vector<Point> chain = flattenControls(spline, deviation);
  return chain.empty() ? flattenFits(spline, deviation) : chain;
}

template struct EllipseArc<Point2>;
template struct EllipseArc<AcGePoint3d>;
template void flatten(const EllipseArc<Point2>& arc, double deviation, std::vector<Point2>& chain);
template void flatten(const EllipseArc<AcGePoint3d>& arc, double deviation, std::vector<AcGePoint3d>& chain);
template std::vector<Point2> flatten(const Spline<Point2>& spline, double deviation);
template std::vector<AcGePoint3d> flatten(const Spline<AcGePoint3d>& spline, double deviation);

}  // namespace host::curves

#include "Geometry/Curves.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace host::geometry {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr int kMostStepsPerQuarter = 4096;
constexpr int kDeepestSplit = 10;
constexpr int kHighestDegree = 25;
constexpr double kRelativeDeviation = 1e-4;

int stepsPerQuarter(double radius, double deviation) {
  if (deviation <= 0) deviation = radius * kRelativeDeviation;
  if (!(deviation < radius)) return 2;
  const double step = 2 * std::acos(1 - deviation / radius);
  return std::clamp(static_cast<int>(std::ceil(kPi / 2 / step)), 2, kMostStepsPerQuarter);
}

/// Splits [a, b] until the middle of every piece is within `deviation` of its chord; adds everything after pa.
template <class Evaluate>
void subdivide(const Evaluate& at, double a, const AcGePoint3d& pa, double b, const AcGePoint3d& pb, double deviation,
               int depth, Chain& chain) {
  const double m = (a + b) / 2;
  const AcGePoint3d pm = at(m);
  const AcGePoint3d chordMiddle{(pa.x + pb.x) / 2, (pa.y + pb.y) / 2, (pa.z + pb.z) / 2};
  // At least two levels: an S-shaped piece may pass through the middle of its own chord.
  if (depth < 2 || (depth < kDeepestSplit && chordMiddle.distanceTo(pm) > deviation)) {
    subdivide(at, a, pa, m, pm, deviation, depth + 1, chain);
    subdivide(at, m, pm, b, pb, deviation, depth + 1, chain);
    return;
  }
  chain.push_back(pm);
  chain.push_back(pb);
}

double sizeOf(const Chain& points) {
  double size = 0;
  for (const AcGePoint3d& p : points) size = std::max(size, p.distanceTo(points.front()));
  return size;
}

/// Point of a B-spline in the knot span `span` by de Boor's algorithm, in homogeneous coordinates.
class DeBoor {
 public:
  DeBoor(const Nurbs& curve, const std::vector<double>& knots) : curve_(curve), knots_(knots) {
    work_.resize(static_cast<std::size_t>(curve.degree) + 1);
  }
  AcGePoint3d at(std::size_t span, double u) {
    const auto degree = static_cast<std::size_t>(curve_.degree);
    const AcGePoint3d& base = curve_.controls.front();  // keeps digits when coordinates are large
    for (std::size_t i = 0; i <= degree; ++i) {
      const std::size_t control = span - degree + i;
      const double w = curve_.weights.empty() ? 1 : curve_.weights[control];
      const AcGeVector3d v = curve_.controls[control] - base;
      work_[i] = {v.x * w, v.y * w, v.z * w, w};
    }
    for (std::size_t level = 1; level <= degree; ++level)
      for (std::size_t i = degree; i >= level; --i) {
        const double low = knots_[span - degree + i], high = knots_[span + 1 + i - level];
        const double t = high > low ? (u - low) / (high - low) : 0;
        for (std::size_t k = 0; k < 4; ++k) work_[i].c[k] = (1 - t) * work_[i - 1].c[k] + t * work_[i].c[k];
      }
    const Homogeneous& h = work_[degree];
    const double w = h.c[3] != 0 ? h.c[3] : 1;
    return base + AcGeVector3d{h.c[0] / w, h.c[1] / w, h.c[2] / w};
  }

 private:
  struct Homogeneous {
    double c[4] = {0, 0, 0, 1};
  };
  const Nurbs& curve_;
  const std::vector<double>& knots_;
  std::vector<Homogeneous> work_;
};

/// Second derivatives of one coordinate of an interpolating cubic, by the tridiagonal system (Thomas algorithm).
/// `h` are the parameter steps, `d` the divided differences; end slopes are used when given.
std::vector<double> secondDerivatives(const std::vector<double>& h, const std::vector<double>& d, bool slopeAtStart,
                                      double startSlope, bool slopeAtEnd, double endSlope) {
  const std::size_t n = h.size();
  std::vector<double> lower(n + 1, 0), diagonal(n + 1, 1), upper(n + 1, 0), right(n + 1, 0);
  if (slopeAtStart) {
    diagonal[0] = 2 * h[0];
    upper[0] = h[0];
    right[0] = 6 * (d[0] - startSlope);
  }
  for (std::size_t i = 1; i < n; ++i) {
    lower[i] = h[i - 1];
    diagonal[i] = 2 * (h[i - 1] + h[i]);
    upper[i] = h[i];
    right[i] = 6 * (d[i] - d[i - 1]);
  }
  if (slopeAtEnd) {
    lower[n] = h[n - 1];
    diagonal[n] = 2 * h[n - 1];
    right[n] = 6 * (endSlope - d[n - 1]);
  }
  for (std::size_t i = 1; i <= n; ++i) {
    const double f = lower[i] / diagonal[i - 1];
    diagonal[i] -= f * upper[i - 1];
    right[i] -= f * right[i - 1];
  }
  std::vector<double> m(n + 1, 0);
  m[n] = right[n] / diagonal[n];
  for (std::size_t i = n; i-- > 0;) m[i] = (right[i] - upper[i] * m[i + 1]) / diagonal[i];
  return m;
}

struct Offset {
  AcGePoint3d left, right;
};

AcGeVector3d leftNormal(const AcGePoint3d& from, const AcGePoint3d& to) {
  const AcGeVector3d d = (to - from).normal();
  return {-d.y, d.x, 0};
}

/// Offsets at a corner between two pieces of the same width.
Offset mitre(const AcGePoint3d& p, const AcGeVector3d& before, const AcGeVector3d& after, double width) {
  constexpr double kMitreLimit = 4;  // longer tips are cut, as at a turn back
  const AcGeVector3d sum = before + after;
  const double lengthSquared = sum.dotProduct(sum);
  AcGeVector3d v = after;
  if (lengthSquared > 4 / (kMitreLimit * kMitreLimit)) v = sum * (2 / lengthSquared);
  v = v * (width / 2);
  return {p + v, p - v};
}

}  // namespace

bool EllipseArc::isWhole() const { return end - begin > 2 * kPi - 1e-9; }

void flatten(const EllipseArc& arc, double deviation, Chain& chain) {
  const double sweep = std::min(arc.end - arc.begin, 2 * kPi);
  if (!(sweep > 0) || !std::isfinite(arc.begin)) return;
  const double radius = std::max(arc.major.length(), arc.minor.length());
  const double step = kPi / 2 / stepsPerQuarter(radius, deviation);
  const auto at = [&](double t) { return arc.center + arc.major * std::cos(t) + arc.minor * std::sin(t); };
  const double begin = std::fmod(arc.begin, 2 * kPi);  // steps must not drown in a huge angle
  const double end = begin + sweep;
  chain.push_back(at(begin));
  // Multiples of the step, so that the quarter points are hit exactly.
  const double slack = step * 1e-6;
  for (double i = std::floor((begin + slack) / step) + 1; i * step < end - slack; ++i) {
    const double quarter = i * step / (kPi / 2);
    const double nearest = std::round(quarter);
    if (std::abs(quarter - nearest) > 1e-9) {
      chain.push_back(at(i * step));
      continue;
    }
    const int which = static_cast<int>(std::fmod(std::fmod(nearest, 4) + 4, 4));
    const AcGeVector3d& axis = which % 2 == 0 ? arc.major : arc.minor;
    chain.push_back(arc.center + (which < 2 ? axis : -axis));
  }
  if (!arc.isWhole()) chain.push_back(at(end));
}

void flattenBulge(const AcGePoint3d& from, const AcGePoint3d& to, double bulge, double deviation, Chain& chain) {
  const AcGeVector3d chord = to - from;
  const double length = std::hypot(chord.x, chord.y);
  if (bulge == 0 || !std::isfinite(bulge) || length == 0 || std::abs(bulge) < 1e-9) {
    chain.push_back(to);
    return;
  }
  // Centre: from the middle of the chord along its left normal by (1 - b^2) / (4 b) chord lengths.
  const double offset = (1 - bulge * bulge) / (4 * bulge);
  EllipseArc arc;
  arc.center = {from.x + chord.x / 2 - chord.y * offset, from.y + chord.y / 2 + chord.x * offset, from.z};
  const double radius = length * (1 + bulge * bulge) / (4 * std::abs(bulge));
  if (!std::isfinite(radius) || radius > 1e9 * length) {
    chain.push_back(to);
    return;
  }
  const double start = std::atan2(from.y - arc.center.y, from.x - arc.center.x);
  const double sweep = 4 * std::atan(std::abs(bulge));
  arc.major = {radius, 0, 0};
  arc.minor = {0, radius, 0};
  arc.begin = bulge > 0 ? start : start - sweep;
  arc.end = arc.begin + sweep;
  Chain points;
  flatten(arc, deviation, points);
  if (bulge < 0) std::reverse(points.begin(), points.end());
  if (!points.empty()) chain.insert(chain.end(), points.begin() + 1, points.end());
  chain.back() = to;
}

Chain flatten(const Nurbs& given, double deviation) {
  Chain chain;
  if (given.degree < 1 || given.degree > kHighestDegree) return chain;
  const auto degree = static_cast<std::size_t>(given.degree);
  const std::size_t count = given.controls.size();
  if (count < degree + 1) return chain;
  if (!given.weights.empty() && given.weights.size() != count)
    return flatten(Nurbs{given.degree, given.knots, given.controls, {}}, deviation);
  std::vector<double> knots = given.knots;
  if (knots.size() != count + degree + 1 || !std::is_sorted(knots.begin(), knots.end()) ||
      knots[degree] >= knots[count]) {
    knots.assign(count + degree + 1, 0);
    for (std::size_t i = 0; i < knots.size(); ++i)
      knots[i] =
          std::clamp(static_cast<double>(i) - static_cast<double>(degree), 0.0, static_cast<double>(count - degree));
  }
  if (deviation <= 0) deviation = std::max(sizeOf(given.controls) * kRelativeDeviation, 1e-12);
  DeBoor curve(given, knots);
  for (std::size_t span = degree; span < count; ++span) {
    const double a = knots[span], b = knots[span + 1];
    if (!(b > a)) continue;
    const auto at = [&](double u) { return curve.at(span, u); };
    if (chain.empty()) chain.push_back(at(a));
    const AcGePoint3d from = chain.back();
    const AcGePoint3d to = at(b);
    subdivide(at, a, from, b, to, deviation, 0, chain);
  }
  return chain;
}

Chain interpolate(const Chain& given, bool closed, const AcGeVector3d& startTangent, const AcGeVector3d& endTangent,
                  double deviation) {
  Chain points;
  for (const AcGePoint3d& p : given)
    if (points.empty() || p.distanceTo(points.back()) > 0) points.push_back(p);
  if (closed && points.size() > 1 && points.front() == points.back()) points.pop_back();
  std::size_t lead = 0;
  const std::size_t distinct = points.size();
  if (closed && distinct > 2) {
    // A few points of the neighbouring turns on both sides make the join smooth; the influence of farther ones fades.
    lead = std::min<std::size_t>(distinct, 6);
    Chain turns(points.end() - static_cast<std::ptrdiff_t>(lead), points.end());
    turns.insert(turns.end(), points.begin(), points.end());
    for (std::size_t i = 0; i <= lead; ++i) turns.push_back(points[i % distinct]);
    points = std::move(turns);
  }
  if (points.size() < 3) return points;
  if (deviation <= 0) deviation = std::max(sizeOf(points) * kRelativeDeviation, 1e-12);

  const std::size_t n = points.size() - 1;
  std::vector<double> h(n);
  for (std::size_t i = 0; i < n; ++i) h[i] = points[i + 1].distanceTo(points[i]);
  const AcGeVector3d start = startTangent.normal(), end = endTangent.normal();
  const bool useStart = !closed && start.length() > 0, useEnd = !closed && end.length() > 0;
  std::vector<double> second[3];
  for (unsigned axis = 0; axis < 3; ++axis) {
    std::vector<double> slope(n);
    for (std::size_t i = 0; i < n; ++i) slope[i] = (points[i + 1][axis] - points[i][axis]) / h[i];
    second[axis] = secondDerivatives(h, slope, useStart, start[axis], useEnd, end[axis]);
  }
  const std::size_t first = lead, last = lead > 0 ? lead + distinct : n;
  Chain chain{points[first]};
  for (std::size_t i = first; i < last; ++i) {
    const auto at = [&](double t) {
      AcGePoint3d p;
      const double a = 1 - t;
      for (unsigned axis = 0; axis < 3; ++axis)
        p[axis] = a * points[i][axis] + t * points[i + 1][axis] +
                  ((a * a * a - a) * second[axis][i] + (t * t * t - t) * second[axis][i + 1]) * h[i] * h[i] / 6;
      return p;
    };
    subdivide(at, 0, points[i], 1, points[i + 1], deviation, 0, chain);
  }
  return chain;
}

std::vector<Chain> wideOutline(const Chain& given, bool closed, const std::vector<double>& givenWidths) {
  // Pieces without length have no direction; leave them out with their widths.
  Chain points;
  std::vector<double> widths;
  const std::size_t pieces = given.size() < 2 ? 0 : given.size() - (closed ? 0 : 1);
  for (std::size_t i = 0; i < pieces && 2 * i + 1 < givenWidths.size(); ++i) {
    const AcGePoint3d& from = given[i];
    const AcGePoint3d& to = given[(i + 1) % given.size()];
    if (std::hypot(to.x - from.x, to.y - from.y) == 0) continue;
    points.push_back(from);
    widths.push_back(givenWidths[2 * i]);
    widths.push_back(givenWidths[2 * i + 1]);
  }
  const std::size_t count = points.size();
  if (count == 0) return {};
  closed = closed && count > 2;
  if (!closed) points.push_back(given[pieces % given.size()]);

  std::vector<AcGeVector3d> normals(count);
  for (std::size_t i = 0; i < count; ++i) normals[i] = leftNormal(points[i], points[(i + 1) % points.size()]);
  const auto joins = [&](std::size_t before, std::size_t after) {
    const double a = widths[2 * before + 1], b = widths[2 * after];
    return a == b && a > 0;
  };
  std::vector<Chain> rings;
  std::size_t begin = 0;
  if (closed)
    while (begin < count && joins((begin + count - 1) % count, begin)) ++begin;
  if (closed && begin == count) {
    Chain left, right;
    for (std::size_t i = 0; i < count; ++i) {
      const Offset o = mitre(points[i], normals[(i + count - 1) % count], normals[i], widths[2 * i]);
      left.push_back(o.left);
      right.push_back(o.right);
    }
    std::reverse(right.begin(), right.end());
    return {left, right};
  }
  Chain left, right;
  for (std::size_t k = 0; k < count; ++k) {
    const std::size_t i = (begin + k) % count;
    const AcGePoint3d& to = points[(i + 1) % points.size()];
    if (left.empty()) {
      const AcGeVector3d v = normals[i] * (widths[2 * i] / 2);
      left.push_back(points[i] + v);
      right.push_back(points[i] - v);
    }
    const std::size_t next = (i + 1) % count;
    if (k + 1 < count && joins(i, next)) {
      const Offset o = mitre(to, normals[i], normals[next], widths[2 * next]);
      left.push_back(o.left);
      right.push_back(o.right);
      continue;
    }
    const AcGeVector3d v = normals[i] * (widths[2 * i + 1] / 2);
    left.push_back(to + v);
    right.push_back(to - v);
    left.insert(left.end(), right.rbegin(), right.rend());
    if (widths[2 * i] > 0 || widths[2 * i + 1] > 0) rings.push_back(left);
    left.clear();
    right.clear();
  }
  return rings;
}

}  // namespace host::geometry

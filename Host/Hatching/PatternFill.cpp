#include "Hatching/PatternFill.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>

#include "Curves/Plane.h"

namespace host::hatching {

namespace {

constexpr double kMostLines = 1e7;              // lines of one family across the area
constexpr long double kMostLinesAway = 1e15L;   // from the base point to the area: still counted one by one
constexpr std::size_t kMostSpans = 10'000'000;  // stretches of lines inside, for patterns that are nearly all gap

/// Dashes of a line: where they begin and end within one period.
struct DashPeriod {
  struct Dash {
    double from = 0, to = 0;  // equal for a dot
  };
  std::vector<Dash> dashes;
  double length = 0;  // 0: unbroken
};

/// One side of a polygon in a family's coordinates: u along the lines, v across. Covers v from `vLow` up to, not
/// including, `vHigh`, so that a line through a vertex meets each outline exactly once there.
struct Edge {
  double vLow = 0, vHigh = 0;
  double uLow = 0, uHigh = 0;  // at those ends
  double at(double v) const {
    const double u = uLow + (uHigh - uLow) * ((v - vLow) / (vHigh - vLow));
    return std::clamp(u, std::min(uLow, uHigh), std::max(uLow, uHigh));
  }
};

/// A family placed on the area: line k lies at v = firstLine + k * step, its dashes begin at u = firstPhase + k *
/// shift, both counted from the area's origin.
struct PlacedFamily {
  Point2 along, across;
  double firstLine = 0;
  double step = 0;
  long double firstPhase = 0;
  long double shift = 0;
  DashPeriod period;
};

std::optional<DashPeriod> periodOf(const std::vector<double>& dashes) {
  DashPeriod period;
  for (const double dash : dashes) {
    if (!std::isfinite(dash)) return std::nullopt;
    const double from = period.length;
    period.length += std::abs(dash);
    if (dash >= 0) period.dashes.push_back({from, period.length});
  }
  if (!dashes.empty() && !(period.length > 0 && std::isfinite(period.length))) return std::nullopt;
  return period;
}

/// Nothing when the family has no lines that could be told apart. The arithmetic across the whole distance between the
/// family's base point and the area is done with extended precision: hatches side by side in the millions must agree on
/// their lines.
std::optional<PlacedFamily> place(const PatternLine& family, Point2 origin) {
  std::optional<DashPeriod> period = periodOf(family.dashes);
  if (!period) return std::nullopt;
  const long double cosine = std::cos(static_cast<long double>(family.angleRad));
  const long double sine = std::sin(static_cast<long double>(family.angleRad));
  const long double step = family.offsetY * cosine - family.offsetX * sine;
  const long double shift = family.offsetX * cosine + family.offsetY * sine;
  const long double toOriginX = static_cast<long double>(origin.x) - family.baseX;
  const long double toOriginY = static_cast<long double>(origin.y) - family.baseY;
  const long double v = toOriginY * cosine - toOriginX * sine;
  const long double u = toOriginX * cosine + toOriginY * sine;
  const double reach = std::max(std::abs(family.offsetX), std::abs(family.offsetY));
  if (!std::isfinite(step) || !std::isfinite(shift) || !std::isfinite(u) || !std::isfinite(v)) return std::nullopt;
  if (std::abs(step) <= 1e-12L * reach || !(std::abs(v / step) < kMostLinesAway)) return std::nullopt;

  PlacedFamily placed;
  placed.along = {static_cast<double>(cosine), static_cast<double>(sine)};
  placed.across = left(placed.along);
  placed.step = static_cast<double>(std::abs(step));
  placed.period = std::move(*period);
  const long double direction = step < 0 ? -1 : 1;  // lines are counted towards growing v
  const long double lines = std::ceil(v / std::abs(step));
  placed.firstLine = static_cast<double>(lines * std::abs(step) - v);
  placed.shift = direction * shift;
  if (placed.period.length > 0) {
    const long double length = placed.period.length;
    placed.shift = std::fmod(placed.shift, length);
    // The count of lines may be large, its product with the shift beyond what a sum would keep.
    placed.firstPhase = std::fmod(std::fmod(lines * placed.shift, length) - u, length);
  }
  return placed;
}

std::vector<Edge> edgesOf(const std::vector<Polygon>& area, Point2 origin, const PlacedFamily& family) {
  std::vector<Edge> edges;
  for (const Polygon& polygon : area) {
    if (polygon.size() < 3 || !std::all_of(polygon.begin(), polygon.end(), curves::isFinite)) continue;
    Point2 before = polygon.back() - origin;
    double uBefore = dot(before, family.along);
    double vBefore = dot(before, family.across);
    for (const Point2 corner : polygon) {
      const Point2 local = corner - origin;
      const double u = dot(local, family.along);
      const double v = dot(local, family.across);
      if (v > vBefore) edges.push_back({vBefore, v, uBefore, u});
      if (v < vBefore) edges.push_back({v, vBefore, u, uBefore});
      uBefore = u;
      vBefore = v;
    }
  }
  std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.vLow < b.vLow; });
  return edges;
}

/// Walks the lines of one family after the other over the area and counts what it gives.
class Filler {
 public:
  Filler(Point2 origin, std::size_t limit, const std::function<void(const PatternSegment&)>& give)
      : origin_(origin), limit_(limit), give_(give) {}

  FillOutcome fill(const PlacedFamily& family, const std::vector<Edge>& edges) {
    if (edges.empty()) return FillOutcome::Done;
    double vEnd = edges.front().vHigh;
    for (const Edge& edge : edges) vEnd = std::max(vEnd, edge.vHigh);
    const auto lineFrom = [&](double v) { return std::ceil((v - family.firstLine) / family.step); };
    double line = lineFrom(edges.front().vLow);
    if (!(lineFrom(vEnd) - line < kMostLines)) return FillOutcome::TooDense;

    std::vector<const Edge*> active;
    std::vector<double> meets;
    std::size_t next = 0;
    for (;; line += 1) {
      if (active.empty()) {
        if (next == edges.size()) return FillOutcome::Done;
        line = std::max(line, lineFrom(edges[next].vLow));
      }
      const double v = family.firstLine + line * family.step;
      for (; next < edges.size() && edges[next].vLow <= v; ++next) active.push_back(&edges[next]);
      std::erase_if(active, [v](const Edge* edge) { return edge->vHigh <= v; });
      meets.clear();
      for (const Edge* edge : active) meets.push_back(edge->at(v));
      std::sort(meets.begin(), meets.end());
      for (std::size_t i = 0; i + 1 < meets.size(); i += 2) {
        if (meets[i] == meets[i + 1]) continue;
        if (++spans_ > kMostSpans || !fillSpan(family, line, v, meets[i], meets[i + 1])) return FillOutcome::TooDense;
      }
    }
  }

 private:
  bool fillSpan(const PlacedFamily& family, double line, double v, double from, double to) {
    if (family.period.length == 0) return give(family, v, from, to);
    if (family.period.dashes.empty()) return true;
    const long double length = family.period.length;
    const auto phase = static_cast<double>(std::fmod(family.firstPhase + line * family.shift, length));
    const double period = family.period.length;
    const double firstPeriod = std::floor((from - phase) / period) - 1;
    // Each period gives at least one piece, so the limit ends this soon.
    if (!(std::isfinite(firstPeriod) && (to - from) / period < static_cast<double>(limit_) + 2)) return false;
    for (double k = firstPeriod;; k += 1) {
      const double begin = phase + k * period;
      if (begin > to) return true;
      for (const DashPeriod::Dash& dash : family.period.dashes) {
        const double dashFrom = std::max(begin + dash.from, from);
        const double dashTo = std::min(begin + dash.to, to);
        const bool isDot = dash.from == dash.to;
        if (isDot ? dashFrom > dashTo : dashFrom >= dashTo) continue;
        if (!give(family, v, dashFrom, dashTo)) return false;
      }
    }
  }

  bool give(const PlacedFamily& family, double v, double from, double to) {
    if (given_ == limit_) return false;
    ++given_;
    const Point2 line = family.across * v;
    const Point2 start = origin_ + (line + family.along * from);
    give_({start, from == to ? start : origin_ + (line + family.along * to)});
    return true;
  }

  Point2 origin_;
  std::size_t limit_;
  const std::function<void(const PatternSegment&)>& give_;
  std::size_t given_ = 0;
  std::size_t spans_ = 0;
};

/// Middle of the area's box; the origin when there is no finite corner.
Point2 middleOf(const std::vector<Polygon>& area) {
  Point2 low{INFINITY, INFINITY};
  Point2 high{-INFINITY, -INFINITY};
  for (const Polygon& polygon : area) {
    for (const Point2 p : polygon) {
      if (!isFinite(p)) continue;
      low = {std::min(low.x, p.x), std::min(low.y, p.y)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
  }
  if (low.x > high.x) return {};
  return {low.x / 2 + high.x / 2, low.y / 2 + high.y / 2};
}

}  // namespace

FillOutcome fillPattern(const std::vector<PatternLine>& families, const std::vector<Polygon>& area, std::size_t limit,
                        const std::function<void(const PatternSegment&)>& give) {
  const Point2 origin = middleOf(area);
  Filler filler(origin, limit, give);
  bool isDegenerate = false;
  for (const PatternLine& family : families) {
    const std::optional<PlacedFamily> placed = place(family, origin);
    if (!placed) {
      isDegenerate = true;
      continue;
    }
    if (filler.fill(*placed, edgesOf(area, origin, *placed)) == FillOutcome::TooDense) return FillOutcome::TooDense;
  }
  return isDegenerate ? FillOutcome::Degenerate : FillOutcome::Done;
}

bool fillsEasily(const std::vector<PatternLine>& families, const Loop& polygon, std::size_t limit) {
  // Well inside the bounds that filling has, so that rounding here does not matter.
  constexpr double kLeastSpacing = 1e-9;
  constexpr double kMostAway = 1e12;
  Point2 low{INFINITY, INFINITY};
  Point2 high{-INFINITY, -INFINITY};
  double farthest = 0;
  for (const LoopVertex& v : polygon) {
    low = {std::min(low.x, v.x), std::min(low.y, v.y)};
    high = {std::max(high.x, v.x), std::max(high.y, v.y)};
    farthest = std::max({farthest, std::abs(v.x), std::abs(v.y)});
  }
  const double reach = std::hypot(high.x - low.x, high.y - low.y);
  if (!std::isfinite(reach)) return false;
  double pieces = 0;
  for (const PatternLine& family : families) {
    const double step =
        std::abs(family.offsetY * std::cos(family.angleRad) - family.offsetX * std::sin(family.angleRad));
    const double away = farthest + std::abs(family.baseX) + std::abs(family.baseY);
    const double offset = std::max(std::abs(family.offsetX), std::abs(family.offsetY));
    if (!(step > kLeastSpacing * offset) || !(away / step < kMostAway)) return false;
    double perSpan = 1;
    if (!family.dashes.empty()) {
      double period = 0;
      for (const double dash : family.dashes) period += std::abs(dash);
      if (!(period > 0 && away / period < kMostAway)) return false;
      perSpan = (reach / period + 3) * static_cast<double>(family.dashes.size());
    }
    pieces += (reach / step + 2) * static_cast<double>(polygon.size()) * perSpan;
  }
  return pieces < static_cast<double>(limit) / 2;
}

}  // namespace host::hatching

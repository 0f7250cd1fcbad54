#include "Picture/Strays.h"

#include <algorithm>
#include <vector>

namespace host::picture {
using geometry::Box;

namespace {

/// Strays are at most this share of the entities, and one of few drawn things is no stray.
constexpr double kMostStrays = 0.02;
constexpr std::size_t kFewEntities = 10;
constexpr double kShrinks = 0.1;  // extents without the strays are at most this part of those with them

struct Span {
  double low, high;
};

/// The longest run of spans along an axis that is not broken by an empty gap larger than the run's own length.
Span mainSpan(std::vector<Span> spans, std::size_t most) {
  std::ranges::sort(spans, [](const Span& a, const Span& b) { return a.low < b.low; });
  struct Run {
    Span span;
    std::size_t count;
  };
  // Runs that touch are one; then neighbours are joined while the gap between them is smaller than they are long.
  std::vector<Run> runs;
  const double whole = std::ranges::max(spans, {}, &Span::high).high - spans.front().low;
  const double gap = whole * (1 - kShrinks) / 2;
  for (const Span& span : spans) {
    if (!runs.empty() && span.low - runs.back().span.high <= gap * kShrinks) {
      runs.back().span.high = std::max(runs.back().span.high, span.high);
      ++runs.back().count;
    } else {
      runs.push_back({span, 1});
    }
  }
  const auto largest = std::ranges::max_element(runs, {}, &Run::count);
  if (spans.size() - largest->count > most) return {spans.front().low, spans.front().low + whole};
  if (largest->span.high - largest->span.low > whole * kShrinks) return {spans.front().low, spans.front().low + whole};
  return largest->span;
}

}  // namespace

Strays withoutStrays(const std::vector<Box>& boxes) {
  Strays result;
  std::vector<Span> across, along;
  for (const Box& box : boxes) {
    if (box.isEmpty()) continue;
    result.extents.add(box);
    across.push_back({box.minX, box.maxX});
    along.push_back({box.minY, box.maxY});
  }
  if (across.size() < kFewEntities) return result;
  const std::size_t most =
      std::max<std::size_t>(1, static_cast<std::size_t>(kMostStrays * static_cast<double>(across.size())));
  const Span x = mainSpan(std::move(across), most), y = mainSpan(std::move(along), most);
  Box kept;
  std::size_t left = 0;
  for (const Box& box : boxes) {
    if (box.isEmpty()) continue;
    if (box.minX <= x.high && box.maxX >= x.low && box.minY <= y.high && box.maxY >= y.low)
      kept.add(box);
    else
      ++left;
  }
  if (left == 0 || left > 2 * most || kept.isEmpty()) return result;
  return {kept, left};
}

}  // namespace host::picture

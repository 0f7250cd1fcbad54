// Any bytes as a pattern file; its patterns are drawn on a square.
#include <cmath>
#include <vector>

#include "Hatching/Patterns.h"
#include "Target.h"

namespace {

using host::hatching::PatternLine;

void fillSquare(const std::vector<PatternLine>& families, const std::string& name) {
  constexpr double kSide = 10, kError = 1e-6;
  constexpr std::size_t kMost = 500;
  const auto isInside = [](host::hatching::Point2 p) {
    return p.x > -kError && p.y > -kError && p.x < kSide + kError && p.y < kSide + kError;
  };
  host::hatching::fillPattern(families, {{{0, 0}, {kSide, 0}, {kSide, kSide}, {0, kSide}}}, kMost,
                              [&](const host::hatching::PatternSegment& segment) {
                                fuzz::require(isInside(segment.from) && isInside(segment.to), "lines stay inside",
                                              name);
                              });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<host::Problem> problems;
  for (const host::hatching::Pattern& pattern : host::hatching::parsePatternFile(fuzz::textOf(data, size), problems)) {
    fuzz::require(!pattern.name.empty(), "patterns have names");
    const std::vector<PatternLine> families = host::hatching::scaledPattern(pattern, 0.5, 2);
    for (const PatternLine& line : families) {
      for (const double dash : line.dashes) fuzz::require(std::isfinite(dash), "dashes are numbers", pattern.name);
      fuzz::require(std::isfinite(line.offsetX) && std::isfinite(line.offsetY), "offsets are numbers", pattern.name);
    }
    fillSquare(families, pattern.name);
  }
  return 0;
}

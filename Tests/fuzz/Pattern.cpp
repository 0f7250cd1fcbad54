// Any bytes as a pattern file; its patterns are drawn on a square.
#include <cmath>
#include <vector>

#include "Hatching/Patterns.h"
#include "Target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::string> problems;
  for (const host::hatching::Pattern& pattern : host::hatching::parsePatternFile(fuzz::textOf(data, size), problems)) {
    fuzz::require(!pattern.name.empty(), "patterns have names");
    for (const host::hatching::PatternLine& line : host::hatching::scaledPattern(pattern, 0.5, 2)) {
      for (const double dash : line.dashes) fuzz::require(std::isfinite(dash), "dashes are numbers", pattern.name);
    }
  }
  return 0;
}

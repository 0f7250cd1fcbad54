// Any bytes as a linetype file.
#include <cmath>
#include <vector>

#include "Hatching/Linetypes.h"
#include "Target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<host::Problem> problems;
  for (const host::hatching::Linetype& linetype :
       host::hatching::parseLinetypeFile(fuzz::textOf(data, size), problems)) {
    fuzz::require(!linetype.name.empty(), "linetypes have names");
    for (const double dash : linetype.dashes) fuzz::require(std::isfinite(dash), "dashes are numbers", linetype.name);
  }
  return 0;
}

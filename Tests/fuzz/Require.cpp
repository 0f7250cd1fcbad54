#include <cstdio>
#include <cstdlib>

#include "Target.h"

namespace fuzz {

void require(bool holds, const char* promise, const std::string& detail) {
  if (holds) return;
  std::fprintf(stderr, "broken promise: %s %s\n", promise, detail.c_str());
  std::abort();
}

}  // namespace fuzz

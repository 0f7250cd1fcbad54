// What updating the shadows of a plan costs.
#pragma once

#include <filesystem>
#include <vector>

#include "Measurement.h"

namespace benchmarks {

/// The last of so many updates in one session is what counts.
void updateShadows(Clock& clock, const std::filesystem::path& plan, int updates);

/// Measures reading, the first and the third shadow update of one session on plans whose buildings carry records,
/// smallest first, and prints one table. The answer is the number of failed measurements and of passed limits.
int measureShadows(const std::vector<std::filesystem::path>& plans, int tries);

}  // namespace benchmarks

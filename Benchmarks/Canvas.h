// What the window's canvas costs: its first frame, frames while the view moves, the way to a sharp one.
#pragma once

#include <filesystem>
#include <vector>

namespace benchmarks {

/// Prints one table; answers how many steps took longer than they may.
int measureCanvas(const std::vector<std::filesystem::path>& plans, int tries);

}  // namespace benchmarks

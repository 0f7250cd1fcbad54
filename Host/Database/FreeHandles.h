// Handles that a drawing has not given out.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <ranges>

namespace host::database {

/// A run of numbers that are no handles of a file; new objects are numbered upwards from its beginning.
struct FreeHandles {
  std::uint64_t begin = 1;
  std::uint64_t end = 0;  // the handle of the file behind the run; 0 when there is none

  /// Whether handles of the file lie above the run: new objects are then not the ones with the highest handles.
  bool isGap() const { return end != 0; }
  bool contains(std::uint64_t handle) const { return handle - begin < end - begin; }
};

/// Where new handles begin, by the file's own (ascending) and its hand seed: at the seed or behind the highest handle.
/// Some programs give out handles from the whole range of 64 bits; when that leaves hardly any above, the first wide
/// gap among them is taken, of which there is one however many objects a drawing has.
template <std::ranges::input_range Handles>
FreeHandles findFreeHandles(const Handles& ascending, std::uint64_t highest, std::uint64_t seed) {
  constexpr std::uint64_t kLast = std::numeric_limits<std::uint64_t>::max();
  constexpr std::uint64_t kRoom = std::uint64_t{1} << 32;
  if (seed > highest && kLast - seed >= kRoom) return {seed, 0};
  if (kLast - highest >= kRoom) return {highest + 1, 0};
  std::uint64_t before = 0;
  for (const std::uint64_t handle : ascending) {
    if (handle - before > kRoom) return {before + 1, handle};
    before = handle;
  }
  return {1, 0};
}

/// The least hand seed for a drawing whose new handles begin at `next`.
inline std::uint64_t leastSeed(std::uint64_t highest, std::uint64_t next) {
  constexpr std::uint64_t kLast = std::numeric_limits<std::uint64_t>::max();
  return highest == kLast ? kLast : std::max(next, highest + 1);
}

}  // namespace host::database

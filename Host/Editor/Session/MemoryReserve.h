// Memory set aside for when there is none left.
#pragma once

#include <cstddef>

namespace host::editor {

/// While one lives, the first allocation that fails frees the memory set aside and fails all the same: the command
/// ends, and undoing it, telling about it and saving the drawing have something to work with. One at a time.
class MemoryReserve {
 public:
  static constexpr std::size_t kBytes = std::size_t{16} << 20;

  MemoryReserve();
  MemoryReserve(const MemoryReserve&) = delete;
  MemoryReserve& operator=(const MemoryReserve&) = delete;
  ~MemoryReserve();

  /// Sets memory aside again where it was used up and there is enough once more.
  static void refill() noexcept;
};

}  // namespace host::editor

// Memory beyond what the standard library says of it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace host::platform {

/// Tells the system that huge pages would serve this memory well; it may not listen.
void preferHugePages(void* begin, std::size_t bytes);

/// Of the machine and of this process, in bytes; 0 what is not known. Asking takes no memory.
struct MemoryFacts {
  std::uint64_t total = 0, available = 0;  // of the machine's memory
  std::uint64_t swap = 0, freeSwap = 0;    // of the disk's share
  std::uint64_t space = 0, usedSpace = 0;  // of addresses
};
MemoryFacts memoryFacts();

}  // namespace host::platform

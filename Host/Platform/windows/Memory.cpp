#include "Platform/Memory.h"

#include <algorithm>

#include "Platform/windows/Windows.h"

namespace host::platform {

// Large pages need a privilege that users do not have.
void preferHugePages(void*, std::size_t) {}

MemoryFacts memoryFacts() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof(status);
  if (::GlobalMemoryStatusEx(&status) == 0) return {};
  const auto beyond = [](std::uint64_t all, std::uint64_t part) { return all - std::min(all, part); };
  return {status.ullTotalPhys,
          status.ullAvailPhys,
          beyond(status.ullTotalPageFile, status.ullTotalPhys),
          beyond(status.ullAvailPageFile, status.ullAvailPhys),
          status.ullTotalVirtual,
          beyond(status.ullTotalVirtual, status.ullAvailVirtual)};
}

}  // namespace host::platform

#include "Platform/Memory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace host::platform {

namespace {

/// A small file of the kernel's, without allocating: the failure report reads it when memory is out.
class KernelFile {
 public:
  explicit KernelFile(const char* name) {
    const int file = open(name, O_RDONLY | O_CLOEXEC);
    if (file < 0) return;
    while (size_ < bytes_.size()) {
      const ssize_t count = read(file, bytes_.data() + size_, bytes_.size() - size_);
      if (count <= 0) break;
      size_ += static_cast<std::size_t>(count);
    }
    close(file);
  }
  /// The number behind "Name:" of lines as "MemTotal:  16384 kB", in bytes; 0 when there is none.
  std::uint64_t bytesOf(std::string_view name) const {
    const std::string_view all(bytes_.data(), size_);
    for (std::size_t at = 0; at < all.size(); at = std::min(all.find('\n', at), all.size() - 1) + 1) {
      std::string_view line = all.substr(at);
      if (!line.starts_with(name)) continue;
      line.remove_prefix(name.size());
      line.remove_prefix(std::min(line.find_first_not_of(": \t"), line.size()));
      std::uint64_t kilobytes = 0;
      std::from_chars(line.data(), line.data() + line.size(), kilobytes);
      return kilobytes * 1024;
    }
    return 0;
  }

 private:
  std::array<char, 8192> bytes_;
  std::size_t size_ = 0;
};

/// Where nothing limits it, as much as programs of this machine can address.
std::uint64_t addressSpace() {
  constexpr std::uint64_t kAddressable = std::uint64_t{1} << 47;
  rlimit limit{};
  if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return kAddressable;
  return std::min<std::uint64_t>(limit.rlim_cur, kAddressable);
}

}  // namespace

void preferHugePages(void* begin, std::size_t bytes) { ::madvise(begin, bytes, MADV_HUGEPAGE); }

MemoryFacts memoryFacts() {
  MemoryFacts facts;
  {
    const KernelFile memory("/proc/meminfo");
    facts.total = memory.bytesOf("MemTotal");
    facts.available = memory.bytesOf("MemAvailable");
    facts.swap = memory.bytesOf("SwapTotal");
    facts.freeSwap = memory.bytesOf("SwapFree");
  }
  struct sysinfo info {};
  if (facts.total == 0 && ::sysinfo(&info) == 0) {
    facts.total = std::uint64_t{info.totalram} * info.mem_unit;
    facts.available = std::uint64_t{info.freeram} * info.mem_unit;
    facts.swap = std::uint64_t{info.totalswap} * info.mem_unit;
    facts.freeSwap = std::uint64_t{info.freeswap} * info.mem_unit;
  }
  facts.space = addressSpace();
  facts.usedSpace = KernelFile("/proc/self/status").bytesOf("VmSize");
  return facts;
}

}  // namespace host::platform

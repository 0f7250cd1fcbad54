#include "Faults/Allocations.h"

#include <execinfo.h>
#include <link.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string_view>

namespace {

struct Range {
  std::uintptr_t begin = 0, end = 0;
  bool has(const void* address) const {
    const auto at = reinterpret_cast<std::uintptr_t>(address);
    return at >= begin && at < end;
  }
};

Range plugIn, host, program, runtime;
tests::faults::Whose counted = tests::faults::Whose::PlugIn;
int wanted = 0;  // 0: nothing fails
int seen = 0;
bool lasts = false;
bool isLooking = false;

/// Where the first loaded file with this in its name lies; the program's name is empty.
Range rangeOf(std::string_view part) {
  struct Search {
    std::string_view part;
    Range found;
  } search{part, {}};
  dl_iterate_phdr(
      [](dl_phdr_info* info, std::size_t, void* data) {
        auto& asked = *static_cast<Search*>(data);
        const std::string_view name = info->dlpi_name;
        if (asked.part.empty() ? !name.empty() : name.find(asked.part) == std::string_view::npos) return 0;
        for (int i = 0; i < info->dlpi_phnum; ++i) {
          if (info->dlpi_phdr[i].p_type != PT_LOAD) continue;
          const std::uintptr_t begin = info->dlpi_addr + info->dlpi_phdr[i].p_vaddr;
          if (asked.found.begin == 0) asked.found.begin = begin;
          asked.found.end = begin + info->dlpi_phdr[i].p_memsz;
        }
        return 1;
      },
      &search);
  return search.found;
}

/// Whether the plug-in asks, be it through the standard library's compiled code.
bool plugInAsks(const void* caller) {
  if (plugIn.has(caller)) return true;
  if (!runtime.has(caller)) return false;
  std::array<void*, 16> frames{};
  isLooking = true;
  const int count = backtrace(frames.data(), static_cast<int>(frames.size()));
  isLooking = false;
  bool isInRuntime = false;
  for (int i = 0; i < count; ++i) {
    void* const frame = frames[static_cast<std::size_t>(i)];
    if (runtime.has(frame)) {
      isInRuntime = true;
    } else if (isInRuntime) {
      return plugIn.has(frame);
    }
  }
  return false;
}

bool mustFail(const void* caller) {
  if (wanted == 0 || isLooking) return false;
  const bool counts = counted == tests::faults::Whose::PlugIn
                          ? plugInAsks(caller)
                          : host.has(caller) || plugIn.has(caller) || program.has(caller) || runtime.has(caller);
  if (!counts) return false;
  ++seen;
  return lasts ? seen >= wanted : seen == wanted;
}

void* allocated(std::size_t size, const void* caller) {
  return mustFail(caller) ? nullptr : std::malloc(size != 0 ? size : 1);
}

void* allocated(std::size_t size, std::align_val_t alignment, const void* caller) {
  const auto step = static_cast<std::size_t>(alignment);
  return mustFail(caller) ? nullptr : std::aligned_alloc(step, (size + step - 1) / step * step);
}

void* orThrow(void* memory) {
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

namespace tests::faults {

void failAllocation(int n, Lasting lasting, Whose whose) {
  std::array<void*, 2> frames{};
  backtrace(frames.data(), 2);  // loads what it needs
  plugIn = rangeOf("tolmex.arx");
  host = rangeOf("libtolmexhost");
  program = rangeOf({});
  runtime = rangeOf("libstdc++");
  counted = whose;
  seen = 0;
  lasts = lasting == Lasting::AllFromThere;
  wanted = n;
}

int off() {
  wanted = 0;
  return seen;
}

int forEachAllocation(Lasting lasting, Whose whose, const std::function<void()>& prepare,
                      const std::function<void()>& work, const std::function<void(int n)>& look) {
  int failures = 0;
  for (int n = 1;; n = following(n)) {
    prepare();
    failAllocation(n, lasting, whose);
    work();
    if (off() < n) return failures;
    ++failures;
    look(n);
  }
}

}  // namespace tests::faults

// ---- what the whole process calls -----------------------------------------------------------------------------------

void* operator new(std::size_t size) { return orThrow(allocated(size, __builtin_return_address(0))); }
void* operator new[](std::size_t size) { return orThrow(allocated(size, __builtin_return_address(0))); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocated(size, __builtin_return_address(0));
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocated(size, __builtin_return_address(0));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return orThrow(allocated(size, alignment, __builtin_return_address(0)));
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return allocated(size, alignment, __builtin_return_address(0));
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept { std::free(memory); }

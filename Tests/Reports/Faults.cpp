#include "Reports/Faults.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <link.h>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <string_view>

#include "acutads.h"

namespace {

struct Range {
  std::uintptr_t begin = 0, end = 0;
  bool has(const void* address) const {
    const auto at = reinterpret_cast<std::uintptr_t>(address);
    return at >= begin && at < end;
  }
};

Range module, runtime;
int wanted = 0;  // 0: nothing fails
int seen = 0;
bool lasts = false;
bool isLooking = false;

Range rangeOf(std::string_view fileEnd) {
  struct Search {
    std::string_view fileEnd;
    Range found;
  } search{fileEnd, {}};
  dl_iterate_phdr(
      [](dl_phdr_info* info, std::size_t, void* data) {
        auto& asked = *static_cast<Search*>(data);
        if (std::string_view(info->dlpi_name).find(asked.fileEnd) == std::string_view::npos) return 0;
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

/// Whether the module asks, be it through the standard library's compiled code.
bool moduleAsks(const void* caller) {
  if (module.has(caller)) return true;
  if (!runtime.has(caller)) return false;
  void* frames[16];
  isLooking = true;
  const int count = backtrace(frames, 16);
  isLooking = false;
  bool isInRuntime = false;
  for (int i = 0; i < count; ++i) {
    if (runtime.has(frames[i])) {
      isInRuntime = true;
    } else if (isInRuntime) {
      return module.has(frames[i]);
    }
  }
  return false;
}

bool mustFail(const void* caller) {
  if (wanted == 0 || isLooking || !moduleAsks(caller)) return false;
  ++seen;
  return lasts ? seen >= wanted : seen == wanted;
}

void* allocated(std::size_t size, const void* caller) {
  return mustFail(caller) ? nullptr : std::malloc(size != 0 ? size : 1);
}

}  // namespace

namespace tests::faults {

void failAllocation(const char* moduleFile, int n, Lasting lasting) {
  void* frames[2];
  backtrace(frames, 2);  // loads what it needs
  module = rangeOf(moduleFile);
  runtime = rangeOf("libstdc++");
  seen = 0;
  wanted = n;
  lasts = lasting == Lasting::AllFromThere;
}

int off() {
  wanted = 0;
  return seen;
}

std::function<int(const std::wstring&, const std::wstring&, UINT)> messageBox;
bool newRbFails = false;

}  // namespace tests::faults

// ---- what the whole process calls -----------------------------------------------------------------------------------

void* operator new(std::size_t size) {
  if (void* const memory = allocated(size, __builtin_return_address(0))) return memory;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
  if (void* const memory = allocated(size, __builtin_return_address(0))) return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocated(size, __builtin_return_address(0));
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocated(size, __builtin_return_address(0));
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

int MessageBoxW(HWND parent, LPCWSTR text, LPCWSTR caption, UINT type) {
  if (tests::faults::messageBox) return tests::faults::messageBox(text, caption, type);
  static const auto real =
      reinterpret_cast<decltype(&MessageBoxW)>(dlsym(RTLD_NEXT, "_Z11MessageBoxWP10HostWindowPKwS2_j"));
  return real(parent, text, caption, type);
}

resbuf* acutNewRb(int type) {
  if (tests::faults::newRbFails) return nullptr;
  static const auto real = reinterpret_cast<decltype(&acutNewRb)>(dlsym(RTLD_NEXT, "_Z9acutNewRbi"));
  return real(type);
}

#include "Editor/Session/MemoryReserve.h"

#include <atomic>
#include <new>

namespace host::editor {
namespace {

std::atomic<void*> setAside = nullptr;

[[noreturn]] void giveUp() {
  ::operator delete(setAside.exchange(nullptr));
  throw std::bad_alloc();
}

}  // namespace

MemoryReserve::MemoryReserve() {
  refill();
  std::set_new_handler(&giveUp);
}

MemoryReserve::~MemoryReserve() {
  std::set_new_handler(nullptr);
  ::operator delete(setAside.exchange(nullptr));
}

void MemoryReserve::refill() noexcept {
  if (setAside == nullptr) setAside = ::operator new(kBytes, std::nothrow);
}

}  // namespace host::editor

#include "Database/Memory.h"

#include <bit>
#include <cstdint>
#include <cstring>

#include "Platform/Memory.h"

namespace host::database {

namespace {

constexpr std::size_t kLargestSlab = std::size_t{1} << 21;  // a huge page

}  // namespace

MemorySource::~MemorySource() {
  for (const Slab& slab : slabs_) ::operator delete(slab.begin, slab.alignment);
}

void* MemorySource::do_allocate(std::size_t bytes, std::size_t alignment) {
  const auto gap = [&] { return (alignment - reinterpret_cast<std::uintptr_t>(next_) % alignment) % alignment; };
  if (left_ < bytes || left_ - bytes < gap()) {
    makeRoom(slabs_);
    // A slab is aligned to its size, so that blocks of powers of two fill it.
    const std::size_t least = std::bit_ceil(std::max(bytes, alignment));
    std::size_t size = std::max({least, kPoolBlockBytes, std::min(slabBytes_ * 2, kLargestSlab)});
    void* slab = ::operator new (size, std::align_val_t{size}, std::nothrow);
    if (slab == nullptr) {
      size = least;  // near the end of memory there may be no large piece left
      slab = ::operator new (size, std::align_val_t{size});
    }
    slabs_.push_back({static_cast<char*>(slab), std::align_val_t{size}});
    next_ = static_cast<char*>(slab);
    left_ = slabBytes_ = size;
    if (size == kLargestSlab) platform::preferHugePages(next_, size);
  }
  const std::size_t skipped = gap();
  char* const begin = next_ + skipped;
  next_ = begin + bytes;
  left_ -= skipped + bytes;
  return begin;
}

void Arena::refill(std::size_t bytes) {
  if (chunkBytes_ == 0 && bytes <= kArenaBlockBytes) {
    next_ = static_cast<char*>(source_.allocate(kArenaBlockBytes, kArenaBlockBytes));
    left_ = kArenaBlockBytes;
    return;
  }
  const std::size_t size = std::max(chunkBytes_, bytes);
  chunks_.push_back(std::make_unique_for_overwrite<char[]>(size));  // aligned for anything
  next_ = chunks_.back().get();
  left_ = size;
}

void* Arena::allocate(std::size_t bytes, std::size_t alignment) {
  const auto gap = [&] { return (alignment - reinterpret_cast<std::uintptr_t>(next_) % alignment) % alignment; };
  if (gap() + bytes > left_) refill(bytes);
  const std::size_t skipped = gap();
  char* const begin = next_ + skipped;
  next_ = begin + bytes;
  left_ -= skipped + bytes;
  used_ += bytes;
  return begin;
}

std::string_view Arena::keep(std::string_view bytes) {
  if (bytes.empty()) return {};
  char* const begin = static_cast<char*>(allocate(bytes.size(), 1));
  std::memcpy(begin, bytes.data(), bytes.size());
  return {begin, bytes.size()};
}

}  // namespace host::database

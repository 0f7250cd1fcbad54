#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#ifdef __linux__
#include <sys/mman.h>
#endif

#include "Database/Parts.h"

namespace host::database {

namespace {

constexpr std::size_t kPointerBytes = sizeof(void*);        // of the drawing's address, at the head of every block
constexpr std::size_t kLargestSlab = std::size_t{1} << 21;  // a huge page

}  // namespace

MemorySource::~MemorySource() {
  for (char* const slab : slabs_) std::free(slab);
}

char* MemorySource::block(std::size_t bytes) {
  if (left_ < bytes) {
    slabBytes_ = std::max(bytes, std::min(slabBytes_ * 2, kLargestSlab));
    next_ = static_cast<char*>(std::aligned_alloc(slabBytes_, slabBytes_));
    if (next_ == nullptr) throw std::bad_alloc();
    left_ = slabBytes_;
    slabs_.push_back(next_);
#ifdef __linux__
    if (slabBytes_ == kLargestSlab) ::madvise(next_, slabBytes_, MADV_HUGEPAGE);
#endif
  }
  char* const begin = next_;
  next_ += bytes;
  left_ -= bytes;
  return begin;
}

Slot* SlotPool::make() {
  const std::size_t index = count_ % kSlotsPerBlock;
  if (index == 0) {
    char* const block = source_.block(kBlockBytes);
    std::memcpy(block, &database_, kPointerBytes);
    blocks_.push_back(block);
  }
  ++count_;
  return new (firstSlot(blocks_.back()) + index) Slot;
}

DrawingDatabase& SlotPool::databaseOf(const Slot* slot) {
  const auto address = reinterpret_cast<std::uintptr_t>(slot) & ~(std::uintptr_t{kBlockBytes} - 1);
  DrawingDatabase* database = nullptr;
  std::memcpy(&database, reinterpret_cast<const void*>(address), kPointerBytes);
  return *database;
}

void Arena::refill(std::size_t bytes) {
  if (chunkBytes_ == 0 && bytes <= kArenaBlockBytes) {
    next_ = source_.block(kArenaBlockBytes);
    left_ = kArenaBlockBytes;
    return;
  }
  left_ = std::max(chunkBytes_, bytes);
  chunks_.push_back(std::make_unique_for_overwrite<char[]>(left_));  // aligned for anything
  next_ = chunks_.back().get();
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

DrawingDatabase& Slot::database() const { return SlotPool::databaseOf(this); }

TagCursor Slot::tags() const {
  if (live != nullptr && (flags & (kNew | kChanged)) != 0) return live->record.tags();
  return TagCursor(fileBytes());
}

}  // namespace host::database

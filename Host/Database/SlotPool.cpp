#include <algorithm>
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
  for (const Slab& slab : slabs_) ::operator delete (slab.begin, std::align_val_t{slab.bytes});
}

char* MemorySource::block(std::size_t bytes) {
  if (left_ < bytes) {
    database::makeRoom(slabs_);
    std::size_t size = std::max(bytes, std::min(slabBytes_ * 2, kLargestSlab));
    void* slab = ::operator new (size, std::align_val_t{size}, std::nothrow);
    if (slab == nullptr) {
      size = bytes;  // near the end of memory there may be no large piece left
      slab = ::operator new (size, std::align_val_t{size});
    }
    slabs_.push_back({static_cast<char*>(slab), size});
    next_ = static_cast<char*>(slab);
    left_ = slabBytes_ = size;
#ifdef __linux__
    if (size == kLargestSlab) ::madvise(next_, size, MADV_HUGEPAGE);
#endif
  }
  char* const begin = next_;
  next_ += bytes;
  left_ -= bytes;
  return begin;
}

void SlotPool::makeRoom() {
  if (count_ < blocks_.size() * kSlotsPerBlock) return;
  database::makeRoom(blocks_);
  char* const block = source_.block(kBlockBytes);
  std::memcpy(block, &database_, kPointerBytes);
  blocks_.push_back(block);
}

Slot* SlotPool::make() {
  makeRoom();
  Slot* const slot = firstSlot(blocks_.back()) + count_ % kSlotsPerBlock;
  ++count_;
  return new (slot) Slot;
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

DrawingDatabase& Slot::database() const { return SlotPool::databaseOf(this); }

TagCursor Slot::tags() const {
  if (live != nullptr && (flags & (kNew | kChanged)) != 0) return live->record.tags();
  return TagCursor(fileBytes());
}

}  // namespace host::database

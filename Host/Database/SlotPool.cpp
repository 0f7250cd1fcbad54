#include <cstdlib>
#include <cstring>
#include <new>

#include "Database/Parts.h"

namespace host::database {

namespace {

constexpr std::size_t kPointerBytes = sizeof(void*);  // of the drawing's address, at the head of every block

}  // namespace

SlotPool::~SlotPool() {
  for (char* const block : blocks_) std::free(block);
}

Slot* SlotPool::make() {
  const std::size_t index = count_ % kSlotsPerBlock;
  if (index == 0) {
    char* const block = static_cast<char*>(std::aligned_alloc(kBlockBytes, kBlockBytes));
    if (block == nullptr) throw std::bad_alloc();
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

std::string_view Arena::keep(std::string_view bytes) {
  if (bytes.empty()) return {};
  if (bytes.size() > left_) {
    const std::size_t size = std::max(chunkBytes_, bytes.size());
    auto chunk = std::make_unique_for_overwrite<char[]>(size);
    char* const begin = chunk.get();
    chunks_.push_back(std::move(chunk));
    if (size > bytes.size() || left_ == 0) {
      next_ = begin;
      left_ = size;
    } else {  // a piece of its own; the chunk in use stays
      std::memcpy(begin, bytes.data(), bytes.size());
      used_ += bytes.size();
      return {begin, bytes.size()};
    }
  }
  std::memcpy(next_, bytes.data(), bytes.size());
  const std::string_view kept(next_, bytes.size());
  next_ += bytes.size();
  left_ -= bytes.size();
  used_ += bytes.size();
  return kept;
}

void* Arena::allocate(std::size_t bytes, std::size_t alignment) {
  const std::size_t gap = (alignment - reinterpret_cast<std::uintptr_t>(next_) % alignment) % alignment;
  if (gap + bytes > left_) {
    const std::size_t size = std::max(chunkBytes_, bytes);
    chunks_.push_back(std::make_unique_for_overwrite<char[]>(size));  // aligned for anything
    next_ = chunks_.back().get();
    left_ = size;
  } else {
    next_ += gap;
    left_ -= gap;
  }
  char* const begin = next_;
  next_ += bytes;
  left_ -= bytes;
  used_ += bytes;
  return begin;
}

DrawingDatabase& Slot::database() const { return SlotPool::databaseOf(this); }

TagCursor Slot::tags() const {
  if (live != nullptr && (flags & (kNew | kChanged)) != 0) return live->record.tags();
  return TagCursor(fileBytes());
}

}  // namespace host::database

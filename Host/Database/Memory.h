// The memory of a drawing: large pieces from the system, and the bytes that live as long as the drawing does.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <memory_resource>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace host::database {

/// Blocks of pools and arenas, in bytes. Where every block costs work for each of its bytes, as under a sanitizer,
/// small ones keep small drawings quick.
#ifdef TOLMEX_SMALL_LIMITS
inline constexpr std::size_t kPoolBlockBytes = std::size_t{1} << 13;
inline constexpr std::size_t kArenaBlockBytes = std::size_t{1} << 13;
#else
inline constexpr std::size_t kPoolBlockBytes = std::size_t{1} << 16;
inline constexpr std::size_t kArenaBlockBytes = std::size_t{1} << 18;
#endif

/// Makes sure that adding `more` elements cannot fail; the memory grows as adding makes it grow.
template <class Vector>
void makeRoom(Vector& vector, std::size_t more = 1) {
  if (vector.capacity() - vector.size() < more) vector.reserve(std::max(vector.size() + more, vector.size() * 2));
}

/// Cuts what pools ask for from slabs, ever larger ones up to 2 MB; all of it goes back at once. Big drawings spend
/// much of their time on the system's handing out of pages, so the slabs become huge pages. Near the end of memory the
/// slabs become small again. A failure changes nothing.
class MemorySource final : public std::pmr::memory_resource {
 public:
  MemorySource() = default;
  MemorySource(const MemorySource&) = delete;
  MemorySource& operator=(const MemorySource&) = delete;
  ~MemorySource() override;

 private:
  void* do_allocate(std::size_t bytes, std::size_t alignment) override;
  void do_deallocate(void* /*memory*/, std::size_t /*bytes*/, std::size_t /*alignment*/) override {}
  bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override { return this == &other; }

  struct Slab {
    char* begin;
    std::align_val_t alignment;
  };
  std::vector<Slab> slabs_;
  char* next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t slabBytes_ = 0;
};

/// Bytes that live as long as the drawing. Not a std::pmr::monotonic_buffer_resource: its pieces grow without limit,
/// and one of many megabytes cannot be had when memory ends, when a drawing is still to be undone and saved.
class Arena {
 public:
  Arena() = default;
  explicit Arena(std::size_t chunkBytes) : chunkBytes_(chunkBytes) {}
  /// Copies the bytes.
  std::string_view keep(std::string_view bytes);
  std::size_t used() const { return used_; }

  /// Memory for objects that are never destroyed.
  void* allocate(std::size_t bytes, std::size_t alignment);
  template <class T, class... Arguments>
  T* make(Arguments&&... arguments) {
    static_assert(std::is_trivially_destructible_v<T>);
    return new (allocate(sizeof(T), alignof(T))) T(std::forward<Arguments>(arguments)...);
  }
  template <class T>
  T* makeArray(std::size_t count) {
    static_assert(std::is_trivially_destructible_v<T>);
    return static_cast<T*>(allocate(sizeof(T) * count, alignof(T)));
  }

 private:
  /// Makes the memory in use one of at least so many bytes.
  void refill(std::size_t bytes);

  std::vector<std::unique_ptr<char[]>> chunks_;
  MemorySource source_;
  std::size_t chunkBytes_ = 0;  // 0: blocks of the source
  char* next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t used_ = 0;
};

}  // namespace host::database

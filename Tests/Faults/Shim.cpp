// Preloaded into the program: lets calls on files fail, and with TOLMEX_SHIM_MEMORY defined allocations too.
//
//   TOLMEX_SHIM=CALL:ERRNO:N        the N-th CALL, from 1, on a file that is written (not on standard output or error)
//   fails
//                                   so; CALL is open, write, short (a write that takes half), fsync, close, link or
//                                   rename
//   TOLMEX_SHIM=memory:COUNT:N      COUNT allocations from the N-th on fail, 0 for all of them; those are counted from
//   the
//                                   moment on when the file whose name ends in TOLMEX_SHIM_BEGIN is opened
//   TOLMEX_SHIM_TOLD=FILE           how many there were of what could fail is written there at the end
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

struct Wish {
  char call[16] = "";
  int what = 0;  // errno, or how many allocations
  long n = 0;
  const char* begin = nullptr;
  const char* told = nullptr;
};

Wish wish;
std::atomic<long> seen = 0;
std::atomic<bool> counts = true;

__attribute__((constructor)) void readWish() {
  if (const char* const text = std::getenv("TOLMEX_SHIM"))
    std::sscanf(text, "%15[^:]:%d:%ld", wish.call, &wish.what, &wish.n);
  wish.begin = std::getenv("TOLMEX_SHIM_BEGIN");
  wish.told = std::getenv("TOLMEX_SHIM_TOLD");
  counts = wish.begin == nullptr;
}

__attribute__((destructor)) void tell() {
  if (wish.told == nullptr) return;
  counts = false;
  if (FILE* const file = std::fopen(wish.told, "w")) {
    std::fprintf(file, "%ld\n", seen.load());
    std::fclose(file);
  }
}

template <class Function>
Function next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

#define REAL(name) static const auto real = next<decltype(&::name)>(#name)

bool isWritten(int file) {
  struct stat status {};
  const int flags = ::fcntl(file, F_GETFL);
  return file > STDERR_FILENO && flags >= 0 && (flags & O_ACCMODE) != O_RDONLY && ::fstat(file, &status) == 0 &&
         S_ISREG(status.st_mode);
}

/// Whether this call is the one; errno is set then.
bool mustFail(const char* call) {
  if (std::strcmp(call, wish.call) != 0 || !counts) return false;
  if (++seen != wish.n) return false;
  errno = wish.what;
  return true;
}

void notice(const char* path) {
  if (counts || wish.begin == nullptr || path == nullptr) return;
  const std::size_t length = std::strlen(path), end = std::strlen(wish.begin);
  if (length >= end && std::strcmp(path + length - end, wish.begin) == 0) counts = true;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  REAL(open);
  mode_t mode = 0;
  if ((flags & (O_CREAT | O_TMPFILE)) != 0) {
    va_list arguments;
    va_start(arguments, flags);
    mode = va_arg(arguments, mode_t);
    va_end(arguments);
  }
  notice(path);
  // A failing nameless file is made with a name instead, so both must fail: `mkostemp` is no call of its own here.
  if ((flags & O_ACCMODE) != O_RDONLY && mustFail("open")) return -1;
  return real(path, flags, mode);
}

int mkostemp(char* name, int flags) {
  REAL(mkostemp);
  if (std::strcmp(wish.call, "open") == 0 && wish.n > 0 && seen >= wish.n) {
    errno = wish.what;
    return -1;
  }
  return real(name, flags);
}

FILE* fopen(const char* path, const char* mode) {
  REAL(fopen);
  notice(path);
  return real(path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
  REAL(fopen64);
  notice(path);
  return real(path, mode);
}

ssize_t write(int file, const void* bytes, size_t size) {
  REAL(write);
  if (isWritten(file)) {
    if (mustFail("write")) return -1;
    if (mustFail("short")) return real(file, bytes, (size + 1) / 2);
  }
  return real(file, bytes, size);
}

int fsync(int file) {
  REAL(fsync);
  return isWritten(file) && mustFail("fsync") ? -1 : real(file);
}

int close(int file) {
  REAL(close);
  const bool fails = isWritten(file) && mustFail("close");
  const int closed = real(file);
  if (!fails) return closed;
  errno = wish.what;
  return -1;
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
  REAL(linkat);
  return mustFail("link") ? -1 : real(fromFolder, from, toFolder, to, flags);
}

int rename(const char* from, const char* to) {
  REAL(rename);
  return mustFail("rename") ? -1 : real(from, to);
}

#ifdef TOLMEX_SHIM_MEMORY

}  // extern "C"

namespace {

/// What asks for memory while the real functions are looked up.
char early[1 << 16];
std::atomic<std::size_t> earlyUsed = 0;
thread_local bool isLooking = false;

bool memoryEnds() {
  if (!counts || std::strcmp(wish.call, "memory") != 0) return false;
  const long number = ++seen;
  if (number < wish.n || wish.n == 0 || (wish.what > 0 && number >= wish.n + wish.what)) return false;
  errno = ENOMEM;
  return true;
}

void* earlyMemory(std::size_t size) {
  const std::size_t at = earlyUsed.fetch_add((size + 15) / 16 * 16);
  return at + size <= sizeof early ? early + at : nullptr;
}

bool isEarly(const void* memory) { return memory >= early && memory < early + sizeof early; }

template <class Function>
Function nextMemory(const char* name) {
  isLooking = true;
  const auto found = next<Function>(name);
  isLooking = false;
  return found;
}

#define REAL_MEMORY(name) static const auto real = nextMemory<decltype(&::name)>(#name)

}  // namespace

extern "C" {

void* malloc(size_t size) {
  if (isLooking) return earlyMemory(size);
  REAL_MEMORY(malloc);
  return memoryEnds() ? nullptr : real(size);
}

void* calloc(size_t count, size_t size) {
  if (isLooking) return earlyMemory(count * size);
  REAL_MEMORY(calloc);
  return memoryEnds() ? nullptr : real(count, size);
}

void* realloc(void* memory, size_t size) {
  REAL_MEMORY(realloc);
  return memoryEnds() ? nullptr : real(memory, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
  REAL_MEMORY(aligned_alloc);
  return memoryEnds() ? nullptr : real(alignment, size);
}

int posix_memalign(void** memory, size_t alignment, size_t size) {
  REAL_MEMORY(posix_memalign);
  return memoryEnds() ? ENOMEM : real(memory, alignment, size);
}

void free(void* memory) {
  if (isEarly(memory)) return;
  REAL_MEMORY(free);
  real(memory);
}

#endif

}  // extern "C"

#ifdef TOLMEX_SHIM_MEMORY

// The program's allocator has its own ones, which do not ask malloc.

namespace {

template <class Ask>
void* asked(const Ask& ask) {
  for (;;) {
    if (void* const memory = ask()) return memory;
    const std::new_handler handler = std::get_new_handler();
    if (handler == nullptr) throw std::bad_alloc();
    handler();
  }
}

template <class Ask>
void* orNull(const Ask& ask) noexcept {
  try {
    return asked(ask);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void* plain(std::size_t size) { return malloc(size != 0 ? size : 1); }
void* aligned(std::size_t size, std::align_val_t alignment) {
  const auto step = static_cast<std::size_t>(alignment);
  return aligned_alloc(step, (size + step - 1) / step * step);
}

}  // namespace

void* operator new(std::size_t size) {
  return asked([=] { return plain(size); });
}
void* operator new[](std::size_t size) {
  return asked([=] { return plain(size); });
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return orNull([=] { return plain(size); });
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return orNull([=] { return plain(size); });
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return asked([=] { return aligned(size, alignment); });
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return orNull([=] { return aligned(size, alignment); });
}
void operator delete(void* memory) noexcept { free(memory); }
void operator delete[](void* memory) noexcept { free(memory); }
void operator delete(void* memory, std::size_t) noexcept { free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { free(memory); }

#endif

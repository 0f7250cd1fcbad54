#include "Limits.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <cstring>
#include <stdexcept>
#include <string>

namespace benchmarks {

std::string readBytes(const std::filesystem::path& file) {
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) throw std::runtime_error(file.string() + ": cannot be opened");
  std::string bytes(std::filesystem::file_size(file), '\0');
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t got = ::read(descriptor, bytes.data() + done, bytes.size() - done);
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  ::close(descriptor);
  if (done < bytes.size()) throw std::runtime_error(file.string() + ": cannot be read");
  return bytes;
}

void scanFile(Clock& clock, const std::filesystem::path& file) {
  double sum = 0;
  std::size_t lines = 0;
  clock.time([&] {
    const std::string bytes = readBytes(file);
    const char* at = bytes.data();
    const char* const end = at + bytes.size();
    while (at < end) {
      const auto* newline = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
      const char* const lineEnd = newline == nullptr ? end : newline;
      while (at < lineEnd && *at == ' ') ++at;
      double value = 0;
      if (std::from_chars(at, lineEnd, value).ec == std::errc()) sum += value;
      ++lines;
      at = lineEnd + 1;
    }
  });
  // Looked at, so that the work is not left out.
  if (lines == 0 || sum != sum) throw std::runtime_error(file.string() + ": nothing was found in it");
}

void copyFile(Clock& clock, const std::filesystem::path& file, const std::filesystem::path& target) {
  const std::string bytes = readBytes(file);
  bool written = false;
  clock.time([&] {
    const int descriptor = ::open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (descriptor < 0) return;
    std::size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t put = ::write(descriptor, bytes.data() + done, bytes.size() - done);
      if (put <= 0) break;
      done += static_cast<std::size_t>(put);
    }
    written = done == bytes.size() && ::fsync(descriptor) == 0;
    written = ::close(descriptor) == 0 && written;
  });
  std::filesystem::remove(target);
  if (!written) throw std::runtime_error(target.string() + ": cannot be written");
}

}  // namespace benchmarks

#include "Platform/Files.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

namespace host::platform {

FileFacts factsOf(const std::filesystem::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return {};
  return {true, status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

// The directory iterators of libstdc++ 12 end the program when there is no memory for a name.
std::vector<std::filesystem::path> namesIn(const std::filesystem::path& folder, std::error_code& error) {
  std::vector<std::filesystem::path> names;
  error.clear();
  struct Closer {
    void operator()(DIR* open) const { ::closedir(open); }
  };
  const std::unique_ptr<DIR, Closer> open(::opendir(folder.c_str()));
  while (open != nullptr) {
    errno = 0;
    const dirent* const entry = ::readdir(open.get());  // NOLINT(concurrency-mt-unsafe): the stream is not shared
    if (entry == nullptr) break;
    const std::string_view name = static_cast<const char*>(entry->d_name);
    if (name != "." && name != "..") names.emplace_back(name);
  }
  if (errno != 0) error.assign(errno, std::generic_category());
  return names;
}

std::filesystem::path pathOfSystemText(const std::string& text) { return text; }

std::FILE* openShared(const std::filesystem::path& file, std::string mode) {
  mode += 'e';  // not for the programs that this one starts
  return std::fopen(file.c_str(), mode.c_str());
}

int access(const std::filesystem::path& file, int mode) {
  int wanted = F_OK;
  if ((mode & 2) != 0) wanted |= W_OK;
  if ((mode & 4) != 0) wanted |= R_OK;
  return ::access(file.c_str(), wanted);
}

std::string openingFault() { return std::strerror(errno); }

PrivateFiles::PrivateFiles() : former_(::umask(077)) {}
PrivateFiles::~PrivateFiles() { ::umask(former_); }

}  // namespace host::platform

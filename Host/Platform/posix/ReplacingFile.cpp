// Where the file system allows it the file has no name until it is complete, so that not even a killed program leaves
// anything behind.
#include "Platform/ReplacingFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace host::platform {

namespace {
int descriptorOf(std::intptr_t handle) { return static_cast<int>(handle); }

/// Names the nameless file, for the moment until it is renamed: a link cannot replace what is there.
bool giveName(std::intptr_t handle, const std::filesystem::path& folder, std::filesystem::path& given) {
  const std::string self = "/proc/self/fd/" + std::to_string(handle);
  for (unsigned attempt = 0; attempt < 100; ++attempt) {
    std::filesystem::path name = folder / (".tolmex-" + std::to_string(::getpid()) + "-" + std::to_string(attempt));
    if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
      given = std::move(name);
      return true;
    }
    if (errno != EEXIST) return false;
  }
  return false;
}

}  // namespace

std::string whyUnwritable(const std::filesystem::path& file) {
  if (::faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) == 0 || errno == ENOENT) return {};
  return std::strerror(errno);
}

ReplacingFile::ReplacingFile(const std::filesystem::path& target)
    : target_(target), folder_(target.has_parent_path() ? target.parent_path() : ".") {
  // Its later name is given through /proc, which some sandboxes lack.
  if (::access("/proc/self/fd", X_OK) == 0) {
    handle_ = ::open(folder_.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
  }
  if (handle_ < 0) {
    std::string name = (folder_ / ".tolmex-XXXXXX").string();
    handle_ = ::mkostemp(name.data(), O_CLOEXEC);
    if (handle_ >= 0) name_ = std::move(name);
  }
  if (handle_ < 0) failed();
}

ReplacingFile::~ReplacingFile() {
  close();
  if (!name_.empty()) ::unlink(name_.c_str());
}

std::string ReplacingFile::reason() const { return std::strerror(static_cast<int>(error_)); }

bool ReplacingFile::commit() {
  const int descriptor = descriptorOf(handle_);
  struct stat old {};
  const mode_t mask = ::umask(0);
  ::umask(mask);
  mode_t mode = 0666U & ~mask;
  if (::stat(target_.c_str(), &old) == 0) {
    mode = old.st_mode & 07777U;
    // Only a privileged user can give a file away; for others the new file is theirs, as with any editor.
    if (::fchown(descriptor, old.st_uid, old.st_gid) != 0) mode &= 0777U;
  }
  if (::fchmod(descriptor, mode) != 0 || ::fsync(descriptor) != 0) return failed();
  if (name_.empty() && !giveName(handle_, folder_, name_)) return failed();
  const int closed = ::close(descriptorOf(std::exchange(handle_, kNone)));
  if (closed != 0 || ::rename(name_.c_str(), target_.c_str()) != 0) return failed();
  name_.clear();
  // The new name lasts only when the folder has reached the disk; the file is whole either way.
  const int folder = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder >= 0) {
    ::fsync(folder);
    ::close(folder);
  }
  return true;
}

bool ReplacingFile::writeBytes(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptorOf(handle_), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written == 0) errno = EIO;
    if (written <= 0) return failed();
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool ReplacingFile::failed() {
  error_ = static_cast<unsigned long>(errno);
  return false;
}

void ReplacingFile::close() {
  if (handle_ != kNone) ::close(descriptorOf(std::exchange(handle_, kNone)));
}

}  // namespace host::platform

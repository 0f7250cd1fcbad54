// Files that appear whole or not at all.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

#include "Dxf/DxfFile.h"

namespace host::dxf {

namespace {

/// A temporary file beside its target; removed unless it took the target's place. Where the file system allows it has
/// no name until it is complete, so that not even a killed program leaves anything behind.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::filesystem::path& target)
      : target_(target), folder_(target.has_parent_path() ? target.parent_path() : ".") {
    // Its later name is given through /proc, which some sandboxes lack.
    if (::access("/proc/self/fd", X_OK) == 0) {
      descriptor_ = ::open(folder_.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    }
    if (descriptor_ < 0) {
      name_ = (folder_ / ".tolmex-XXXXXX").string();
      descriptor_ = ::mkostemp(name_.data(), O_CLOEXEC);
      if (descriptor_ < 0) name_.clear();
    }
    if (descriptor_ < 0) failed();
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
    if (!name_.empty()) ::unlink(name_.c_str());
  }

  bool isOpen() const { return descriptor_ >= 0; }
  /// Why the last call failed.
  const char* reason() const { return std::strerror(error_); }

  /// Small pieces are gathered, so that a file of many edits is not written by the line.
  bool write(std::string_view piece) {
    constexpr std::size_t kGather = std::size_t{1} << 18;
    if (gathered_.size() + piece.size() > kGather && !flush()) return false;
    if (piece.size() > kGather) return writeBytes(piece);
    gathered_ += piece;
    return true;
  }

  bool flush() {
    const bool ok = writeBytes(gathered_);
    gathered_.clear();
    return ok;
  }

  /// Flushes and takes the target's place, with the permissions and the owner the old file had. On failure the old file
  /// stands.
  bool commit() {
    struct stat old {};
    const mode_t mask = ::umask(0);
    ::umask(mask);
    mode_t mode = 0666U & ~mask;
    if (::stat(target_.c_str(), &old) == 0) {
      mode = old.st_mode & 07777U;
      // Only a privileged user can give a file away; for others the new file is theirs, as with any editor.
      if (::fchown(descriptor_, old.st_uid, old.st_gid) != 0) mode &= 0777U;
    }
    if (::fchmod(descriptor_, mode) != 0 || ::fsync(descriptor_) != 0) return failed();
    if (name_.empty() && !giveName()) return failed();
    const int closed = ::close(std::exchange(descriptor_, -1));
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

 private:
  bool writeBytes(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
      if (written < 0 && errno == EINTR) continue;
      if (written == 0) errno = EIO;
      if (written <= 0) return failed();
      bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
  }

  /// Remembers the reason before anything else can change it.
  bool failed() {
    error_ = errno;
    return false;
  }

  /// Names the nameless file, for the moment until it is renamed: a link cannot replace what is there.
  bool giveName() {
    const std::string self = "/proc/self/fd/" + std::to_string(descriptor_);
    for (unsigned attempt = 0; attempt < 100; ++attempt) {
      std::string name = (folder_ / (".tolmex-" + std::to_string(::getpid()) + "-" + std::to_string(attempt))).string();
      if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
        name_ = std::move(name);
        return true;
      }
      if (errno != EEXIST) return false;
    }
    return false;
  }

  std::filesystem::path target_, folder_;
  std::string name_;  // empty as long as the file has none
  int descriptor_ = -1;
  int error_ = 0;
  std::string gathered_;
};

}  // namespace

Result<> writeFileWhole(const std::filesystem::path& file, std::string_view bytes) {
  return writeFileWhole(file, [bytes](const GiveBytes& give) { return give(bytes); });
}

namespace {

Result<> writeWhole(const std::filesystem::path& file, const std::function<bool(const GiveBytes&)>& produce) {
  const auto refused = [&](const std::string& why) { return problemOf(Code::OutputFailed, file.string(), why); };
  const auto failed = [&](const char* reason) { return refused(std::string("cannot be written: ") + reason); };
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) return refused("this is a folder");
  // A device or a pipe must not be replaced.
  if (std::filesystem::exists(file, error) && !std::filesystem::is_regular_file(file, error))
    return refused("this is no ordinary file");
  // A link keeps pointing where it did: what it names is replaced.
  std::filesystem::path target = file;
  if (std::filesystem::is_symlink(file, error)) {
    target = std::filesystem::canonical(file, error);
    if (error) return refused("the link leads nowhere");
  }
  // A file that may not be written is not replaced either, though its folder would allow it.
  if (std::filesystem::exists(target, error) && ::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0)
    return failed(std::strerror(errno));
  TemporaryFile temporary(target);
  if (!temporary.isOpen()) return failed(temporary.reason());
  const auto write = [&temporary](std::string_view piece) { return temporary.write(piece); };
  if (!produce(write) || !temporary.flush() || !temporary.commit()) return failed(temporary.reason());
  return {};
}

}  // namespace

Result<> writeFileWhole(const std::filesystem::path& file, const std::function<bool(const GiveBytes&)>& produce) {
  try {
    return writeWhole(file, produce);
  } catch (const std::bad_alloc&) {
    return problemOf(Code::OutputFailed, file.string(), "cannot be written: there is not enough memory");
  }
}

}  // namespace host::dxf

// Files that appear whole or not at all.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "Dxf/DxfFile.h"

namespace host::dxf {

namespace {

/// A temporary file beside its target; removed unless it took the target's place.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::filesystem::path& target)
      : target_(target), path_((target.parent_path() / ("." + target.filename().string() + ".XXXXXX")).string()) {
    descriptor_ = ::mkstemp(path_.data());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (descriptor_ >= 0) {
      ::close(descriptor_);
      ::unlink(path_.c_str());
    }
  }

  bool isOpen() const { return descriptor_ >= 0; }

  /// Small pieces are gathered, so that a file of many edits is not written by the line.
  bool write(const std::vector<std::string_view>& pieces) {
    constexpr std::size_t kGather = std::size_t{1} << 18;
    std::string gathered;
    for (const std::string_view piece : pieces) {
      if (gathered.size() + piece.size() > kGather) {
        if (!writeBytes(gathered)) return false;
        gathered.clear();
      }
      if (piece.size() > kGather) {
        if (!writeBytes(piece)) return false;
      } else {
        gathered += piece;
      }
    }
    return writeBytes(gathered);
  }

  /// Flushes and takes the target's place, with the permissions the old file had.
  bool commit() {
    struct stat old {};
    const mode_t mask = ::umask(0);
    ::umask(mask);
    const mode_t mode = ::stat(target_.c_str(), &old) == 0 ? old.st_mode & 07777U : 0666U & ~mask;
    if (::fchmod(descriptor_, mode) != 0 || ::fsync(descriptor_) != 0) return false;
    const int closed = ::close(descriptor_);
    descriptor_ = -1;
    if (closed != 0 || ::rename(path_.c_str(), target_.c_str()) != 0) {
      const int error = errno;
      ::unlink(path_.c_str());
      errno = error;
      return false;
    }
    return true;
  }

 private:
  bool writeBytes(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
      if (written < 0 && errno == EINTR) continue;
      if (written <= 0) return false;
      bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
  }

  std::filesystem::path target_;
  std::string path_;
  int descriptor_ = -1;
};

}  // namespace

FileResult writeFileWhole(const std::filesystem::path& file, std::string_view bytes) {
  return writeFileWhole(file, std::vector<std::string_view>{bytes});
}

FileResult writeFileWhole(const std::filesystem::path& file, const std::vector<std::string_view>& pieces) {
  const auto failed = [&](const char* what) {
    return FileResult{false, file.string() + ": " + what + ": " + std::strerror(errno)};
  };
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) return {false, file.string() + ": this is a folder"};
  if (std::filesystem::exists(file, error) && !std::filesystem::is_regular_file(file, error)) {
    return {false, file.string() + ": this is no ordinary file"};  // a device or a pipe must not be replaced
  }
  // A link keeps pointing where it did: what it names is replaced.
  std::filesystem::path target = file;
  if (std::filesystem::is_symlink(file, error)) {
    target = std::filesystem::canonical(file, error);
    if (error) return {false, file.string() + ": the link leads nowhere"};
  }
  TemporaryFile temporary(target);
  if (!temporary.isOpen()) return failed("cannot be written");
  if (!temporary.write(pieces)) return failed("cannot be written");
  if (!temporary.commit()) return failed("cannot be written");
  return {};
}

}  // namespace host::dxf

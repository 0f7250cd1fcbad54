// What tells a file from the one that had its name before.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>

namespace host::editor {

/// Where a file lies, how long it is and when it was last changed. Links are seen through.
class FileStamp {
 public:
  FileStamp() = default;  // of no file
  explicit FileStamp(const std::filesystem::path& file);

  bool isThere() const { return isThere_; }
  /// One file, by whatever names.
  bool isSameFile(const FileStamp& other) const {
    return isThere_ && other.isThere_ && device_ == other.device_ && inode_ == other.inode_;
  }
  bool operator==(const FileStamp&) const = default;

 private:
  bool isThere_ = false;
  dev_t device_ = 0;
  ino_t inode_ = 0;
  off_t size_ = 0;
  std::int64_t seconds_ = 0, nanoseconds_ = 0;
};

/// Absolute and without "." and "..", unless links on the way give those another meaning.
std::filesystem::path fullPath(const std::filesystem::path& file);

}  // namespace host::editor

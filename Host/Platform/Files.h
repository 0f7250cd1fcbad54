// What the file systems of this system say and do beyond the standard library.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace host::platform {

/// Where a file lies, how long it is and when it was last changed. Links are seen through.
struct FileFacts {
  bool isThere = false;
  std::uint64_t device = 0, node = 0;  // together they name one file
  std::int64_t size = 0;
  std::int64_t seconds = 0, nanoseconds = 0;

  bool isSameFile(const FileFacts& other) const {
    return isThere && other.isThere && device == other.device && node == other.node;
  }
  bool operator==(const FileFacts&) const = default;
};
FileFacts factsOf(const std::filesystem::path& file);

/// What lies in the folder, names without the folder, in no order; what has been read before an error stays.
std::vector<std::filesystem::path> namesIn(const std::filesystem::path& folder, std::error_code& error);

/// The path that a library gives which knows narrow text only: on Windows in the code page of the process.
std::filesystem::path pathOfSystemText(const std::string& text);

/// Opens a file that others may open meanwhile and that started programs do not inherit. The mode is fopen's.
std::FILE* openShared(const std::filesystem::path& file, std::string mode);
/// 0 when the file is there and can be accessed: 2 written, 4 read, the sum both.
int access(const std::filesystem::path& file, int mode);

/// Why the standard library's last opening of a file failed, as the end of a sentence ("Permission denied").
std::string openingFault();

/// Files that this user makes from now on are for this user alone, for the lifetime.
class PrivateFiles {
 public:
  PrivateFiles();
  ~PrivateFiles();
  PrivateFiles(const PrivateFiles&) = delete;
  PrivateFiles& operator=(const PrivateFiles&) = delete;

 private:
  unsigned former_ = 0;
};

}  // namespace host::platform

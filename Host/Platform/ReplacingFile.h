// A file that takes another's place when it is complete.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace host::platform {

/// Why the file may not be written, though its folder may; empty when it may, or is not there.
std::string whyUnwritable(const std::filesystem::path& file);

/// A temporary file beside its target; removed unless it took the target's place.
class ReplacingFile {
 public:
  explicit ReplacingFile(const std::filesystem::path& target);
  ReplacingFile(const ReplacingFile&) = delete;
  ReplacingFile& operator=(const ReplacingFile&) = delete;
  ~ReplacingFile();

  bool isOpen() const { return handle_ != kNone; }
  /// Why the last call failed.
  std::string reason() const;

  /// Small pieces are gathered, so that a file of many edits is not written by the line.
  bool write(std::string_view piece);
  bool flush();
  /// Flushes and takes the target's place, with the permissions and the owner the old file had. On failure the old file
  /// stands.
  bool commit();

 private:
  static constexpr std::intptr_t kNone = -1;

  bool writeBytes(std::string_view bytes);
  /// Remembers the system's reason before anything else can change it.
  bool failed();
  void close();

  std::filesystem::path target_, folder_, name_;  // the name is empty as long as the file has none
  std::intptr_t handle_ = kNone;                  // as the system names open files
  unsigned long error_ = 0;
  std::string gathered_;
};

}  // namespace host::platform

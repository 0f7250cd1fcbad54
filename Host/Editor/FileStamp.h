// What tells a file from the one that had its name before.
#pragma once

#include <filesystem>

#include "Platform/Files.h"

namespace host::editor {

/// Where a file lies, how long it is and when it was last changed. Links are seen through.
class FileStamp {
 public:
  FileStamp() = default;  // of no file
  explicit FileStamp(const std::filesystem::path& file);

  bool isThere() const { return facts_.isThere; }
  /// One file, by whatever names.
  bool isSameFile(const FileStamp& other) const { return facts_.isSameFile(other.facts_); }
  bool operator==(const FileStamp&) const = default;

 private:
  platform::FileFacts facts_;
};

/// Absolute and without "." and "..", unless links on the way give those another meaning.
std::filesystem::path fullPath(const std::filesystem::path& file);

}  // namespace host::editor

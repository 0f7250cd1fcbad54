#include "Editor/FileStamp.h"

namespace host::editor {

FileStamp::FileStamp(const std::filesystem::path& file) : facts_(platform::factsOf(file)) {}

std::filesystem::path fullPath(const std::filesystem::path& file) {
  std::error_code error;
  std::filesystem::path absolute = std::filesystem::absolute(file, error);
  if (error) return file;
  std::filesystem::path normal = absolute.lexically_normal();
  const bool isSame = FileStamp(absolute.parent_path()).isSameFile(FileStamp(normal.parent_path()));
  return isSame ? normal : absolute;
}

}  // namespace host::editor

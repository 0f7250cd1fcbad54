#include "Editor/FileStamp.h"

#include <sys/stat.h>

namespace host::editor {

FileStamp::FileStamp(const std::filesystem::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return;
  isThere_ = true;
  device_ = status.st_dev;
  inode_ = status.st_ino;
  size_ = status.st_size;
  seconds_ = status.st_mtim.tv_sec;
  nanoseconds_ = status.st_mtim.tv_nsec;
}

std::filesystem::path fullPath(const std::filesystem::path& file) {
  std::error_code error;
  std::filesystem::path absolute = std::filesystem::absolute(file, error);
  if (error) return file;
  std::filesystem::path normal = absolute.lexically_normal();
  const bool isSame = FileStamp(absolute.parent_path()).isSameFile(FileStamp(normal.parent_path()));
  return isSame ? normal : absolute;
}

}  // namespace host::editor

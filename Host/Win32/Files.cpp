// Deleting and replacing files, with the names of Windows.
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "Dxf/DxfFile.h"
#include "Text/FilePath.h"
#include "fileapi.h"
#include "winbase.h"

namespace {

BOOL refused(DWORD error) {
  SetLastError(error);
  return FALSE;
}

}  // namespace

BOOL DeleteFileW(LPCWSTR file) {
  if (file == nullptr) return refused(ERROR_INVALID_PARAMETER);
  const std::filesystem::path path = host::text::toPath(file);
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) return refused(ERROR_ACCESS_DENIED);
  if (std::filesystem::remove(path, error)) return TRUE;
  return refused(error ? ERROR_ACCESS_DENIED : ERROR_FILE_NOT_FOUND);
}

BOOL ReplaceFileW(LPCWSTR replaced, LPCWSTR replacement, LPCWSTR backup, DWORD flags, LPVOID, LPVOID) {
  if (replaced == nullptr || replacement == nullptr || backup != nullptr || flags != 0)
    return refused(ERROR_INVALID_PARAMETER);
  const std::filesystem::path target = host::text::toPath(replaced);
  const std::filesystem::path source = host::text::toPath(replacement);
  std::error_code error;
  if (!std::filesystem::is_regular_file(target, error)) return refused(ERROR_FILE_NOT_FOUND);
  std::ifstream in(source, std::ios::binary);
  if (!in) return refused(ERROR_FILE_NOT_FOUND);
  const std::string bytes{std::istreambuf_iterator<char>(in), {}};
  if (in.bad() || !host::dxf::writeFileWhole(target, bytes).ok()) return refused(ERROR_ACCESS_DENIED);
  std::filesystem::remove(source, error);
  return TRUE;
}

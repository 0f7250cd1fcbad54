#include "OrvLib/DataStruct/TextFile.h"

#include <cstdio>
#include <memory>
#include <string>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/DataStruct/Text.h"

namespace OrvLib {
namespace {

constexpr std::size_t kLargestTextFile = std::size_t{16} * 1024 * 1024;

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

}  // namespace

std::optional<std::vector<std::wstring>> readLines(const std::wstring& path) {
  const File file(_wfsopen(path.c_str(), L"rb", _SH_DENYNO));
  if (!file) return std::nullopt;
  std::string bytes;
  char block[4096];
  while (const std::size_t count = std::fread(block, 1, sizeof block, file.get())) {
    bytes.append(block, count);
    if (bytes.size() > kLargestTextFile) return std::nullopt;
  }
  if (std::ferror(file.get()) != 0) return std::nullopt;
  return lines(decodeText(bytes));
}

namespace {

enum class Written { No, Partly, Whole };

Written writeBytes(const std::wstring& path, const std::string& bytes) {
  File file(_wfsopen(path.c_str(), L"w", _SH_DENYNO));
  if (!file) return Written::No;
  const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  return std::fclose(file.release()) == 0 && isWritten ? Written::Whole : Written::Partly;
}

}  // namespace

bool writeText(const std::wstring& path, const std::wstring& text) {
  const std::string bytes = encodeUtf8(text);
  const bool isNew = _waccess(path.c_str(), 0) != 0;
  const std::wstring first = isNew ? path : path + L"." + std::to_wstring(GetCurrentProcessId());
  const Written written = writeBytes(first, bytes);
  // Where nothing can be made beside the file, it is all there is to write to.
  if (written == Written::No) return !isNew && writeBytes(path, bytes) == Written::Whole;
  if (written == Written::Whole &&
      (isNew || ReplaceFileW(path.c_str(), first.c_str(), nullptr, 0, nullptr, nullptr) != FALSE))
    return true;
  DeleteFileW(first.c_str());
  return false;
}

}  // namespace OrvLib

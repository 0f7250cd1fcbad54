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

bool writeText(const std::wstring& path, const std::wstring& text) {
  File file(_wfsopen(path.c_str(), L"w", _SH_DENYNO));
  if (!file) return false;
  const std::string bytes = encodeUtf8(text);
  const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  return std::fclose(file.release()) == 0 && isWritten;
}

}  // namespace OrvLib

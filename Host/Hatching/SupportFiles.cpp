#include "Hatching/SupportFiles.h"

#include <array>
#include <fstream>
#include <iterator>

#include "Text/FilePath.h"
#include "dbapserv.h"

namespace host::hatching {

std::optional<std::filesystem::path> findSupportFile(const std::wstring& name, AcDbDatabase* db, bool isPatternFile) {
  AcDbHostApplicationServices* const services = acdbHostApplicationServices();
  if (services == nullptr) return std::nullopt;
  std::array<ACHAR, 4096> path{};
  const auto hint = isPatternFile ? AcDbHostApplicationServices::kPatternFile : AcDbHostApplicationServices::kDefault;
  if (services->findFile(path.data(), static_cast<int>(path.size()), name.c_str(), db, hint) != Acad::eOk) {
    return std::nullopt;
  }
  return text::toPath(path.data());
}

std::optional<std::string> readTextFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  return file.bad() ? std::nullopt : std::optional(std::move(bytes));
}

}  // namespace host::hatching

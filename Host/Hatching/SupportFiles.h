// Text files on the support path.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Problems/Problem.h"
#include "adesk.h"

class AcDbDatabase;

namespace host::hatching {

/// Full path of a file looked for in the current, the drawing's and the support folders; nothing when there is
/// none.
std::optional<std::filesystem::path> findSupportFile(const std::wstring& name, AcDbDatabase* db, bool isPatternFile);
/// Its bytes; nothing when it cannot be read.
std::optional<std::string> readTextFile(const std::filesystem::path& path);

/// Definitions of files by path, parsed once and again when a file has changed: commands ask for one after the other.
template <class Definition>
class DefinitionFiles {
 public:
  using Definitions = std::vector<Definition>;
  using Parse = Definitions (*)(std::string_view text, std::vector<Problem>& problems);
  explicit DefinitionFiles(Parse parse) : parse_(parse) {}

  /// Those of a file; null when it cannot be read. A damaged line costs its own definition only.
  std::shared_ptr<const Definitions> read(const std::filesystem::path& path) {
    std::error_code error;
    const auto changed = std::filesystem::last_write_time(path, error);
    if (error) return nullptr;
    const std::lock_guard lock(mutex_);
    File& file = files_[path];
    if (file.definitions == nullptr || file.changed != changed) {
      const std::optional<std::string> bytes = readTextFile(path);
      if (!bytes) return nullptr;
      std::vector<Problem> problems;
      file = {changed, std::make_shared<const Definitions>(parse_(*bytes, problems))};
    }
    return file.definitions;
  }

 private:
  struct File {
    std::filesystem::file_time_type changed;
    std::shared_ptr<const Definitions> definitions;
  };
  Parse parse_;
  std::mutex mutex_;
  std::map<std::filesystem::path, File> files_;
};

}  // namespace host::hatching

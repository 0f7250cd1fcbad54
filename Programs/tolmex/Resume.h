// What --resume knows of earlier calls: a file beside the outputs says of each how it was made.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "Commands.h"

namespace tolmex {

/// Made with the same options, script and support files, an output need not be made again as long as it is the file
/// that was made then and no older than its drawing. Outputs of which the file knows nothing are made anew.
class ResumeLog {
 public:
  static constexpr const char* kName = ".tolmex-resume.jsonl";

  /// `script` is all of its text.
  ResumeLog(const RunOptions& options, const std::string& script);

  bool isUpToDate(const std::filesystem::path& drawing, const std::vector<std::filesystem::path>& outputs);
  /// Remembers outputs that were just made.
  void add(const std::filesystem::path& drawing, const std::vector<std::filesystem::path>& outputs);

 private:
  struct Known {
    std::string made;  // how: a number of options, script and drawing's name
    std::uintmax_t size = 0;
    std::int64_t time = 0;
    bool operator==(const Known&) const = default;
  };
  using Folder = std::map<std::string, Known>;  // by the file's name

  std::string howMade(const std::filesystem::path& drawing) const;
  Folder& folderOf(const std::filesystem::path& output);

  std::string call_;  // all that is the same for every drawing
  std::map<std::filesystem::path, Folder> folders_;
};

}  // namespace tolmex

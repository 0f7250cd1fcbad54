// A folder that no other test, run or user has.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace tests {

/// A new folder in the temporary folder, removed with all it holds at the end of its life.
class OwnFolder {
 public:
  OwnFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "tolmex-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder can be made: " + name);
    path = name;
  }
  ~OwnFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  OwnFolder(const OwnFolder&) = delete;
  OwnFolder& operator=(const OwnFolder&) = delete;

  std::filesystem::path path;
};

}  // namespace tests

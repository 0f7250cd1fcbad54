// A folder that no other test, run or user has, and what files hold.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace tests {

inline std::string fileText(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

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

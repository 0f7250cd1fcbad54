// A folder that no other test, run or user has, and what files hold.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
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
    std::random_device random;
    do {
      path = std::filesystem::temp_directory_path() / ("tolmex-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path));
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

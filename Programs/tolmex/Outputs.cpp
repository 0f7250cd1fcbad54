#include "Outputs.h"

#include <algorithm>

namespace tolmex {

namespace fs = std::filesystem;

namespace {

fs::path trueName(const fs::path& file) {
  std::error_code error;
  const fs::path name = fs::weakly_canonical(fs::absolute(file, error), error);
  return error ? file : name;
}

bool isSame(const fs::path& a, const fs::path& b) {
  std::error_code error;
  return trueName(a) == trueName(b) || fs::equivalent(a, b, error);
}

}  // namespace

std::string refuseOutputs(const std::vector<fs::path>& inputs, const std::vector<fs::path>& outputs) {
  std::error_code error;
  for (auto output = outputs.begin(); output != outputs.end(); ++output) {
    const std::string name = output->string();
    if (fs::is_directory(*output, error)) return name + ": this output is a folder";
    // Outputs take the place of older files; a device or a pipe must not be replaced by a file.
    if (fs::exists(*output, error) && !fs::is_regular_file(*output, error)) {
      return name + ": this output is no ordinary file";
    }
    const fs::path folder = output->parent_path();
    if (!folder.empty() && !fs::is_directory(folder, error)) return name + ": there is no folder " + folder.string();
    for (const fs::path& input : inputs) {
      if (isSame(*output, input)) return name + ": this output is the input " + input.string();
    }
    for (auto other = outputs.begin(); other != output; ++other) {
      if (isSame(*output, *other)) return name + ": two outputs have this name";
    }
  }
  return {};
}

}  // namespace tolmex

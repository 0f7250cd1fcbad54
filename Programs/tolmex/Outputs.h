// Which files a call may write.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tolmex {

/// Empty, or one sentence: an output that names an input, two outputs of one name, an output that is a folder, a device
/// or a pipe, or lies in a folder that is not there. Links and "." are seen through.
std::string refuseOutputs(const std::vector<std::filesystem::path>& inputs,
                          const std::vector<std::filesystem::path>& outputs);

}  // namespace tolmex

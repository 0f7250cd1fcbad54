// Which files a call may write, and standard input and output in the place of files ("-").
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Problems/Problem.h"

namespace tolmex {

/// Refuses an output that names an input, two outputs of one name, an output that is a folder, a device or a pipe, or
/// lies in a folder that is not there. Links and "." are seen through; "-" is standard input or output. `folderToCome`
/// will be made before the outputs are.
host::Result<> checkOutputs(const std::vector<std::filesystem::path>& inputs,
                            const std::vector<std::filesystem::path>& outputs,
                            const std::filesystem::path& folderToCome = {});

/// The same before work begins: makes the folder of the outputs, and keeps standard output free of text when a file
/// goes there.
host::Result<> prepareOutputs(const std::vector<std::filesystem::path>& inputs,
                              const std::vector<std::filesystem::path>& outputs,
                              const std::optional<std::filesystem::path>& folder);

inline bool isStandardStream(const std::filesystem::path& name) { return name == "-"; }
/// What messages call a file of the command line.
std::string shownName(const std::filesystem::path& name);

/// Writes a file whole or not at all, or to standard output.
host::Result<> writeOutput(const std::filesystem::path& file, std::string_view bytes);

}  // namespace tolmex

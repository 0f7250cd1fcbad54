// What a call reads: files, pipes, standard input ("-").
#pragma once

#include <filesystem>
#include <string>

#include "Problems/Problem.h"

namespace tolmex {

/// A path that can be opened in the place of a drawing's, more than once: what standard input or a pipe holds is read
/// to its end into memory; problems call it by its name.
host::Result<std::filesystem::path> readableFile(const std::filesystem::path& name);

/// The text of a script in UTF-8; a remark on its encoding has been printed.
host::Result<std::string> readScript(const std::filesystem::path& name);

}  // namespace tolmex

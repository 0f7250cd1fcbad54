// What a call reads: files, pipes, standard input ("-").
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tolmex {

/// A path that can be opened in the place of a drawing's, more than once: what standard input or a pipe holds is read
/// to its end into memory; problems call it by its name. Empty when it cannot be read, which has been said.
std::filesystem::path readableFile(const std::filesystem::path& name);

/// The text of a script in UTF-8; a remark on its encoding has been printed. Nothing when it cannot be read, which has
/// been said.
std::optional<std::string> readScript(const std::filesystem::path& name);

}  // namespace tolmex

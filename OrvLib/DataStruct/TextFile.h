// Text files by their wide names.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace OrvLib {

/// The lines of a text file (see decodeText); nothing when it cannot be read or is larger than 16 MB.
std::optional<std::vector<std::wstring>> readLines(const std::wstring& path);

/// Replaces the file's content; letters outside ASCII are written as UTF-8. False when it cannot be written whole: the
/// old file stands then, but in a folder where no second file can be made.
bool writeText(const std::wstring& path, const std::wstring& text);

}  // namespace OrvLib

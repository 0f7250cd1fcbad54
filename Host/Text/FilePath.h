// File names as Windows programs write them.
#pragma once

#include <filesystem>
#include <string_view>

namespace host::text {

/// The file that a path with "/" or "\" between its folders names. A "\" that is part of a name on disk is found too.
std::filesystem::path toPath(std::wstring_view path);

/// Whether the path begins with the letter of a drive, "D:".
bool namesDrive(std::wstring_view path);

}  // namespace host::text

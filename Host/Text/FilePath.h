// File names as Windows programs write them.
#pragma once

#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

namespace host::text {

/// The file that a path with "/" or "\" between its folders names. A "\" that is part of a name on disk is found too.
std::filesystem::path toPath(std::wstring_view path);

/// What lies in the folder, names without the folder, in no order; what has been read before an error stays.
std::vector<std::filesystem::path> namesIn(const std::filesystem::path& folder, std::error_code& error);

/// Whether the path begins with the letter of a drive, "D:".
bool namesDrive(std::wstring_view path);

}  // namespace host::text

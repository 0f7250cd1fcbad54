// The system's own headers, and paths and reasons as its calls take and give them. Only this folder and the program's
// includes it: everything else uses the host interface's headers of the same names.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
// Behind it.
#include <shellapi.h>

#include <filesystem>
#include <string>

namespace host::platform {

/// The path as calls of the system take it: one that is too long for them in the form that has no limit.
std::wstring systemPath(const std::filesystem::path& path);

/// The system's text for an error, without line end and full stop; our own words for those that users meet.
std::string reasonOf(unsigned long error);

std::string toUtf8(std::wstring_view text);
std::wstring toWide(std::string_view text);

}  // namespace host::platform

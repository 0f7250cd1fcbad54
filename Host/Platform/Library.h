// Libraries that are loaded while the program runs, and where code lies.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace host::platform {

/// The file name of one of our own libraries: "libtolmexpicture.so" of "tolmexpicture".
std::string libraryName(std::string_view name);

/// Loads a library with its names kept to itself; null with the loader's sentence when it cannot be.
void* openLibrary(const std::filesystem::path& file, std::string& reason);
/// A name that the library exports; null when it has none.
void* symbolOf(void* library, const char* name);
void closeLibrary(void* library);
/// Whether the library of this file is in memory.
bool isLoaded(const std::filesystem::path& file);

/// The file of the library or program in which an address lies; empty for other addresses.
std::filesystem::path fileOf(const void* address);
/// Where that library begins in memory; null for other addresses.
const void* baseOf(const void* address);

/// A name that the module which begins there exports itself; null when it has none, or none begins there.
const void* symbolInModule(const void* base, const char* name);

/// One of our own libraries in the folder of the library that `beside` lies in; null with a reason.
void* openBeside(const void* beside, std::string_view name, std::filesystem::path& file, std::string& reason);

/// The program's own file; empty when the system does not tell.
std::filesystem::path programFile();

}  // namespace host::platform

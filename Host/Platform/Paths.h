// Paths of text.
#pragma once

#include <filesystem>
#include <string>

namespace host::platform {

/// The path of a text in UTF-8. The standard library of Windows would take narrow text for another encoding, though it
/// gives UTF-8 back.
inline std::filesystem::path pathOf(const std::string& utf8) {
#ifdef _WIN32
  return std::u8string(utf8.begin(), utf8.end());
#else
  return utf8;
#endif
}

}  // namespace host::platform

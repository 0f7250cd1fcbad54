// The system around the process.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::platform {

/// A variable of the environment in UTF-8; nothing when it is not set.
std::optional<std::string> environment(const std::string& name);

std::uint32_t processId();
/// What tells a running process from an earlier one of the same number; empty when none runs under it.
std::string processStart(std::int64_t process);

/// The time here and now.
struct LocalTime {
  int year, month, weekday, day, hour, minute, second, millisecond;  // months from 1, days of the week from Sunday, 0
};
LocalTime localTime();

struct SystemVersion {
  bool isWindows = false;
  std::array<std::uint32_t, 3> numbers{};
  std::string name;  // "Linux"
};
std::optional<SystemVersion> systemVersion();

/// Whether windows can be shown.
bool hasDisplay();

/// The folders where this system and this user keep fonts, the user's first.
std::vector<std::filesystem::path> fontFolders();
/// Fontconfig's configuration where the system has none: it names the folders of the system, of the user and beside the
/// program. Empty where there is one, or the environment names one.
std::string fontConfiguration();
/// Where fonts of strokes may be.
std::vector<std::filesystem::path> strokeFontFolders();

/// The folder of this user for what programs remember; empty without one.
std::filesystem::path stateFolder();

/// The console of the process as debug logs use it: the terminal or the console window.
class Console {
 public:
  /// False when there is none to be had.
  bool open();
  void close();
  bool isOpen() const { return handle_ != -1; }
  void setTitle(std::wstring_view title) const;
  /// A terminal that takes nothing for a second is given up.
  bool write(std::string_view utf8) const;

 private:
  std::intptr_t handle_ = -1;
};

}  // namespace host::platform

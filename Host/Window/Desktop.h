// The window: what `tolmex desktop` loads and runs.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "Editor/Application.h"

namespace host::window {

/// What the program knows of an entity beyond what drawings say of it, in the languages of the window.
struct OwnFact {
  std::string nameFi, nameEn;
  std::string value;     // as it is shown, with its unit
  double timesArea = 0;  // above 0: shown is the entity's area, so many times
};

struct DesktopOptions {
  std::vector<std::filesystem::path> drawings;
  std::vector<std::filesystem::path> supportFolders;
  std::vector<std::string> variables;           // NAME=VALUE, of every drawing that is given
  std::filesystem::path script;                 // runs in the window's sight at the start; empty: none
  std::string geometry;                         // "1366x768": size of the window; empty: as it was left
  std::string language;                         // "fi", "en"; empty: by the locale
  std::vector<std::filesystem::path> modules;   // loaded at the start
  std::vector<std::wstring> failureCaptions;    // as of ApplicationOptions
  std::vector<std::filesystem::path> examples;  // drawings that the start page offers as copies
  std::filesystem::path guide;                  // the user guide
  std::string version;                          // "1.0"
  std::function<std::vector<OwnFact>(const database::Slot&)> ownFacts;
  std::function<void(editor::Application&)> extend;  // adds the program's own commands
};

/// Shows the window until the user leaves it; answers the exit status.
using RunDesktop = int (*)(const DesktopOptions& options);
/// The function that the window's library exports.
inline constexpr const char* kRunDesktop = "tolmexRunDesktop";

}  // namespace host::window

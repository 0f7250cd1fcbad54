// `tolmex desktop`: the window, in a library that only this call loads.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Commands.h"

namespace tolmex {

struct DesktopCallOptions : CommonOptions {
  std::filesystem::path script;
  std::string geometry;  // "1366x768"
  std::string language;  // "fi", "en"
};

int runDesktop(const DesktopCallOptions& options);

}  // namespace tolmex

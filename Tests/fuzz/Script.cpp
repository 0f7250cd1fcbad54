// Any bytes as a script on a small plan.
#include <algorithm>
#include <cctype>
#include <sstream>

#include "PluginHost.h"

namespace {

constexpr const char* kPlan =
    "PLINE\n0,0\n40,0\n40,30\n0,30\nC\nPLINE\n10,10\n20,10\n20,20\n10,20\nC\nLINE\n0,0\n9,9\n\nPLINE\n1,1\nA\n5,"
    "5\nL\n9,1\n\n";

/// Lines that would write files, run other files or wait are left out: what they do is not in question here.
std::string harmless(std::string_view script) {
  std::stringstream in{std::string(script)};
  std::string kept;
  for (std::string line; std::getline(in, line);) {
    std::string upper = line;
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
    bool isHarmless = line.find('/') == std::string::npos && line.find("..") == std::string::npos;
    for (const char* word : {"SAVE", "SCRIPT", "DELAY", "PICTURE", "OPEN", "ARX", "NEW", "INI"}) {
      isHarmless = isHarmless && upper.find(word) == std::string::npos;
    }
    if (isHarmless) kept += line + "\n";
  }
  return kept;
}

void runOnPlan(fuzz::PluginHost& host, std::string_view bytes) {
  while (host.application.drawing() != nullptr) host.application.closeDrawing();
  std::ignore = host.application.newDrawing();
  host::editor::ScriptInput plan(kPlan, "plan.scr");
  fuzz::require(static_cast<bool>(host.application.run(plan)), "the plan is drawn");
  host.run(harmless(bytes));
  host.reread();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::PluginHost host;
  runOnPlan(host, fuzz::textOf(data, size));
  return 0;
}

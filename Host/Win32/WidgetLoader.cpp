// Finds the widgets' library beside the host's own and starts it.
#include <cstdlib>
#include <filesystem>
#include <string>

#include "Editor/DialogInput.h"
#include "Platform/Library.h"
#include "Win32/WindowObject.h"

namespace host::win32 {
namespace {

WidgetSystem* load() {
  std::filesystem::path file;
  std::string reason;
  if (void* const library =
          platform::openBeside(reinterpret_cast<const void*>(&widgetSystem), "tolmexdialogs", file, reason)) {
    const auto make = reinterpret_cast<MakeWidgetSystem>(platform::symbolOf(library, kMakeWidgetSystem));
    if (make != nullptr) {
      // Windows of modules may be left when the process ends, and the toolkit's own globals go before the modules'.
      std::atexit(dropWidgets);
      return make(editor::dialogsAreWorkedByHand());
    }
    reason = "is no library of widgets";
  }
  editor::reportDialogProblem(problemOf(Code::DialogsMissing, file.string(), "dialogs cannot be shown: " + reason));
  return nullptr;
}

}  // namespace

// The library stays for good: taking a toolkit out of memory again is asking for trouble.
WidgetSystem* widgetSystem() {
  static WidgetSystem* const system = load();
  return system;
}

}  // namespace host::win32

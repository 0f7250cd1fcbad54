// Finds the widgets' library beside the host's own and starts it.
#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "Editor/DialogInput.h"
#include "Win32/WindowObject.h"

namespace host::win32 {
namespace {

constexpr const char* kLibrary = "libtolmexdialogs.so";

WidgetSystem* load() {
  Dl_info info{};
  const void* const here = reinterpret_cast<const void*>(&widgetSystem);
  std::filesystem::path file = kLibrary;
  if (dladdr(here, &info) != 0 && info.dli_fname != nullptr)
    file = std::filesystem::path(info.dli_fname).parent_path() / kLibrary;
  std::string reason;
  if (void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    const auto make = reinterpret_cast<MakeWidgetSystem>(dlsym(library, kMakeWidgetSystem));
    if (make != nullptr) {
      // Windows of modules may be left when the process ends, and the toolkit's own globals go before the modules'.
      std::atexit(dropWidgets);
      return make(editor::dialogsAreWorkedByHand());
    }
    reason = "is no library of widgets";
  } else if (const char* const error = dlerror()) {
    reason = error;
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

#include "Desktop.h"

#include "Console.h"
#include "Inputs.h"
#include "Outputs.h"
#include "OwnFacts.h"
#include "PictureCommand.h"
#include "PlanSession.h"
#include "Platform/Library.h"
#include "Platform/System.h"
#include "Window/Desktop.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::Result;
using host::RunStatus;

namespace {

/// Where documents and examples lie: beside the sources' build, or where the program is installed.
fs::path findShared(const fs::path& program, const fs::path& name) {
  std::error_code error;
  for (const char* const folder : {".", TOLMEX_DOCUMENTS, "../../share/doc/tolmex", "../../../share/doc/tolmex"}) {
    const fs::path place = fs::path(folder).is_absolute() ? fs::path(folder) : program / folder;
    if (fs::exists(place / name, error)) return fs::weakly_canonical(place / name, error);
  }
  return {};
}

}  // namespace

int runDesktop(const DesktopCallOptions& options) {
  if (const Result<> fit = checkVariables(options.variables); !fit) return complain(fit.problem());
  // The toolkit would end the process without a word of ours.
  if (!host::platform::hasDisplay())
    return complain(RunStatus::WrongUsage, "desktop: there is no display; run, shell and picture need none");
  const fs::path plugIn = plugInFile();
  const fs::path folder = plugIn.parent_path();
  std::string reason = "it is no window";
  void* const library = host::platform::openLibrary(folder / host::platform::libraryName("tolmexwindow"), reason);
  const auto run =
      library != nullptr
          ? reinterpret_cast<host::window::RunDesktop>(host::platform::symbolOf(library, host::window::kRunDesktop))
          : nullptr;
  if (run == nullptr) return complain(RunStatus::WrongUsage, "desktop: the window cannot be loaded: " + reason);
  host::window::DesktopOptions wanted;
  for (const fs::path& drawing : options.drawings) {
    if (isStandardStream(drawing))
      return complain(RunStatus::WrongUsage, "-: a window opens files; name the drawing's");
    wanted.drawings.push_back(drawing);
  }
  wanted.supportFolders = options.supportFolders;
  wanted.variables = options.variables;
  wanted.script = options.script;
  wanted.geometry = options.geometry;
  wanted.language = options.language;
  wanted.modules = {plugIn};
  wanted.failureCaptions = kFailureCaptions;
  wanted.version = TOLMEX_VERSION;
  for (const char* const example : {"docs/guide/tontti.dxf", "examples/kortteli.dxf"}) {
    if (fs::path file = findShared(folder, example); !file.empty()) wanted.examples.push_back(std::move(file));
  }
  wanted.guide = findShared(folder, "docs/kayttoohje.md");
  wanted.ownFacts = ownFacts;
  wanted.extend = addPictureCommand;
  return run(wanted);
}

}  // namespace tolmex

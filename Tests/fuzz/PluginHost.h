// An editor with the plug-in, for targets that run commands.
#pragma once

#include <filesystem>

#include "Database/DrawingDatabase.h"
#include "Dxf/DxfFile.h"
#include "Editor/Application.h"
#include "Editor/ScriptInput.h"
#include "Target.h"

namespace fuzz {

class PluginHost {
 public:
  PluginHost() {
    require(static_cast<bool>(application.newDrawing()), "a drawing can be made");
    // The module beside the target: fuzzing goes on in a copy of the folder while the next one is built.
    const auto folder = std::filesystem::canonical("/proc/self/exe").parent_path();
    const auto loaded = application.loadModule(folder / "tolmex.arx");
    require(static_cast<bool>(loaded), "the module can be loaded", loaded.message());
  }

  void run(std::string_view text) {
    host::editor::ScriptInput script(text, "fuzz.scr");
    std::ignore = application.run(script);  // scripts may fail
  }

  /// The drawing must be saved without a fault.
  void reread() {
    if (application.drawing() == nullptr) return;
    AcDbDatabase again(false);
    const auto reread = host::dxf::readDrawingText(host::database::databaseOf(&again),
                                                   host::dxf::drawingText(*application.drawing()), "again");
    require(reread.ok(), "what was saved can be read", reread.message());
    for (const auto& problem : host::database::databaseOf(&again).problems()) {
      require(false, "saved sound", problem.text);
    }
  }

  host::editor::Application application;
};

}  // namespace fuzz

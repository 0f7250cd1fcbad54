// Any bytes as a plan on which an element is drawn for everything there is.
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "Database/DrawingDatabase.h"
#include "Dxf/DxfFile.h"
#include "Editor/Application.h"
#include "Editor/ScriptInput.h"
#include "Target.h"

namespace {

class Host {
 public:
  Host() {
    application_.newDrawing();
    const auto loaded = application_.loadModule(std::filesystem::path(TOLMEX_BIN_DIR) / "tolmex.arx");
    fuzz::require(static_cast<bool>(loaded), "the module can be loaded", loaded.message);
    file_ = std::filesystem::temp_directory_path() / ("tolmex-fuzz-" + std::to_string(::getpid()) + ".dxf");
  }
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;
  ~Host() { std::filesystem::remove(file_); }

  void illustrate(std::string_view bytes) {
    if (host::dxf::isDwg(bytes)) return;
    std::ofstream(file_, std::ios::binary | std::ios::trunc)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    application_.closeDrawing();
    if (!application_.openDrawing(file_)) return;
    host::editor::ScriptInput script(
        "TLM_MUOK_ASFALTTI\nALL\n\nTLM_MUOK_PENSAS\nALL\n\nTLM_MUOK_RAKENNUS\nALL\n\nOK\nTLM_VARJO_PAIVITA\n",
        "fuzz.scr");
    application_.run(script);
    if (application_.drawing() == nullptr) return;
    AcDbDatabase again(false);
    const auto reread = host::dxf::readDrawingText(host::database::databaseOf(&again),
                                                   host::dxf::drawingText(*application_.drawing()), "again");
    fuzz::require(reread.ok, "what was saved can be read", reread.message);
    for (const auto& problem : host::database::databaseOf(&again).problems()) {
      fuzz::require(false, "saved sound", problem.text);
    }
  }

 private:
  host::editor::Application application_;
  std::filesystem::path file_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Host host;
  host.illustrate(fuzz::textOf(data, size));
  return 0;
}

// Any bytes as a plan on which areas, shrubs, buildings and their shadows are drawn for everything there is.
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "PluginHost.h"

namespace {

/// Each runs even when another stops: a drawing may hold nothing that it is for.
constexpr const char* kScripts[] = {"TLM_MUOK_ASFALTTI\nALL\n\n", "TLM_MUOK_PENSAS\nALL\n\n",
                                    "TLM_MUOK_RAKENNUS\nALL\n\n30211 2\n30206 3\n30207 0.5\n30208 0.4\nOK\n",
                                    "TLM_VARJO_PAIVITA\n"};

class Illustrator {
 public:
  Illustrator()
      : file_(std::filesystem::temp_directory_path() / ("tolmex-fuzz-" + std::to_string(::getpid()) + ".dxf")) {}
  Illustrator(const Illustrator&) = delete;
  Illustrator& operator=(const Illustrator&) = delete;
  ~Illustrator() { std::filesystem::remove(file_); }

  void illustrate(std::string_view bytes) {
    if (host::dxf::isDwg(bytes)) return;
    std::ofstream(file_, std::ios::binary | std::ios::trunc)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    host_.application.closeDrawing();
    if (!host_.application.openDrawing(file_)) return;
    for (const char* const script : kScripts) host_.run(script);
    host_.reread();
  }

 private:
  fuzz::PluginHost host_;
  std::filesystem::path file_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Illustrator illustrator;
  illustrator.illustrate(fuzz::textOf(data, size));
  return 0;
}

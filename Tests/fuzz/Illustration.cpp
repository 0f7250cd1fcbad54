// Any bytes as a plan on which an element is drawn for everything there is.
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "PluginHost.h"

namespace {

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
    host_.runAndReread(
        "TLM_MUOK_ASFALTTI\nALL\n\nTLM_MUOK_PENSAS\nALL\n\nTLM_MUOK_RAKENNUS\nALL\n\nOK\nTLM_VARJO_PAIVITA\n");
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

// Any bytes as the plug-in's file tolm.ini.
#include <sstream>
#include <vector>

#include "Target.h"
#include "Text/Text.h"
#include "Tolmex/Model/ColorScheme.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::wstringstream in(host::text::fromUtf8(fuzz::textOf(data, size)));
  std::vector<std::wstring> lines;
  for (std::wstring line; std::getline(in, line);) lines.push_back(line);
  OrvLib::ColorScheme scheme;
  OrvLib::readSchemeLines(lines, scheme);
  std::wstringstream written(OrvLib::schemeText(scheme));
  lines.clear();
  for (std::wstring line; std::getline(written, line);) lines.push_back(line);
  OrvLib::ColorScheme again = scheme;
  OrvLib::readSchemeLines(lines, again);
  fuzz::require(again == scheme, "the file that is written says what was read");
  return 0;
}

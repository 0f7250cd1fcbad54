// Which fonts stand in for those that drawings name.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host::picture {

/// What may be drawn in place of a font, best first.
struct StandIns {
  std::vector<std::string> families;        // of outline fonts; the first is the one named
  std::vector<std::string> strokes;         // files of stroke fonts, without ending
  bool isBold = false, isItalic = false;    // said by the name of the file
  double capitalHeight = 0;                 // of the em, in the font that is named; 0: not known
  std::string_view general = "sans-serif";  // the generic family of CSS
};

/// `name`: in small letters, UTF-8, as geometry::fontName gives it.
StandIns standInsFor(const std::string& name);

}  // namespace host::picture

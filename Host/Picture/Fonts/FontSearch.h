// The outline fonts of this machine. A build without fontconfig has a twin of the source that finds none.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace host::picture {

struct FontFile {
  std::filesystem::path path;
  int index = 0;       // of the face in its file
  std::string family;  // as the font names itself
  bool isBold = false, isItalic = false;
};

/// A font of just that family, whatever the case; the face that comes nearest to what is asked for. May be called by
/// one thread at a time, as the next one.
std::optional<FontFile> findFont(const std::string& family, bool isBold, bool isItalic);
/// Any font that has the letter.
std::optional<FontFile> findFontWith(char32_t letter, bool isBold);

}  // namespace host::picture

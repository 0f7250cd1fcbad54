// The text of a script, whatever encoding it was saved in.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "Problems/Problem.h"

namespace host::editor {

/// Bytes; no script that a person wrote or a program made is longer.
constexpr std::size_t kLargestScript = std::size_t{64} << 20;

struct ScriptText {
  std::string utf8;
  std::optional<Problem> remark;  // on its encoding, for the user
};

/// Scripts are UTF-8, with or without byte order mark, or UTF-16 with one. Editors of Windows also save its code page
/// for western Europe: bytes of which none belongs to a character in UTF-8 are read as Windows-1252, which is remarked
/// on. A text that is UTF-8 in some places only was damaged; one with NUL characters is none. Both are refused: guessed
/// names would go into the drawing.
/// `name` is what problems call the script.
Result<ScriptText> scriptText(std::string bytes, const std::string& name);

}  // namespace host::editor

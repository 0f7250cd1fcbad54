// Names and values of properties as commands are told them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Editor/Prompter.h"

namespace host::editor {

/// Linetype of the name, loaded from the drawing's linetype file when it is not there yet; null when it is in neither.
database::Slot* linetypeByName(Prompter& prompter, const std::wstring& name);
/// Hundredths of a millimetre from "0.25", or "ByLayer", "ByBlock", "Default" (-1, -2, -3).
std::optional<int> parseLineweight(std::wstring_view text);

}  // namespace host::editor

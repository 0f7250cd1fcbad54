// The dialog that inserts symbols.
#pragma once

#include <optional>
#include <string>

namespace OrvLib {

/// Shows the symbols of the directory modally and inserts those that the user chooses, while it is open: after each one
/// it comes back for the next. The directory that it was left with, to be remembered; nothing when it was cancelled.
/// The document must be locked for writing.
std::optional<std::wstring> showSymbols(const std::wstring& directory);

}  // namespace OrvLib

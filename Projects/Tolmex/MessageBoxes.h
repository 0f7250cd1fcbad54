// Message boxes of the plug-in.
#pragma once

#include <string>

namespace OrvLib {

/// A box with OK; the caption is the application's.
void showMessage(const std::wstring& text);
/// A Yes/No box with the caption "Tolmex"; true for Yes.
bool askYesNo(const std::wstring& text);

}  // namespace OrvLib

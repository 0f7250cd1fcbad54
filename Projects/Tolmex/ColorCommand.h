// The command that chooses colours.
#pragma once

namespace OrvLib {

/// Lets the user choose the current drawing's colours, which its area layers get, and save them to tolm.ini.
void editColors();

}  // namespace OrvLib

// The dialog of the colour scheme.
#pragma once

namespace OrvLib {

/// Shows the dialog "Tolmexn värit" modally: the current drawing's nine colours, which OK gives to the seven area
/// layers and a button also writes to tolm.ini.
void showColorSettings();

}  // namespace OrvLib

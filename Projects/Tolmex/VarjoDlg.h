// The dialog of the shadow settings.
#pragma once

namespace OrvLib {

/// Shows the dialog "Varjon ominaisuudet" modally. OK takes the settings, makes all shadows anew with them and stores
/// them in the drawing.
void showShadowDialog();

}  // namespace OrvLib

// The dialog of the shadow settings.
#pragma once

#include <functional>

#include "Tolmex/Model/ShadowRecord.h"

namespace OrvLib {

/// Shows the dialog "Varjon ominaisuudet" modally, filled with the settings. OK gives those that the user chose to
/// `accept` and then closes the dialog: the shadows are made anew and the settings stored while it is still open.
void showShadowDialog(const ShadowSettings& settings, const std::function<void(const ShadowSettings&)>& accept);

}  // namespace OrvLib

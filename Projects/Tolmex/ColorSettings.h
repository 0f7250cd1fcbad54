// The dialog of the colour scheme.
#pragma once

#include <functional>

#include "Tolmex/Model/ColorScheme.h"

namespace OrvLib {

using TakeColors = std::function<void(const ColorScheme&)>;

/// Shows the dialog "Tolmexn värit" modally, filled with the scheme's nine colours. OK gives the chosen colours to
/// `accept` and then closes the dialog: the layers have them before it goes. The button for the file gives them to
/// `save`, and the dialog stays open.
void showColorSettings(const ColorScheme& scheme, const TakeColors& accept, const TakeColors& save);

}  // namespace OrvLib

// The dialog of the colour scheme.
#pragma once

#include <functional>
#include <optional>

#include "Tolmex/Model/ColorScheme.h"

namespace OrvLib {

/// Shows the dialog "Tolmexn värit" modally, filled with the scheme's nine colours. The scheme that the user accepts;
/// nothing when the dialog is cancelled. Its button gives the chosen colours to `save` while the dialog stays open.
std::optional<ColorScheme> askColors(const ColorScheme& scheme, const std::function<void(const ColorScheme&)>& save);

}  // namespace OrvLib

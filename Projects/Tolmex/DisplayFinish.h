// How commands that draw end.
#pragma once

namespace OrvLib {

/// Moves the shadow, roof, building and ridge line layers to the top of the draw order, each above the ones before, and
/// regenerates: new fills thus lie under shadows, and shadows under buildings.
void finishDisplay();

}  // namespace OrvLib

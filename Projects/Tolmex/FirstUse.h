// What happens before the first command in a drawing.
#pragma once

namespace OrvLib {

/// Prepares the current document once: colours of its layers, its buildings, the file tolm.ini, the system's layers,
/// its shadow settings. A failure is not tried again by the next command.
void prepareCurrentDocument();

}  // namespace OrvLib

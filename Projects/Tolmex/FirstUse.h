// What happens before the first command in a drawing.
#pragma once

namespace OrvLib {

/// Prepares the current document once: colours of its layers, the file tolm.ini, the system's layers. A failure is not
/// tried again by the next command.
void prepareCurrentDocument();

}  // namespace OrvLib

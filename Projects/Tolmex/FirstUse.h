// What happens before a command.
#pragma once

namespace OrvLib {

/// Prepares the current document once: colours of its layers, its buildings, the file tolm.ini, the system's layers,
/// its shadow settings. A failure is not tried again by the next command. A document that is prepared already only has
/// its colours and shadow settings brought into step with the drawing, where U may have changed them.
void prepareCurrentDocument();

}  // namespace OrvLib

// The command that inserts symbols.
#pragma once

namespace OrvLib {

/// Shows the symbols of the document's symbol directory, or of the configured one as long as the document has none, and
/// inserts those that the user chooses.
void insertSymbols();

}  // namespace OrvLib

// The dialog that inserts symbols.
#pragma once

namespace OrvLib {

/// Shows the symbols of the document's symbol directory and inserts those that the user chooses.
void insertSymbols();

}  // namespace OrvLib

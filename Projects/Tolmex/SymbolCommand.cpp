#include "Tolmex/SymbolCommand.h"

#include "Tolmex/DocData.h"
#include "Tolmex/SymbolDLG.h"
#include "Tolmex/SymbolFiles.h"

namespace OrvLib {

void insertSymbols() {
  const std::wstring remembered = currentDocData().symbolDirectory;
  const std::optional<std::wstring> left = showSymbols(remembered.empty() ? configuredSymbolDirectory() : remembered);
  if (left) currentDocData().symbolDirectory = *left;
}

}  // namespace OrvLib

// Symbol files on disk and in the drawing.
#pragma once

#include <string>
#include <vector>

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// The directory that the path file on the host's support path names; empty without one.
std::wstring configuredSymbolDirectory();

/// Names of the drawings in the directory, as the system lists them.
std::vector<std::wstring> drawingsIn(const std::wstring& directory);

/// "directory\name".
std::wstring symbolPath(const std::wstring& directory, const std::wstring& fileName);

/// The drawing file as a block of the current drawing; a block of that name gets the file's contents. Null id, and
/// nothing changed, when it cannot be read or inserted.
AcDbObjectId insertSymbolBlock(const std::wstring& path, const std::wstring& blockName);

}  // namespace OrvLib

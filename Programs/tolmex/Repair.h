// Drawings that are not as they should be: their problems, and repaired copies.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Dxf/DxfFile.h"

namespace tolmex {

/// Everything that is wrong with a drawing's file, and its repaired copy (as DXF). `read` is the drawing as it was
/// opened; where nothing can be repaired, its problems stand without a copy.
host::dxf::RepairedDrawing lookThroughFile(const std::filesystem::path& drawing,
                                           const host::database::DrawingDatabase& read);
/// Prints each problem and note to standard error under the drawing's name; answers how many are problems.
std::size_t printProblems(const std::string& drawing, const std::vector<host::Problem>& problems);
/// Writes the repaired copy of the drawing that is shown as `drawing`.
host::Result<> writeRepaired(const std::string& drawing, const std::filesystem::path& file,
                             const std::string& repaired);
/// Refuses names that a repaired copy cannot have.
host::Result<> checkRepairedName(const std::filesystem::path& file);

}  // namespace tolmex

// Drawings that are not as they should be: what is said of them, and repaired copies.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace tolmex {

/// Everything that is wrong with a drawing's file, and its repaired copy in `repaired` (as DXF).
/// `read` is the drawing as it was opened.
std::vector<host::database::Problem> problemsOf(const std::filesystem::path& drawing,
                                                const host::database::DrawingDatabase& read, std::string& repaired);
/// Prints each problem and note to standard error under the drawing's name; answers how many are problems.
std::size_t printProblems(const std::string& drawing, const std::vector<host::database::Problem>& problems);
/// Writes the repaired copy of the drawing that is shown as `drawing`; the exit status, problems are printed.
int writeRepaired(const std::string& drawing, const std::filesystem::path& file, const std::string& repaired);
/// Empty, or one sentence: the repaired copy cannot have that name.
std::string refuseRepairedName(const std::filesystem::path& file);

}  // namespace tolmex

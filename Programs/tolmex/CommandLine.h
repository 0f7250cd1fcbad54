// What the arguments of the program mean.
#pragma once

#include <string>
#include <vector>

namespace tolmex {

/// Reads the arguments, the program's name first, in UTF-8; does what they ask and answers the exit status.
int runCommandLine(const std::vector<std::string>& arguments);

}  // namespace tolmex

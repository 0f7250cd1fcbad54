// What the arguments of the program mean.
#pragma once

namespace tolmex {

/// Reads the arguments, does what they ask and answers the exit status.
int runCommandLine(int argc, char** argv);

}  // namespace tolmex

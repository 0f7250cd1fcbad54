// What the streams keep until the program ends, for workers.
#pragma once

#include <string>

namespace host::platform {

/// What has been read of standard input.
const std::string& inputSoFar();
/// Takes all kept files away.
void dropKeptFiles();

}  // namespace host::platform

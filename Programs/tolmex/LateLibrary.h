// Libraries that only some calls need: they lie beside the program and are loaded for the call.
#pragma once

#include <string>

#include "Problems/Problem.h"

namespace tolmex {

/// The function of that name in the library, such as "tolmexsun"; the problem says what the call needs, such as "GDAL
/// (libgdal-dev)", when the library was not built or cannot be loaded. The library stays loaded.
host::Result<void*> functionOfLibrary(const std::string& library, const char* function, const std::string& call,
                                      const std::string& needs);

}  // namespace tolmex

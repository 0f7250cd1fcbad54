#include "Platform/Library.h"

namespace host::platform {

void* openBeside(const void* beside, std::string_view name, std::filesystem::path& file, std::string& reason) {
  file = fileOf(beside).parent_path() / libraryName(name);
  return openLibrary(file, reason);
}

}  // namespace host::platform

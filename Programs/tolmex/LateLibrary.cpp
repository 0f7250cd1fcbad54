#include "LateLibrary.h"

#include "PlanSession.h"
#include "Platform/Library.h"

namespace tolmex {

host::Result<void*> functionOfLibrary(const std::string& library, const char* function, const std::string& call,
                                      const std::string& needs) {
  const std::filesystem::path file = plugInFile().parent_path() / host::platform::libraryName(library);
  std::error_code error;
  if (!std::filesystem::exists(file, error))
    return host::problemOf(host::Code::WrongUsage, call + ": this program was built without " + needs);
  std::string reason;
  void* const loaded = host::platform::openLibrary(file, reason);
  void* const found = loaded != nullptr ? host::platform::symbolOf(loaded, function) : nullptr;
  if (found != nullptr) return found;
  return host::problemOf(host::Code::WrongUsage,
                         call + ": " + library + " cannot be loaded: " + (loaded == nullptr ? reason : function));
}

}  // namespace tolmex

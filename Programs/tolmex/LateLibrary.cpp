#include "LateLibrary.h"

#include <dlfcn.h>

#include "PlanSession.h"

namespace tolmex {

host::Result<void*> functionOfLibrary(const std::string& library, const char* function, const std::string& call,
                                      const std::string& needs) {
  const std::filesystem::path file = plugInFile().parent_path() / library;
  std::error_code error;
  if (!std::filesystem::exists(file, error))
    return host::problemOf(host::Code::WrongUsage, call + ": this program was built without " + needs);
  void* const loaded = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* const found = loaded != nullptr ? ::dlsym(loaded, function) : nullptr;
  if (found != nullptr) return found;
  const char* const reason = ::dlerror();
  return host::problemOf(host::Code::WrongUsage,
                         call + ": " + library + " cannot be loaded: " + (reason != nullptr ? reason : function));
}

}  // namespace tolmex

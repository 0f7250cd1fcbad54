#include "Platform/Library.h"

#include <dlfcn.h>

namespace host::platform {

std::string libraryName(std::string_view name) { return "lib" + std::string(name) + ".so"; }

void* openLibrary(const std::filesystem::path& file, std::string& reason) {
  void* const library = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    const char* const said = ::dlerror();
    reason = said != nullptr ? said : "no reason given";
  }
  return library;
}

void* symbolOf(void* library, const char* name) { return ::dlsym(library, name); }

void closeLibrary(void* library) { ::dlclose(library); }

bool isLoaded(const std::filesystem::path& file) {
  void* const library = ::dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (library != nullptr) ::dlclose(library);
  return library != nullptr;
}

std::filesystem::path fileOf(const void* address) {
  Dl_info info{};
  const bool isKnown = ::dladdr(address, &info) != 0 && info.dli_fname != nullptr;
  return isKnown ? info.dli_fname : std::filesystem::path();
}

const void* baseOf(const void* address) {
  Dl_info info{};
  return ::dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

const void* symbolInModule(const void* base, const char* name) {
  Dl_info info{};
  if (base == nullptr || ::dladdr(base, &info) == 0 || info.dli_fbase != base) return nullptr;
  void* const library = ::dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD);
  if (library == nullptr) return nullptr;
  const void* const found = ::dlsym(library, name);
  ::dlclose(library);
  return found != nullptr && baseOf(found) == base ? found : nullptr;
}

std::filesystem::path programFile() {
  std::error_code error;
  std::filesystem::path file = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::filesystem::path() : file;
}

}  // namespace host::platform

#include "Platform/Library.h"

#include "Platform/windows/Windows.h"

namespace host::platform {

namespace {

HMODULE moduleOf(const void* address) {
  HMODULE module = nullptr;
  if (address == nullptr) return nullptr;  // would be the program
  constexpr DWORD kFlags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (::GetModuleHandleExW(kFlags, static_cast<LPCWSTR>(address), &module) == 0) return nullptr;
  return module;
}

std::filesystem::path nameOf(HMODULE module) {
  std::wstring name(MAX_PATH, 0);
  for (;;) {
    const DWORD length = ::GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size()));
    if (length == 0) return {};
    if (length < name.size()) {
      name.resize(length);
      return name;
    }
    name.resize(name.size() * 2);
  }
}

}  // namespace

std::string libraryName(std::string_view name) { return "lib" + std::string(name) + ".dll"; }

void* openLibrary(const std::filesystem::path& file, std::string& reason) {
  // What a library needs is looked for beside it too. Boxes of the system's about missing libraries would stop scripts.
  DWORD former = 0;
  ::SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &former);
  const HMODULE library = ::LoadLibraryExW(systemPath(file).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (library == nullptr) reason = reasonOf(::GetLastError());
  ::SetThreadErrorMode(former, nullptr);
  return library;
}

void* symbolOf(void* library, const char* name) {
  return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(library), name));
}

void closeLibrary(void* library) { ::FreeLibrary(static_cast<HMODULE>(library)); }

bool isLoaded(const std::filesystem::path& file) { return ::GetModuleHandleW(systemPath(file).c_str()) != nullptr; }

std::filesystem::path fileOf(const void* address) {
  const HMODULE module = moduleOf(address);
  return module != nullptr ? nameOf(module) : std::filesystem::path();
}

const void* baseOf(const void* address) { return moduleOf(address); }

const void* symbolInModule(const void* base, const char* name) {
  const HMODULE module = moduleOf(base);
  if (module == nullptr || module != base) return nullptr;
  return reinterpret_cast<const void*>(::GetProcAddress(module, name));
}

std::filesystem::path programFile() { return nameOf(nullptr); }

}  // namespace host::platform

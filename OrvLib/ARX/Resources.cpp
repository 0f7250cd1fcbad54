#include "OrvLib/ARX/Resources.h"

namespace OrvLib {

HINSTANCE moduleInstance() {
  static const char placeInModule = 0;
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&placeInModule), &module);
  return module;
}

}  // namespace OrvLib

#include "Reports/Faults.h"

#include <dlfcn.h>

#include "acutads.h"

namespace tests::faults {

std::function<int(const std::wstring&, const std::wstring&, UINT)> messageBox;
bool newRbFails = false;

}  // namespace tests::faults

int MessageBoxW(HWND parent, LPCWSTR text, LPCWSTR caption, UINT type) {
  if (tests::faults::messageBox) return tests::faults::messageBox(text, caption, type);
  static const auto real =
      reinterpret_cast<decltype(&MessageBoxW)>(dlsym(RTLD_NEXT, "_Z11MessageBoxWP10HostWindowPKwS2_j"));
  return real(parent, text, caption, type);
}

resbuf* acutNewRb(int type) {
  if (tests::faults::newRbFails) return nullptr;
  static const auto real = reinterpret_cast<decltype(&acutNewRb)>(dlsym(RTLD_NEXT, "_Z9acutNewRbi"));
  return real(type);
}

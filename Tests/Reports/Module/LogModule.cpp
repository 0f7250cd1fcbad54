// A second module of the host that logs through the first one's logger.
#include <dlfcn.h>

#include <string>

#include "accmd.h"
#include "aced.h"
#include "rxdlinkr.h"
#include "rxregsvc.h"

namespace {

int (*debugPrint)(const wchar_t*, ...) = nullptr;

void logSomething() {
  static int times = 0;
  debugPrint(L"other module %d %s\n", ++times, L"ä");
}

bool findLogger() {
  Dl_info here{};
  if (dladdr(reinterpret_cast<const void*>(&findLogger), &here) == 0) return false;
  std::string file = here.dli_fname;
  file.replace(file.rfind('/') + 1, std::string::npos, "tolmex.arx");
  void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (library == nullptr) return false;
  debugPrint = reinterpret_cast<decltype(debugPrint)>(dlsym(library, "DebugPrint"));
  dlclose(library);
  return debugPrint != nullptr;
}

}  // namespace

extern "C" ADESK_EXPORT int acrxGetApiVersion() { return ACRX_API_VERSION; }

extern "C" ADESK_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet) {
  if (message == AcRx::kInitAppMsg) {
    if (!findLogger()) return AcRx::kRetError;
    acrxDynamicLinker->unlockApplication(packet);
    acrxDynamicLinker->registerAppMDIAware(packet);
    acedRegCmds->addCommand(L"LOGMODULE", L"LOGSOMETHING", L"LOGSOMETHING", ACRX_CMD_MODAL, logSomething);
  }
  if (message == AcRx::kUnloadAppMsg) acedRegCmds->removeGroup(L"LOGMODULE");
  return AcRx::kRetOK;
}

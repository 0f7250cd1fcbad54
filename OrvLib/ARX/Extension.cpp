// The start-up of an MFC extension library, which the module is in the commercial host: MFC finds its resources and
// cleans up after it when it is unloaded. The project file defines _AFXEXT; the embedded host needs none of this.
#ifdef _AFXEXT

#include <afxdllx.h>

namespace {
AFX_EXTENSION_MODULE extension;
}

extern "C" int WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) {
    if (AfxInitExtensionModule(extension, module) == FALSE) return FALSE;
    new CDynLinkLibrary(extension);
  } else if (reason == DLL_PROCESS_DETACH) {
    AfxTermExtensionModule(extension);
  }
  return TRUE;
}

#endif

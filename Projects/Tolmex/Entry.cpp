// The module's door: what the host calls by name.
#include <memory>

#include "OrvLib/ARX/DebugLog.h"
#include "OrvLib/ARX/Export.h"
#include "OrvLib/ARX/Failures.h"
#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/ARX/ParentWindow.h"
#include "Tolmex/Commands.h"
#include "Tolmex/DocData.h"
#include "Tolmex/Reactors.h"

namespace OrvLib {
namespace {

std::unique_ptr<asdkeditorReactor> editorReactor;

void load(void* application) {
  if (const AcRxDynamicLinker* const linker = acrxDynamicLinker) {
    linker->unlockApplication(application);
    linker->registerAppMDIAware(application);
  }
  registerCommands();
  keepParentWindow();
  editorReactor = std::make_unique<asdkeditorReactor>(true);
  attachToDocuments();
}

// The host may take the module out of memory after this, so nothing of it may stay attached anywhere.
void unload() {
  removeCommands();
  editorReactor.reset();
  detachFromDocuments();
  DebugLog::instance().closeWindow();
}

}  // namespace
}  // namespace OrvLib

ORV_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* application) {
  if (message == AcRx::kInitAppMsg) OrvLib::guarded([&] { OrvLib::load(application); });
  if (message == AcRx::kUnloadAppMsg) OrvLib::guarded([] { OrvLib::unload(); });
  return AcRx::kRetOK;
}

#ifndef _WIN32  // there the host's own library brings it
ORV_EXPORT int acrxGetApiVersion() { return ACRX_API_VERSION; }
#endif

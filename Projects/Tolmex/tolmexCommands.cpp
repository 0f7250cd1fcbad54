// The module's door and the commands behind it: what the host calls by name.
#include <array>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include "OrvLib/ARX/DebugLog.h"
#include "OrvLib/ARX/Export.h"
#include "OrvLib/ARX/Failures.h"
#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/ARX/ParentWindow.h"
#include "Tolmex/BuildingCommands.h"
#include "Tolmex/ColorSettings.h"
#include "Tolmex/DocData.h"
#include "Tolmex/DrawingCommands.h"
#include "Tolmex/ElementCommands.h"
#include "Tolmex/Fences.h"
#include "Tolmex/FirstUse.h"
#include "Tolmex/ParkingCommand.h"
#include "Tolmex/Reactors.h"
#include "Tolmex/RoofRaster.h"
#include "Tolmex/ShadowCommands.h"
#include "Tolmex/SymbolDLG.h"

namespace OrvLib {
namespace {

constexpr const ACHAR* kCommandGroup = L"ORV_TOLMEX";
constexpr std::size_t kCommandCount = 30;

struct Command {
  const ACHAR* globalName;
  const ACHAR* localName;
  void (*body)();
};

constexpr Command sameName(const ACHAR* name, void (*body)()) { return {name, name, body}; }

// In the order of registration.
constexpr std::array<Command, kCommandCount> kCommands{{
    sameName(L"TLM_MUOK_VARIT", showColorSettings),
    sameName(L"TLM_MUOK_VARIT_PAALLE", showFills),
    sameName(L"TLM_MUOK_VARIT_POIS", hideFills),
    sameName(L"TLM_MUOK_ASFALTTI", [] { makeElements(elements::kAsphalt); }),
    sameName(L"TLM_MUOK_RAKENNUS", makeBuildings),
    sameName(L"TLM_MUOK_HARJAVIIVA", makeRidgeLines),
    sameName(L"TLM_PARK_PAIKKA_TEE", makeParkingPlaces),
    // The local name lacks a letter; users of localised hosts know it so.
    {L"TLM_MUOK_NURMIKKO", L"TLM_MUOK_NURMKKO", [] { makeElements(elements::kGrass); }},
    sameName(L"TLM_MUOK_SORA", [] { makeElements(elements::kGravel); }),
    sameName(L"TLM_MUOK_METSA", [] { makeElements(elements::kForest); }),
    sameName(L"TLM_LIS_SYMBOLI", insertSymbols),
    sameName(L"TLM_MUOK_PENSAS", [] { makeElements(elements::kHedge); }),
    sameName(L"TLM_MUOK_PIHALAATTA", [] { makeElements(elements::kYardPaving); }),
    sameName(L"TLM_MUOK_AITA_LAUTA", [] { makeElements(elements::kBoardFence); }),
    sameName(L"TLM_MUOK_AITA_KIVI", [] { makeElements(elements::kStoneFence); }),
    sameName(L"TLM_VIIVA_JATKUVA", [] { setCurrentLinetype(L"CONTINUOUS"); }),
    sameName(L"TLM_VIIVA_KATKO", [] { setCurrentLinetype(L"HIDDEN2"); }),
    sameName(L"TLM_VIIVA_PISTE", [] { setCurrentLinetype(L"DOTS"); }),
    sameName(L"TLM_VIE_TAAKSE", sendSelectedToBack),
    sameName(L"TLM_TUO_ETEEN", bringSelectedToFront),
    sameName(L"TLM_MUOK_POLKU", [] { makeElements(elements::kPath); }),
    sameName(L"TLM_VARJO_OMINAISUUDET", editShadowSettings),
    sameName(L"TLM_VARJO_PAIVITA", updateShadows),
    sameName(L"TLM_VARJO_POISTA", removeShadows),
    sameName(L"TLM_ASETA_KORKEUS", setHeightOfSelected),
    sameName(L"TLM_KATTO_RAST_TEE_4_VARJO", [] { makeRoofRaster(kShadedRaster, 4, true); }),
    sameName(L"TLM_KATTO_RAST_TEE_3_VARJO", [] { makeRoofRaster(kShadedRaster, 3, true); }),
    sameName(L"TLM_KATTO_RAST_TEE_4_AURINKO", [] { makeRoofRaster(kSunlitRaster, 4, false); }),
    sameName(L"TLM_KATTO_RAST_TEE_3_AURINKO", [] { makeRoofRaster(kSunlitRaster, 3, false); }),
    sameName(L"TLM_POISTA_TIEDOT", removeDataFromSelected),
}};

constexpr bool namesAreUnique() {
  for (std::size_t i = 0; i < kCommandCount; ++i) {
    for (std::size_t k = 0; k < i; ++k) {
      const std::wstring_view name = kCommands[i].globalName;
      if (name == kCommands[k].globalName || name == kCommands[k].localName) return false;
    }
  }
  return true;
}
static_assert(namesAreUnique(), "the host refuses a second command of the same name");

/// What the host calls: nothing thrown in a command gets past it.
template <std::size_t index>
void runCommand() {
  guarded([] {
    currentDocData().buildingsAreFresh = false;  // whatever ran before may have changed the drawing
    prepareCurrentDocument();
    kCommands[index].body();
  });
}

template <std::size_t... indices>
constexpr std::array<AcRxFunctionPtr, kCommandCount> entryPoints(std::index_sequence<indices...>) {
  return {&runCommand<indices>...};
}
constexpr auto kEntryPoints = entryPoints(std::make_index_sequence<kCommandCount>());

AcEdCommandStack* commandStack() { return acedRegCmds; }

/// One that the host refuses is left out, the others follow.
void registerCommands() {
  AcEdCommandStack* const stack = commandStack();
  if (stack == nullptr) return;
  for (std::size_t i = 0; i < kCommandCount; ++i) {
    stack->addCommand(kCommandGroup, kCommands[i].globalName, kCommands[i].localName,
                      ACRX_CMD_TRANSPARENT | ACRX_CMD_USEPICKSET, kEntryPoints[i]);
  }
}

void removeCommands() {
  if (AcEdCommandStack* const stack = commandStack()) stack->removeGroup(kCommandGroup);
}

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

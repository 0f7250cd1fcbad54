// The module's door and the commands behind it: what the host calls by name.
#include <array>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include "OrvLib/ARX/Export.h"
#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/ARX/ParentWindow.h"
#include "OrvLib/Reports/DebugLog.h"
#include "OrvLib/Reports/Failures.h"
#include "Tolmex/BuildingCommands.h"
#include "Tolmex/ColorCommand.h"
#include "Tolmex/CommandRow.h"
#include "Tolmex/DocData.h"
#include "Tolmex/DrawingCommands.h"
#include "Tolmex/ElementCommands.h"
#include "Tolmex/Fences.h"
#include "Tolmex/FirstUse.h"
#include "Tolmex/ParkingCommand.h"
#include "Tolmex/Reactors.h"
#include "Tolmex/RoofRaster.h"
#include "Tolmex/ShadowCommands.h"
#include "Tolmex/SymbolCommand.h"

namespace OrvLib {
namespace {

constexpr const ACHAR* kCommandGroup = L"ORV_TOLMEX";
constexpr std::size_t kCommandCount = 30;

template <Category category>
Outcome make(const SelectedIds& polylines) {
  makeElements(polylines, category);
  return Outcome::Done;
}

template <int pointCount, bool isShaded>
Outcome roofFace(const SelectedIds& building) {
  return makeRoofRaster(building.front(), isShaded ? kShadedRaster : kSunlitRaster, pointCount, isShaded);
}

template <void (*work)(const SelectedIds&)>
Outcome workOn(const SelectedIds& selected) {
  work(selected);
  return Outcome::Done;
}

template <void (*work)()>
Outcome call(const SelectedIds&) {
  work();
  return Outcome::Done;
}

constexpr const ACHAR* promptOf(Category category) { return row(category).prompt; }
constexpr const ACHAR* kPickRoof = L"\nValitse rakennus, jolle kattorasteri tehdään:";

// In the order of registration.
constexpr std::array<CommandRow, kCommandCount> kCommands{{
    {L"TLM_MUOK_VARIT", nullptr, Selects::Nothing, Locks::No, Finish::ByItself, call<editColors>},
    {L"TLM_MUOK_VARIT_PAALLE", nullptr, Selects::Nothing, Locks::No, Finish::ByItself, call<showFills>},
    {L"TLM_MUOK_VARIT_POIS", nullptr, Selects::Nothing, Locks::No, Finish::ByItself, call<hideFills>},
    {L"TLM_MUOK_ASFALTTI", promptOf(Category::Asphalt), Selects::Polylines, Locks::Yes, Finish::DisplayFinished,
     make<Category::Asphalt>},
    {L"TLM_MUOK_RAKENNUS", promptOf(Category::Building), Selects::Polylines, Locks::Yes, Finish::DisplayFinished,
     makeBuildings},
    {L"TLM_MUOK_HARJAVIIVA", promptOf(Category::RidgeLine), Selects::Polylines, Locks::Yes, Finish::DisplayFinished,
     workOn<makeRidgeLines>},
    {L"TLM_PARK_PAIKKA_TEE", L"Valitse murtoviiva:\n", Selects::Nothing, Locks::Yes, Finish::DisplayFinished,
     [](const SelectedIds&) { return makeParkingPlaces(); }},
    // The local name lacks a letter; users of localised hosts know it so.
    {L"TLM_MUOK_NURMIKKO", promptOf(Category::Grass), Selects::Polylines, Locks::Yes, Finish::DisplayFinished,
     make<Category::Grass>, L"TLM_MUOK_NURMKKO"},
    {L"TLM_MUOK_SORA", promptOf(Category::Gravel), Selects::Polylines, Locks::Yes, Finish::DisplayFinished,
     make<Category::Gravel>},
    {L"TLM_MUOK_METSA", promptOf(Category::Forest), Selects::Polylines, Locks::Yes, Finish::DisplayFinished,
     make<Category::Forest>},
    // The dialog writes into the drawing while it is open.
    {L"TLM_LIS_SYMBOLI", nullptr, Selects::Nothing, Locks::Yes, Finish::ByItself, call<insertSymbols>},
    {L"TLM_MUOK_PENSAS", promptOf(Category::Hedge), Selects::Polylines, Locks::Yes, Finish::DisplayFinished,
     make<Category::Hedge>},
    {L"TLM_MUOK_PIHALAATTA", promptOf(Category::YardPaving), Selects::Polylines, Locks::Yes, Finish::DisplayFinished,
     make<Category::YardPaving>},
    {L"TLM_MUOK_AITA_LAUTA", promptOf(Category::BoardFence), Selects::Polylines, Locks::Yes, Finish::DisplayFinished,
     make<Category::BoardFence>},
    {L"TLM_MUOK_AITA_KIVI", promptOf(Category::StoneFence), Selects::Polylines, Locks::Yes, Finish::DisplayFinished,
     make<Category::StoneFence>},
    {L"TLM_VIIVA_JATKUVA", nullptr, Selects::Nothing, Locks::No, Finish::ByItself, call<drawContinuous>},
    {L"TLM_VIIVA_KATKO", nullptr, Selects::Nothing, Locks::No, Finish::ByItself, call<drawDashed>},
    {L"TLM_VIIVA_PISTE", nullptr, Selects::Nothing, Locks::No, Finish::ByItself, call<drawDotted>},
    {L"TLM_VIE_TAAKSE", L"\nValitse objektit, jotka viedään taakse:\n", Selects::Entities, Locks::No,
     Finish::Regenerated, sendToBack},
    {L"TLM_TUO_ETEEN", L"\nValitse objektit, jotka tuodaan eteen:\n", Selects::Entities, Locks::No, Finish::Regenerated,
     bringToFront},
    {L"TLM_MUOK_POLKU", promptOf(Category::Path), Selects::Polylines, Locks::Yes, Finish::DisplayFinished,
     make<Category::Path>},
    {L"TLM_VARJO_OMINAISUUDET", nullptr, Selects::Nothing, Locks::No, Finish::ByItself, call<editShadowSettings>},
    {L"TLM_VARJO_PAIVITA", nullptr, Selects::Nothing, Locks::No, Finish::ByItself, call<updateShadows>},
    {L"TLM_VARJO_POISTA", nullptr, Selects::Nothing, Locks::No, Finish::DisplayFinished, call<removeShadows>},
    {L"TLM_ASETA_KORKEUS", L"\nValitse lauta-aita tai kivimuuri, jonka korkeutta muutetaaan:\n", Selects::Polylines,
     Locks::No, Finish::ByItself, workOn<setHeights>},
    {L"TLM_KATTO_RAST_TEE_4_VARJO", kPickRoof, Selects::OneEntity, Locks::No, Finish::DisplayFinished,
     roofFace<4, true>},
    {L"TLM_KATTO_RAST_TEE_3_VARJO", kPickRoof, Selects::OneEntity, Locks::No, Finish::DisplayFinished,
     roofFace<3, true>},
    {L"TLM_KATTO_RAST_TEE_4_AURINKO", kPickRoof, Selects::OneEntity, Locks::No, Finish::DisplayFinished,
     roofFace<4, false>},
    {L"TLM_KATTO_RAST_TEE_3_AURINKO", kPickRoof, Selects::OneEntity, Locks::No, Finish::DisplayFinished,
     roofFace<3, false>},
    {L"TLM_POISTA_TIEDOT", L"\nValitse kohteet, joista poistetaan tiedot:\n", Selects::Entities, Locks::No,
     Finish::ByItself, workOn<removeData>},
}};

constexpr bool namesAreUnique() {
  for (std::size_t i = 0; i < kCommandCount; ++i) {
    for (std::size_t k = 0; k < i; ++k) {
      const std::wstring_view name = kCommands[i].globalName;
      if (name == kCommands[k].globalName || name == kCommands[k].localNameOrGlobal()) return false;
    }
  }
  return true;
}
static_assert(namesAreUnique(), "the host refuses a second command of the same name");

/// What the host calls: nothing thrown in a command gets past it.
template <std::size_t index>
void enterCommand() {
  guarded([] {
    currentDocData().buildingsAreFresh = false;  // whatever ran before may have changed the drawing
    prepareCurrentDocument();
    runCommand(kCommands[index]);
  });
}

template <std::size_t... indices>
constexpr std::array<AcRxFunctionPtr, kCommandCount> entryPoints(std::index_sequence<indices...>) {
  return {&enterCommand<indices>...};
}
constexpr auto kEntryPoints = entryPoints(std::make_index_sequence<kCommandCount>());

AcEdCommandStack* commandStack() { return acedRegCmds; }

/// One that the host refuses is left out, the others follow.
void registerCommands() {
  AcEdCommandStack* const stack = commandStack();
  if (stack == nullptr) return;
  for (std::size_t i = 0; i < kCommandCount; ++i) {
    stack->addCommand(kCommandGroup, kCommands[i].globalName, kCommands[i].localNameOrGlobal(),
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

#ifdef TOLMEX_OWN_HOST  // the commercial host's own library brings it
ORV_EXPORT int acrxGetApiVersion() { return ACRX_API_VERSION; }
#endif

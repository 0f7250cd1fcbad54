// A small module of a host; its variants are made with different definitions.
#include <windows.h>

#include <cstdio>
#include <new>
#include <stdexcept>

#include "acdocman.h"
#include "aced.h"
#include "acedads.h"
#include "rxdlinkr.h"
#include "rxregsvc.h"

namespace {

#ifndef TEST_VERSION
#define TEST_VERSION ACRX_API_VERSION
#endif

int documentsSeen = 0;

/// Made with the module's globals: the host's services must be there already.
class Watcher : public AcApDocManagerReactor {
 public:
  Watcher() { acDocManager->addReactor(this); }
  ~Watcher() override { acDocManager->removeReactor(this); }
  void documentCreated(AcApDocument*) override { ++created; }
  int created = 0;
};
Watcher watcher;

class LeftBehind : public AcEditorReactor {
 public:
  void commandEnded(const ACHAR*) override { ++ended; }
  int ended = 0;
};
LeftBehind leftBehind;

void report() { acutPrintf(L"\nseen %d created %d ended %d", documentsSeen, watcher.created, leftBehind.ended); }
void forgotten() {}
// As a plug-in's log does.
void printToStandardOutput() {
  std::fputs("for standard output\n", stdout);
  std::fflush(stdout);
}
void tellOfFailure() { MessageBoxW(nullptr, L"No layer.\n\n(Error location: a.cpp:1)", L"Error", MB_OK); }

}  // namespace

extern "C" ADESK_EXPORT int acrxGetApiVersion() { return TEST_VERSION; }

extern "C" ADESK_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet) {
  switch (message) {
    case AcRx::kInitAppMsg:
#ifdef TEST_REFUSES
      return AcRx::kRetError;
#endif
#ifdef TEST_THROWS
      throw std::runtime_error("no licence");
#endif
      acrxDynamicLinker->unlockApplication(packet);
      acrxDynamicLinker->registerAppMDIAware(packet);
#ifdef TEST_LOCKED
      acrxDynamicLinker->lockApplication(packet);
      acrxDynamicLinker->registerAppNotMDIAware(packet);
#endif
      acedRegCmds->addCommand(L"TESTMODULE", L"TESTREPORT", L"RAPORTTI", ACRX_CMD_MODAL, report);
      acedRegCmds->addCommand(L"TESTMODULE", L"TESTPRINTS", L"TESTPRINTS", ACRX_CMD_MODAL, printToStandardOutput);
      acedRegCmds->addCommand(L"TESTMODULE", L"TESTFAILS", L"TESTFAILS", ACRX_CMD_MODAL, tellOfFailure);
      acedRegCmds->addCommand(L"FORGOTTEN", L"TESTFORGOTTEN", L"TESTFORGOTTEN", ACRX_CMD_MODAL, forgotten);
      acedEditor->addReactor(&leftBehind);
      break;
    case AcRx::kLoadDwgMsg:
      if (acdbCurDwg() != nullptr) ++documentsSeen;
      break;
    case AcRx::kUnloadAppMsg:
      acedRegCmds->removeGroup(L"TESTMODULE");
      break;
    default:
      break;
  }
  return AcRx::kRetOK;
}

// Documents, locks, reactors, modules, tooltips.
#include <filesystem>
#include <fstream>

#include "OwnFolder.h"
#include "Places.h"
#include "Support.h"
#include "acedads.h"
#include "acutads.h"
#include "axlock.h"
#include "dbapserv.h"
#include "rxdlinkr.h"
#include "rxmfcapi.h"

namespace {

namespace fs = std::filesystem;

class Documents : public test::Host {
 protected:
  /// Lines of somebody who can be asked again.
  void type(std::vector<std::string> lines) {
    test::Typed input(std::move(lines));
    transcript.clear();
    EXPECT_TRUE(app.run(input));
  }
  tests::OwnFolder own;
  const fs::path& folder = own.path;
};

class Recorder : public AcApDocManagerReactor {
 public:
  Recorder() { acDocManager->addReactor(this); }
  ~Recorder() override { acDocManager->removeReactor(this); }
  void documentCreateStarted(AcApDocument*) override { log += "started "; }
  void documentCreated(AcApDocument* d) override { log += d == acDocManager->curDocument() ? "created* " : "created "; }
  void documentBecameCurrent(AcApDocument*) override { log += "current "; }
  void documentActivated(AcApDocument*) override { log += "activated "; }
  void documentToBeDestroyed(AcApDocument* d) override { log += d->database() != nullptr ? "closing " : "? "; }
  void documentDestroyed(const ACHAR*) override { log += "destroyed "; }
  std::string log;
};

TEST_F(Documents, OpenSaveAndClose) {
  const fs::path plan = folder / "plan ä.dxf";
  expectDone("LINE 0,0 7.5,0\n\nSAVEAS " + plan.string() + "\n");
  ASSERT_TRUE(fs::exists(plan));
  EXPECT_EQ(app.drawingFile(), plan);
  EXPECT_FALSE(app.drawing()->isModified());

  const fs::path copy = folder / "copy.dxf";
  fs::copy_file(plan, copy);
  Recorder recorder;
  ASSERT_TRUE(app.openDrawing(copy));
  // The former document is still the current one while the new one is being made.
  EXPECT_EQ(recorder.log, "started created current activated ");
  ASSERT_EQ(entities().size(), 1U);
  EXPECT_EQ(values(*entities()[0], 11), std::vector<std::string>{"7.5"});
  EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), app.drawing()->facade());
  recorder.log.clear();
  app.closeDrawing();
  EXPECT_EQ(recorder.log, "closing destroyed current activated ");
  EXPECT_EQ(app.drawingFile(), plan);

  recorder.log.clear();
  app.closeDrawing();
  EXPECT_EQ(acDocManager->curDocument(), nullptr);
  EXPECT_EQ(acdbCurDwg(), nullptr);
  expectFailure("LINE 0,0 1,1\n", "No drawing is open: LINE needs one.");
  expectDone("OPEN " + plan.string() + "\nLINE 0,0 1,1\n\nQSAVE\n");
  EXPECT_FALSE(app.drawing()->isModified());
  app.closeDrawing();
  ASSERT_TRUE(app.openDrawing(plan));
  EXPECT_EQ(entities().size(), 2U);
}

TEST_F(Documents, ADrawingIsOpenOnceWhateverItIsCalled) {
  const fs::path plan = folder / "plan.dxf", other = folder / "other.dxf";
  expectDone("LINE 0,0 1,0\n\nSAVEAS " + plan.string() + "\n");
  fs::copy_file(plan, other);
  fs::create_directories(folder / "deep/er");
  fs::create_directory_symlink(folder / "deep/er", folder / "link");
  fs::create_symlink(plan, folder / "alias.dxf");
  expectDone("LINE 0,0 2,0\n\nOPEN " + other.string() + "\n");
  EXPECT_EQ(app.drawingFile(), other);
  Recorder recorder;
  for (const char* name : {"plan.dxf", "./deep/../plan.dxf", "alias.dxf"}) {
    SCOPED_TRACE(name);
    expectDone("OPEN " + other.string() + "\nOPEN " + (folder / name).string() + "\n");
    EXPECT_TRUE(said(L" is open already; it is the current drawing now.")) << host::text::toUtf8(transcript);
    EXPECT_EQ(app.drawingFile(), plan);
    EXPECT_EQ(entities().size(), 2U) << "with what was not saved yet";
  }
  EXPECT_EQ(recorder.log, "current activated current activated current activated current activated current activated ");
  // Its file is gone: the drawing is still the one that is open.
  fs::remove(plan);
  expectDone("OPEN " + other.string() + "\nOPEN " + plan.string() + "\nQSAVE\n");
  EXPECT_TRUE(fs::exists(plan));
  // Nor is the one saved over the other.
  const host::Result<> result = run("SAVEAS " + other.string() + "\n");
  EXPECT_EQ(result.status(), host::RunStatus::OutputFailed);
  EXPECT_NE(result.message().find("other.dxf: this drawing is open too"), std::string::npos) << result.message();
  // ".." behind a link leads elsewhere than it looks.
  fs::copy_file(other, folder / "deep/other.dxf");
  expectDone("OPEN " + (folder / "link/../other.dxf").string() + "\nLINE 0,0 3,0\n\nQSAVE\n");
  EXPECT_GT(fs::file_size(folder / "deep/other.dxf"), fs::file_size(other));
}

TEST_F(Documents, WhatOthersWroteIsNotReplacedUnasked) {
  const fs::path plan = folder / "plan.dxf", older = folder / "older.dxf";
  expectDone("LINE 0,0 1,0\n\nSAVEAS " + older.string() + "\nLINE 0,0 2,0\n\nSAVEAS " + plan.string() + "\n");
  // What this session writes itself is no change.
  expectDone("LINE 0,0 3,0\n\nQSAVE\nLINE 0,0 4,0\n\nQSAVE\n");
  const auto time = fs::last_write_time(plan);
  const std::function<void()> changes[] = {
      [&] { std::ofstream(plan, std::ios::app) << "999\nmine\n"; },
      [&] { fs::last_write_time(plan, time - std::chrono::hours(1)); },
      [&] {
        fs::copy_file(older, folder / "new.dxf");
        fs::rename(folder / "new.dxf", plan);
      },
  };
  for (const auto& change : changes) {
    change();
    const std::string theirs = tests::fileText(plan);
    const host::Result<> result = run("LINE 0,0 5,0\n\nQSAVE\n");
    EXPECT_EQ(result.status(), host::RunStatus::OutputFailed);
    EXPECT_NE(
        result.message().find("plan.dxf: somebody else has changed the file since it was opened; it was not replaced"),
        std::string::npos)
        << result.message();
    EXPECT_EQ(app.saveDrawing(plan).status(), host::RunStatus::OutputFailed);
    EXPECT_TRUE(tests::fileText(plan) == theirs);
    EXPECT_TRUE(app.drawing()->isModified());
    // Somebody who is there is asked.
    type({"QSAVE", "", "QUIT", "Yes", "No"});
    EXPECT_TRUE(said(L"plan.dxf has been changed by somebody else since it was opened. Replace it all the same?"))
        << host::text::toUtf8(transcript);
    EXPECT_TRUE(tests::fileText(plan) == theirs);
    EXPECT_FALSE(app.quitRequested());
    type({"QSAVE", "Yes", "QSAVE"});
    EXPECT_FALSE(tests::fileText(plan) == theirs);
    EXPECT_FALSE(app.drawing()->isModified());
  }
  // Another name may be used at any time, whatever is there.
  std::ofstream(plan, std::ios::app) << "999\nmine\n";
  expectDone("SAVEAS " + older.string() + "\n");
}

TEST_F(Documents, ClosingAsksAsQuittingDoes) {
  const fs::path plan = folder / "plan.dxf";
  expectDone("LINE 0,0 1,0\n\nSAVEAS " + plan.string() + "\nCLOSE\nNEW\nCLOSE\n");
  ASSERT_TRUE(app.openDrawing(plan));
  expectDone("LINE 0,0 2,0\n\nCLOSE\nNo\n");
  EXPECT_TRUE(said(L"Really want to discard all changes to drawing? [Yes/No] <N>: No"));
  EXPECT_EQ(app.drawingFile(), plan) << "it stays open";
  EXPECT_EQ(app.unsavedDrawings(host::editor::Application::Current::Counts), std::vector<fs::path>{plan});
  EXPECT_TRUE(app.unsavedDrawings(host::editor::Application::Current::LeftOut).empty());
  expectFailure("CLOSE\n", "CLOSE waited for an answer");
  type({"CLOSE", "Cancel", "CLOSE", "\x1b"});
  EXPECT_EQ(app.drawingFile(), plan);
  type({"CLOSE", "No"});
  EXPECT_EQ(acDocManager->curDocument(), nullptr);
  ASSERT_TRUE(app.openDrawing(plan));
  EXPECT_EQ(entities().size(), 1U);
  type({"LINE", "0,0", "2,0", "", "CLOSE", ""});
  EXPECT_TRUE(said(L"Save changes to plan.dxf? [Yes/No/Cancel] <Y>: \nSaved ")) << host::text::toUtf8(transcript);
  ASSERT_TRUE(app.openDrawing(plan));
  EXPECT_EQ(entities().size(), 2U);
  expectDone("LINE 0,0 3,0\n\nCLOSE\nYes\n");
  EXPECT_EQ(acDocManager->curDocument(), nullptr);
}

TEST_F(Documents, SavesThatCannotBe) {
  host::Result<> result = run("SAVEAS " + folder.string() + "\n");
  EXPECT_EQ(result.status(), host::RunStatus::OutputFailed);
  EXPECT_NE(result.message().find("plan.scr:1: " + folder.string() + ": is a folder"), std::string::npos)
      << result.message();
  result = run("SAVEAS " + (folder / "none" / "plan.dxf").string() + "\n");
  EXPECT_EQ(result.status(), host::RunStatus::OutputFailed);
  result = run("SAVEAS " + (folder / "plan.dwg").string() + "\n");
  EXPECT_NE(result.message().find("must end in .dxf"), std::string::npos) << result.message();
  EXPECT_EQ(run("OPEN " + (folder / "none.dxf").string() + "\n").status(), host::RunStatus::DrawingUnreadable);
  EXPECT_TRUE(fs::is_empty(folder));
}

TEST_F(Documents, LocksNestAndCanBeRefused) {
  static std::vector<int> states;
  states.clear();
  const auto function = [] {
    AcApDocument* const document = acDocManager->curDocument();
    states.push_back(document->myLockMode());
    {
      const AcAxDocLock outer;
      const AcAxDocLock inner(acdbCurDwg());
      states.push_back(outer.lockStatus());
      states.push_back(document->myLockMode());
    }
    states.push_back(document->myLockMode());
  };
  command(L"LOCKS", function);
  command(L"SESSIONLOCKS", function, ACRX_CMD_SESSION);
  expectDone("LOCKS\n");
  EXPECT_EQ(states, (std::vector<int>{AcAp::kWrite, Acad::eOk, AcAp::kWrite, AcAp::kWrite}));
  states.clear();
  expectDone("SESSIONLOCKS\n");
  EXPECT_EQ(states, (std::vector<int>{AcAp::kNotLocked, Acad::eOk, AcAp::kWrite, AcAp::kNotLocked}));
  states.clear();
  app.refuseLocks(true);
  expectDone("SESSIONLOCKS\n");
  EXPECT_EQ(states, (std::vector<int>{AcAp::kNotLocked, Acad::eLockViolation, AcAp::kNotLocked, AcAp::kNotLocked}));
}

TEST_F(Documents, WhatCommandsLeaveBehindIsCleanedUpAndSaid) {
  command(L"LEAKS", [] {
    acDocManager->lockDocument(acDocManager->curDocument());
    AcDbObject* object = nullptr;
    acdbOpenAcDbObject(object, acdbCurDwg()->layerZero(), AcDb::kForWrite);
  });
  expectDone("LEAKS\n");
  EXPECT_EQ(problems.size(), 2U);
  EXPECT_EQ(acDocManager->curDocument()->myLockMode(), AcAp::kNotLocked);
  expectDone("LAYER C 3 0\n\n");  // the layer can be written to again
}

TEST_F(Documents, EditorReactorsHearOfCommandsVariablesAndLayouts) {
  class Listener : public AcEditorReactor {
   public:
    Listener() { acedEditor->addReactor(this); }
    ~Listener() override { acedEditor->removeReactor(this); }
    void commandWillStart(const ACHAR* name) override { log += std::wstring(L"start ") + name + L";"; }
    void commandEnded(const ACHAR* name) override { log += std::wstring(L"end ") + name + L";"; }
    void commandCancelled(const ACHAR* name) override { log += std::wstring(L"cancel ") + name + L";"; }
    void layoutSwitched(const ACHAR* name) override { log += std::wstring(L"layout ") + name + L";"; }
    void sysVarChanged(const ACHAR* name, Adesk::Boolean ok) override {
      log += (ok ? L"set " : L"kept ") + std::wstring(name) + L";";
    }
    std::wstring log;
  } listener;
  expectDone("LINE 0,0 ^C\nSETVAR ORTHOMODE 1\n");
  EXPECT_EQ(listener.log, L"start LINE;cancel LINE;start SETVAR;set ORTHOMODE;end SETVAR;");
  listener.log.clear();
  const auto layouts = app.drawing()->layouts();
  ASSERT_GE(layouts.size(), 2U);
  const std::wstring paper = layouts[1].first;
  expectDone("LAYOUT S \"" + host::text::toUtf8(paper) + "\"\nLINE 0,0 3,3\n\n");
  EXPECT_EQ(listener.log, L"start LAYOUT;layout " + paper + L";end LAYOUT;start LINE;end LINE;");
  EXPECT_EQ(app.currentLayoutName(), paper);
  EXPECT_EQ(entities().size(), 1U);
  ASSERT_TRUE(app.setVariable(L"TILEMODE", L"1"));
  EXPECT_EQ(entities().size(), 0U);
  expectFailure("LAYOUT S nowhere\n", "No layout is named \"nowhere\"; there are: Model");
}

TEST_F(Documents, FilesAreFoundInOrder) {
  const fs::path first = folder / "first", second = folder / "second";
  fs::create_directories(first);
  fs::create_directories(second);
  std::ofstream(second / "Colours.ini") << "b";
  expectDone("SAVEAS " + (first / "plan.dxf").string() + "\n");
  wchar_t path[1024] = L"";
  auto* const services = acdbHostApplicationServices();
  EXPECT_EQ(services->findFile(path, 1024, L"Colours.ini"), Acad::eFileNotFound);
  std::ofstream(first / "COLOURS.INI") << "a";
  // Beside the drawing, whatever the case of the name.
  ASSERT_EQ(services->findFile(path, 1024, L"colours.ini"), Acad::eOk);
  EXPECT_EQ(host::text::toUtf8(path), (first / "COLOURS.INI").string());
  EXPECT_EQ(services->findFile(path, 8, L"colours.ini"), Acad::eBufferTooSmall);
  const std::wstring full = host::text::fromUtf8((second / "Colours.ini").string());
  EXPECT_EQ(services->findFile(path, 1024, full.c_str()), Acad::eOk);
  EXPECT_EQ(acedGetAcadFrame()->GetSafeHwnd(), nullptr);
}

TEST_F(Documents, TooltipsComeFromMonitors) {
  class Monitor : public AcEdInputPointMonitor {
   public:
    Acad::ErrorStatus monitorInputPoint(bool& append, ACHAR*& text, AcGiViewportDraw*, AcApDocument* document, bool,
                                        int, const AcGePoint3d&, const AcGePoint3d&, const AcGePoint3d&,
                                        const AcGePoint3d&, const AcGePoint3d&, AcDb::OsnapMask,
                                        const AcArray<AcDbCustomOsnapMode*>&, AcDb::OsnapMask,
                                        const AcArray<AcDbCustomOsnapMode*>&, const AcArray<AcDbObjectId>& entities,
                                        const AcArrayObjectCopy<AcDbObjectIdArray>& nested,
                                        const AcArray<Adesk::GsMarker>&, const AcArray<AcDbObjectId>&,
                                        const AcArrayObjectCopy<AcDbObjectIdArray>&, const AcArray<Adesk::GsMarker>&,
                                        const AcArray<AcGeCurve3d*>&, const AcGePoint3d&, const ACHAR*) override {
      append = document == acDocManager->curDocument() && !entities.isEmpty() && nested.length() == entities.length();
      static wchar_t buffer[64];
      std::swprintf(buffer, 64, L"\n%d under the cursor", entities.length());
      text = buffer;
      return Acad::eOk;
    }
  } monitor;
  AcEdInputPointManager* const manager = acDocManager->curDocument()->inputPointManager();
  expectDone("LINE 0,0 10,0\n\nLINE 5,-5 5,5\n\nHOVER 5,0\n");
  EXPECT_TRUE(said(L"No tooltip."));
  ASSERT_EQ(manager->addPointMonitor(&monitor), Acad::eOk);
  expectDone("HOVER 5,0\nHOVER 1,0\nHOVER 9,9\n");
  EXPECT_TRUE(said(L"Specify point: 5,0\n2 under the cursor\n")) << host::text::toUtf8(transcript);
  EXPECT_TRUE(said(L"Specify point: 1,0\n1 under the cursor\n"));
  EXPECT_TRUE(said(L"Specify point: 9,9\nNo tooltip.\n"));
  EXPECT_EQ(app.tooltipAt({5, 5, 0}), L"1 under the cursor");
  EXPECT_EQ(manager->removePointMonitor(&monitor), Acad::eOk);
  EXPECT_EQ(manager->removePointMonitor(&monitor), Acad::eKeyNotFound);
}

// ---- modules --------------------------------------------------------------------------------------------------------

class ModuleFiles : public test::Host {
 protected:
  static std::string module(const char* name) { return std::string(kBinDir) + "/" + name + ".arx"; }
};

TEST_F(ModuleFiles, LoadTellUnloadAndLoadAgain) {
  for (int round = 0; round < 2; ++round) {
    expectDone("ARX L " + module("testmodule") + "\nTESTREPORT\n_raportti\nARX List\n");
    EXPECT_TRUE(said(L"seen 1 created 0")) << host::text::toUtf8(transcript);
    EXPECT_TRUE(said(L"testmodule.arx"));
    ASSERT_TRUE(app.newDrawing());
    expectDone("TESTREPORT\n");
    EXPECT_TRUE(said(L"seen 2 created 1")) << host::text::toUtf8(transcript);
    app.closeDrawing();
    problems.clear();
    expectDone("ARX U testmodule\n");
    // The command and the reactor it forgot would be called after its code is gone.
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_NE(problems[0].find("left 2 commands or reactors behind"), std::string::npos) << problems[0];
    EXPECT_TRUE(app.moduleNames().empty());
    expectFailure("TESTREPORT\n", "unknown command");
    expectFailure("TESTFORGOTTEN\n", "unknown command");
  }
}

TEST_F(ModuleFiles, Refusals) {
  const auto refusal = [this](const char* name) { return app.loadModule(module(name)).message(); };
  EXPECT_NE(refusal("testmodule_old").find("is made for interface version 19; this host has version 20"),
            std::string::npos);
  EXPECT_NE(refusal("testmodule_refuses").find("refused to start"), std::string::npos);
  EXPECT_NE(refusal("testmodule_throws").find("refused to start"), std::string::npos);
  ASSERT_FALSE(problems.empty());
  EXPECT_NE(problems[0].find("no licence"), std::string::npos);
  EXPECT_NE(refusal("no_such_module").find("no such module"), std::string::npos);
  const std::filesystem::path text = std::filesystem::path(testing::TempDir()) / "text.arx";
  std::ofstream(text) << "this is no library";
  EXPECT_NE(app.loadModule(text).message().find("cannot be loaded"), std::string::npos);
  EXPECT_NE(app.loadModule(std::string(kBinDir) + "/libtolmexhost.so").message().find("no acrxEntryPoint"),
            std::string::npos);
  EXPECT_TRUE(app.moduleNames().empty());
  expectFailure("ARX L " + text.string() + "\n", "plan.scr:1: ARX: ");
}

TEST_F(ModuleFiles, LockedAndForOneDrawingOnly) {
  ASSERT_TRUE(app.loadModule(module("testmodule_locked")));
  expectFailure("ARX U testmodule_locked\n", "the module is locked");
  EXPECT_NE(app.newDrawing().message().find("works with one open drawing only"), std::string::npos);
  app.closeDrawing();
  EXPECT_TRUE(app.newDrawing());
}

}  // namespace

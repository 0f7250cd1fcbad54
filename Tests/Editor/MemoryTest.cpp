// Memory that ends while commands run: the host stays usable, the drawing whole, and whoever typed goes on.
#include <filesystem>
#include <fstream>

#include "Faults/Allocations.h"
#include "OwnFolder.h"
#include "Support.h"
#include "acedCmdNF.h"
#include "acedads.h"
#include "dbapserv.h"
#include "dbsymtb.h"

namespace {

namespace fs = std::filesystem;
using tests::faults::Lasting;
using tests::faults::Whose;

constexpr const char* kPlan =
    "LAYER N talot,puut C 3 puut\n\nPLINE 0,0 10,0 10,10 0,10 C\nLINE 20,0 30,0 30,10\n\nLAYER S puut\n\nLINE 1,1 "
    "2,2\n\n";

class MemoryOf : public test::Host {
 protected:
  MemoryOf() {
    expectDone(kPlan);
    before_ = text();
    std::ofstream(folder_ / "plan.dxf", std::ios::binary) << before_;
    app.closeDrawing();
  }
  ~MemoryOf() override { tests::faults::off(); }

  std::string text() { return host::dxf::drawingText(*app.drawing()); }
  void reopen() {
    while (app.drawing() != nullptr) app.closeDrawing();
    ASSERT_TRUE(app.openDrawing(folder_ / "plan.dxf"));
  }

  /// Runs the script with every allocation failing in turn.
  void expectHarmless(const std::string& script) {
    SCOPED_TRACE(script);
    for (const Lasting lasting : {Lasting::One, Lasting::AllFromThere}) {
      std::unique_ptr<host::editor::ScriptInput> input;
      const int failures = tests::faults::forEachAllocation(
          lasting, Whose::Everybody,
          [&] {
            reopen();
            problems.clear();
            transcript.clear();
            input = std::make_unique<host::editor::ScriptInput>(script, "plan.scr");
          },
          [&] { std::ignore = app.run(*input); },
          [&](int n) {
            SCOPED_TRACE(n);
            if (HasFailure()) return;
            ASSERT_NE(app.drawing(), nullptr);
            for (const std::string& problem : problems)
              EXPECT_EQ(problem.find("left "), std::string::npos) << problem;  // locks, open objects
            const std::string after = text();
            AcDbDatabase again(false);
            const auto read = host::dxf::readDrawingText(host::database::databaseOf(&again), after, "after.dxf");
            EXPECT_TRUE(read.ok()) << read.message();
            EXPECT_TRUE(host::database::databaseOf(&again).problems().empty());
            while (app.drawing()->undo()) {
            }
            EXPECT_TRUE(text() == before_);
            EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), app.drawing()->facade());
            expectDone("LINE 5,5 6,6\n\nU\nSELECT ALL\n\n");
          });
      EXPECT_GT(failures, 10);
    }
  }

  const tests::OwnFolder own_;
  const fs::path& folder_ = own_.path;
  std::string before_;
};

TEST_F(MemoryOf, DrawingCommands) {
  expectHarmless("LINE 0,0 7,0 7,7\n\nPLINE 0,0 10,0 A 10,4 L 0,4 C\n");
  expectHarmless("ERASE C -1,-1 12,12\n\n");
}

TEST_F(MemoryOf, LayerCommands) {
  expectHarmless("LAYER N pensaat,kivet C 5 pensaat L Continuous kivet F talot LO kivet\n\nLAYER S kivet\n\n");
}

TEST_F(MemoryOf, Selections) { expectHarmless("SELECT W 0,0 12,12 5,0 F 0,5 30,5\n\nP\n\nLIST L\n\nZOOM E\n"); }

TEST_F(MemoryOf, UndoAndRedo) { expectHarmless("LINE 0,0 1,0\n\nERASE L\n\nU\nU\nREDO\nUNDO 1\n"); }

TEST_F(MemoryOf, CommandsInCommands) {
  command(L"OUTER", [] {
    acedCommandS(RTSTR, L"_.LINE", RTSTR, L"0,0", RTSTR, L"3,4", RTSTR, L"", RTNONE);
    ads_name set{};
    if (acedSSGet(L"X", nullptr, nullptr, nullptr, set) == RTNORM) acedSSFree(set);
  });
  expectHarmless("OUTER\n'SETVAR LTSCALE 2\nLINE 'ZOOM E\n0,0 1,1\n\n");
}

TEST_F(MemoryOf, SavingAndOpening) {
  std::ofstream(folder_ / "other.dxf", std::ios::binary) << before_;
  expectHarmless("LINE 0,0 1,0\n\nSAVEAS \"" + (folder_ / "copy.dxf").string() + "\"\n");
  expectHarmless("OPEN \"" + (folder_ / "other.dxf").string() + "\"\n");
}

// What somebody typed before memory ended can be saved afterwards, whatever the command was doing.
TEST_F(MemoryOf, SomebodyAtATerminalSavesTheWork) {
  const fs::path saved = folder_ / "saved.dxf";
  std::string wanted;
  const auto type = [&](int n) {
    reopen();
    fs::remove(saved);
    problems.clear();
    test::Typed typed(
        {"LINE 0,0 1,0", "", "PLINE 0,0 4,0 4,4", "", "ERASE L", "", "SAVEAS \"" + saved.string() + "\""});
    typed.before = [&](const std::string& line) {
      if (line.starts_with("PLINE")) tests::faults::failAllocation(n, Lasting::AllFromThere, Whose::Everybody);
      if (line.starts_with("SAVEAS")) tests::faults::off();
    };
    return app.run(typed);
  };
  const int kNever = 1 << 30;
  ASSERT_TRUE(type(kNever));
  ASSERT_TRUE(fs::exists(saved));
  for (int n = 1; n < 3000 && !HasFailure(); n = tests::faults::following(n)) {
    SCOPED_TRACE(n);
    std::ignore = type(n);
    tests::faults::off();
    ASSERT_TRUE(fs::exists(saved));
    AcDbDatabase again(false);
    const auto& drawing = host::database::databaseOf(&again);
    ASSERT_TRUE(host::dxf::readDrawing(host::database::databaseOf(&again), saved).ok());
    EXPECT_TRUE(drawing.problems().empty());
    EXPECT_GE(drawing.modelSpace().entities.size(), 5U);  // the line typed before is there
  }
}

}  // namespace

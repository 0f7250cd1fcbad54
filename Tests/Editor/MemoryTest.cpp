// Memory that ends while commands run: the host stays usable, the drawing whole, and whoever typed goes on.
#include <filesystem>
#include <fstream>

#include "Faults/Allocations.h"
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

/// Lines of somebody who can be asked again; each is taken with what `before` does.
class Typed final : public host::editor::LineInput {
 public:
  explicit Typed(std::vector<std::wstring> lines) : lines_(std::move(lines)) {}
  bool isInteractive() const override { return true; }
  std::function<void(const std::wstring& line)> before;

 protected:
  std::optional<std::wstring> readLine(const host::editor::Question&) override {
    if (next_ == lines_.size()) return std::nullopt;
    if (before) before(lines_[next_]);
    return lines_[next_++];
  }

 private:
  std::vector<std::wstring> lines_;
  std::size_t next_ = 0;
};

class MemoryOf : public test::Host {
 protected:
  MemoryOf() : folder_(fs::temp_directory_path() / ("tolmex-editor-memory-" + std::to_string(::getpid()))) {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    expectDone(kPlan);
    before_ = text();
    std::ofstream(folder_ / "plan.dxf", std::ios::binary) << before_;
    app.closeDrawing();
  }
  ~MemoryOf() override {
    tests::faults::off();
    fs::remove_all(folder_);
  }

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

  fs::path folder_;
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
    Typed typed(
        {L"LINE 0,0 1,0", L"", L"PLINE 0,0 4,0 4,4", L"", L"ERASE L", L"", L"SAVEAS \"" + saved.wstring() + L"\""});
    typed.before = [&](const std::wstring& line) {
      if (line.starts_with(L"PLINE")) tests::faults::failAllocation(n, Lasting::AllFromThere, Whose::Everybody);
      if (line.starts_with(L"SAVEAS")) tests::faults::off();
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

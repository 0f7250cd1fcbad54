// Failures made on purpose: what the user is told, that the drawing is unharmed, that the next command works.
#include <gmock/gmock.h>

#include <stdexcept>

#include "Illustration/Plan.h"
#include "OrvLib/Reports/Failures.h"
#include "OrvLib/Reports/MessageDialog.h"
#include "Reports/Faults.h"
#include "aced.h"

namespace {

using namespace tests;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

class Failures : public Plan {
 protected:
  ~Failures() override {
    faults::messageBox = nullptr;
    faults::newRbFails = false;
    faults::off();
    acedRegCmds->removeGroup(L"TEST");
  }
  /// What is told of a failure in a command, and that the command's script goes on.
  std::string told(void (*body)()) {
    acedRegCmds->addCommand(L"TEST", L"FAIL", L"FAIL", ACRX_CMD_MODAL, body);
    const std::string all = run("FAIL\nPLINE\n0,0\n10,0\n10,10\nC\n");
    acedRegCmds->removeGroup(L"TEST");
    EXPECT_FALSE(living(DxfType::LwPolyline).empty());
    return all.substr(0, all.find("PLINE"));
  }
};

// ---- the reports ----------------------------------------------------------------------------------------------------

TEST_F(Failures, EachIsToldInItsOwnForm) {
  using namespace OrvLib;
  EXPECT_THAT(told([] { guarded([] { throw OrvExpAcad(L"ads_newrb() failed."); }); }),
              HasSubstr("[Error] ads_newrb() failed.\n\n(Error location: FailuresTest.cpp:"));
  EXPECT_THAT(told([] { guarded([] { throw std::runtime_error("räystäs"); }); }),
              testing::ContainsRegex("\\[Error\\] Exception \"räystäs\" at line [0-9]+ in file FailuresTest.cpp.\n"));
  EXPECT_THAT(told([] { guarded([] { throw 7; }); }), HasSubstr("Exception \"unknown error\" at line "));
  EXPECT_THAT(told([] { guarded([] { throw OrvExpActionCancelled(); }); }),
              testing::AllOf(HasSubstr("\nUser cancelled the action.\n"), Not(HasSubstr("["))));
  EXPECT_THAT(told([] {
                reportFailure(static_cast<const wchar_t*>(nullptr), {"a/b\\c.cpp", 12});
              }),
              HasSubstr("Exception \"unknown error\" at line 12 in file c.cpp."));
}

TEST_F(Failures, LongMessagesAreCutAndNeverLost) {
  static std::wstring boxed;
  using namespace OrvLib;
  faults::messageBox = [](const std::wstring& text, const std::wstring&, UINT) {
    boxed = text;
    return IDOK;
  };
  told([] { guarded([] { throw std::runtime_error(std::string(5000, 'x')); }); });
  EXPECT_EQ(boxed.size(), 1999U);
  EXPECT_EQ(OrvExpAcad(std::wstring(5000, L'x')).message().size(), 4096U);
  faults::messageBox = nullptr;
  const std::string all = told([] { guarded([] { throw OrvExpAcad(std::wstring(5000, L'x')); }); });
  EXPECT_EQ(std::count(all.begin(), all.end(), 'x'), 1999);
}

TEST_F(Failures, TheMessageDialogOffersWhatItIsGiven) {
  static std::optional<OrvLib::MessageDialogAnswer> answer;
  static OrvLib::MessageDialogForm form;
  static std::wstring text;
  const auto ask = [this](const std::string& lines) {
    acedRegCmds->addCommand(L"TEST", L"ASK", L"ASK", ACRX_CMD_MODAL,
                            [] { answer = OrvLib::showMessageDialog(L"Kysymys", text, form); });
    run("ASK\n" + lines);
    acedRegCmds->removeGroup(L"TEST");
    return answer ? static_cast<int>(answer->button) : -1;
  };
  text = L"a && b & c\nä";
  form = {OrvLib::kYesButton | OrvLib::kCancelButton | OrvLib::kContinueButton | OrvLib::kExitButton, true};
  EXPECT_EQ(ask("LIST\nPICTURE \"" + (folder_ / "ask.png").string() + "\"\nYes\n"), OrvLib::kYesButton);
  EXPECT_THAT(transcript_, HasSubstr("edit \"a && b & c\nä\""));
  EXPECT_FALSE(answer->neverAgain);
  EXPECT_EQ(ask("1003 on\nExit\n"), OrvLib::kExitButton);
  EXPECT_TRUE(answer->neverAgain);
  EXPECT_EQ(ask("Continue\n"), OrvLib::kContinueButton);
  EXPECT_EQ(ask("^C\n"), OrvLib::kCancelButton);
  EXPECT_EQ(ask("\n"), OrvLib::kYesButton);  // Enter: the first
  form = {OrvLib::kYesButton | OrvLib::kExitButton, false};
  EXPECT_EQ(ask("^C\n"), OrvLib::kExitButton);
  form = {};
  text = std::wstring(3000, L'\n');
  EXPECT_EQ(ask(""), OrvLib::kContinueButton);  // nothing to ask: no line is taken
}

TEST_F(Failures, HelpersNameThePlaceOnTheCommandLine) {
  EXPECT_THAT(told([] {
                OrvLib::printFailed(nullptr, nullptr, {"x/OrvLib/ARX/GenARX.cpp", 3});
              }),
              HasSubstr("failed ARX/GenARX.cpp:3\n"));
  EXPECT_THAT(told([] {
                OrvLib::printFailed(L"a", nullptr, {"GenARX.cpp", 3});
              }),
              HasSubstr("failed GenARX.cpp:3 a\n"));
  EXPECT_THAT(told([] { OrvLib::printFailed(L"a", L"b", {"GenARX.cpp", 3}); }), HasSubstr("failed GenARX.cpp:3 a/b\n"));
}

// ---- out of memory --------------------------------------------------------------------------------------------------

struct Box {
  std::wstring text, caption;
  UINT type;
};

/// The boxes of an out-of-memory report whose first one is answered so.
std::vector<Box> boxesAnswered(int answer) {
  std::vector<Box> boxes;
  faults::messageBox = [&](const std::wstring& text, const std::wstring& caption, UINT type) {
    boxes.push_back({text, caption, type});
    return answer;
  };
  OrvLib::guarded([] { throw std::bad_alloc(); }, {"Projects/Tolmex/tolmexCommands.cpp", 84});
  faults::messageBox = nullptr;
  return boxes;
}

TEST_F(Failures, OutOfMemoryOffersTheFigures) {
  SetLastError(ERROR_INVALID_DATA);
  const std::vector<Box> boxes = boxesAnswered(6);
  ASSERT_EQ(boxes.size(), 2U);
  EXPECT_EQ(boxes[0].text,
            L"Not enough memory to perform the current operation.\nIt's recommended to upgrade your PC with more "
            L"memory.\n\nPress CONTINUE to get more information.\n");
  EXPECT_EQ(boxes[0].caption, L"Out of memory");
  EXPECT_EQ(boxes[0].type, 58U);
  EXPECT_EQ(boxes[1].caption, L"Out of memory");
  EXPECT_EQ(boxes[1].type, 48U);
  const std::string figure = " *[0-9]+ [KMGTPE]?B ";
  EXPECT_THAT(host::text::toUtf8(boxes[1].text),
              MatchesRegex("\nOut of memory at line 84 in file Tolmex/tolmexCommands.cpp.\n\n"
                           "[0-9]+ percent of memory is in use.\n" +
                           figure + "total physical memory.\n" + figure + "of physical memory free.\n" + figure +
                           "total paging file size.\n" + figure + "of paging file free.\n" + figure +
                           "total virtual memory.\n" + figure + "of virtual memory free.\n\n" +
                           "WIN32 last error code was:\n   The data is invalid.\n\n"));
}

TEST_F(Failures, OtherAnswersShowNoFiguresAndABoxNotShownGivesWayToThePlainReport) {
  for (const int answer : {IDOK, IDNO, IDCONTINUE}) EXPECT_EQ(boxesAnswered(answer).size(), 1U) << answer;
  const std::vector<Box> boxes = boxesAnswered(0);
  ASSERT_EQ(boxes.size(), 2U);
  EXPECT_EQ(boxes[1].text, L"\nException \"Out of memory\" at line 84 in file Tolmex/tolmexCommands.cpp.\n");
  EXPECT_EQ(boxes[1].caption, L"Error");
  EXPECT_EQ(boxes[1].type, 0U);
  EXPECT_THAT(told([] { OrvLib::guarded([] { throw OrvLib::OrvExpNoMem(L"malloc() failed"); }); }),
              HasSubstr("[Error] Exception \"malloc() failed\" at line "));
}

TEST_F(Failures, TheMachinesFiguresAreTheKernels) {
  MEMORYSTATUSEX status{};
  EXPECT_EQ(GlobalMemoryStatusEx(&status), FALSE);
  status.dwLength = sizeof(status);
  ASSERT_EQ(GlobalMemoryStatusEx(&status), TRUE);
  std::ifstream in("/proc/meminfo");
  std::string name;
  std::uint64_t kilobytes = 0;
  in >> name >> kilobytes;
  EXPECT_EQ(name, "MemTotal:");
  EXPECT_EQ(status.ullTotalPhys, kilobytes * 1024);
  EXPECT_LT(status.ullAvailPhys, status.ullTotalPhys);
  EXPECT_GE(status.ullTotalPageFile, status.ullTotalPhys);
}

// ---- in the plug-in's commands --------------------------------------------------------------------------------------

TEST_F(Failures, AHostCallThatFailsEndsItsCommandAlone) {
  run("PLINE\n0,0\n10,0\n10,10\nC\n");
  run("TLM_MUOK_SORA\n\n");  // the drawing is prepared
  faults::newRbFails = true;
  EXPECT_THAT(run("TLM_MUOK_ASFALTTI\nALL\n\n"),
              HasSubstr("[Error] ads_newrb() failed.\n\n(Error location: ARX/AdsResbuf.cpp:"));
  faults::newRbFails = false;
  run("TLM_MUOK_NURMIKKO\nALL\n\n");
  EXPECT_EQ(tagValue(*last(DxfType::LwPolyline), "ENTITYTYPE"), "Nurmialue");
  reopen();
}

TEST_F(Failures, ACursorMonitorTellsOnlyOnce) {
  run("PLINE\n0,0\n10,0\n10,10\nC\nTLM_MUOK_ASFALTTI\nALL\n\n");
  faults::failAllocation(1, faults::Lasting::AllFromThere, faults::Whose::PlugIn);
  const std::string first = run("HOVER\n5,0\n");
  const std::string second = run("HOVER\n5,0\n");
  faults::off();
  EXPECT_THAT(first, HasSubstr("Not enough memory"));
  EXPECT_THAT(second, testing::AllOf(Not(HasSubstr("[")), HasSubstr("No tooltip.")));
  EXPECT_THAT(run("HOVER\n5,0\n"), HasSubstr("Asfaltti"));
}

/// Lets the allocations of a command fail in turn, the plug-in's alone and with the host's. Each failure is told,
/// leaves a drawing that can be saved and read and that undo takes back to what was opened, to the byte; and the same
/// command done again has the effect that it has in an untroubled drawing.
class EveryAllocation : public Failures {
 protected:
  void expectHarmless(const std::string& command) {
    for (const faults::Whose whose : {faults::Whose::PlugIn, faults::Whose::Everybody}) {
      for (const faults::Lasting lasting : {faults::Lasting::One, faults::Lasting::AllFromThere})
        expectHarmless(command, whose, lasting);
    }
  }

 private:
  void expectHarmless(const std::string& command, faults::Whose whose, faults::Lasting lasting) {
    constexpr const char* kTold =
        "\\[Error\\] (Exception \"Out of memory\" at line |Allocation of |Initialization of )|"
        "\\[(Error|Out of memory)\\] Not enough memory|"
        "\\[tolmex\\] A message handler failed: there is not enough memory";  // MFC's own
    SCOPED_TRACE(whose == faults::Whose::PlugIn ? "the plug-in's" : "everybody's");
    SCOPED_TRACE(lasting == faults::Lasting::One ? "one" : "all from there");
    const std::string before = text();
    reopen();
    run(command);
    const std::size_t hatches = living(DxfType::Hatch).size();
    const std::string untroubled = text();
    host::Result<> result;
    std::unique_ptr<host::editor::ScriptInput> input;
    const int failed = faults::forEachAllocation(
        lasting, whose,
        [&] {
          openText(before);
          transcript_.clear();
          problems_.clear();
          input = std::make_unique<host::editor::ScriptInput>(command, "test.scr");
        },
        [&] { result = application_.run(*input); },
        [&](int n) {
          if (HasFailure()) return;
          SCOPED_TRACE(n);
          const std::string after = text();
          // Where no memory is left at all nobody can be told. The host tells of its own failures by the script's end.
          const bool canBeTold = lasting == faults::Lasting::One || whose == faults::Whose::PlugIn;
          if (canBeTold && result && problems_.empty() && after != untroubled) {
            EXPECT_THAT(transcript_, testing::ContainsRegex(kTold));
          }
          while (drawing().undo()) {
          }
          EXPECT_TRUE(text() == before);
          openText(after);
          EXPECT_EQ(drawing().problems().size(), 0U);
          EXPECT_EQ(application_.openSelectionSets(), 0U);
          const auto again = tryRun(command);
          EXPECT_TRUE(again) << again.message() << "\n" << transcript_;
          EXPECT_THAT(transcript_, Not(testing::ContainsRegex(kTold)));
          EXPECT_GE(living(DxfType::Hatch).size(), hatches);
        });
    EXPECT_GT(failed, 5);
    openText(before);
  }
};

TEST_F(EveryAllocation, OfAnAreaCommand) {
  run("PLINE\n0,0\n10,0\n10,10\nC\n");
  expectHarmless("TLM_MUOK_ASFALTTI\nALL\n\n");
}

TEST_F(EveryAllocation, OfDialogs) {
  run("PLINE\n0,0\n10,0\n10,10\n0,10\nC\n");
  expectHarmless("TLM_MUOK_RAKENNUS\nALL\n\n30211 2\n30206 3\n30207 0.5\n30208 0.4\nOK\n");
  expectHarmless("TLM_MUOK_VARIT\n30224 7\n30228 105\nOK\n");
}

TEST_F(EveryAllocation, OfTheShadows) {
  run("PLINE\n0,0\n10,0\n10,10\n0,10\nC\n");
  run("TLM_MUOK_RAKENNUS\nALL\n\n30211 2\n30206 3\n30207 0.5\n30208 0.4\nOK\n");
  expectHarmless("TLM_VARJO_PAIVITA\n");
}

}  // namespace

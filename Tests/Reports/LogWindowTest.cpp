// The log window and its settings, worked by scripts; the module runs in the host.
#include <gmock/gmock.h>

#include "Illustration/Plan.h"
#include "Reports/Exports.h"
#include "windows.h"

namespace {

using namespace tests;
using testing::HasSubstr;
using testing::Not;

constexpr int kLog = 1007;
constexpr int kBeside = 1008;

class LogWindow : public Plan {
 protected:
  LogWindow() {
    log.set(0);
    log.setFile((folder_ / "a.log").wstring().c_str());
  }
  ~LogWindow() override {
    if (log.library == nullptr) return;
    log.set(0);
    log.setFile(L"");
  }
  /// One action on the window.
  static std::string act(const std::string& line) { return "DIALOG\ntest_reports DEBUG LOG\n" + line + "\n"; }
  std::string picture(const char* name) { return "PICTURE \"" + (folder_ / name).string() + "\""; }
  /// "log" or the text beside it, as LIST shows it.
  std::string shown(int id) {
    const std::string all = run(act("LIST"));
    const std::string begin = "  " + std::to_string(id) + " edit \"";
    const std::size_t at = all.find(begin);
    if (at == std::string::npos) return "not found";
    const std::size_t from = at + begin.size();
    return all.substr(from, all.find("\"\n", from) - from);
  }

  Exports log;
};

TEST_F(LogWindow, TextsAreAppendedAndTheCommandsGoOn) {
  EXPECT_EQ(log.printTo(32, L"yksi\nkaksi "), 11);
  run("PLINE\n0,0\n10,0\n10,10\nC\n");
  EXPECT_EQ(log.printTo(32, L"ja %s\n", L"räystäs"), 11);
  EXPECT_EQ(shown(kLog), "yksi\nkaksi ja räystäs\n");
  EXPECT_EQ(shown(kBeside), "");
  EXPECT_EQ(living(DxfType::LwPolyline).size(), 1U);
}

TEST_F(LogWindow, TheTextsShareTheWindowAboveTheButtons) {
  log.printTo(32, L"x");
  const HWND window = GetActiveWindow();
  ASSERT_NE(window, nullptr);
  for (const int width : {900, 300, 40}) {
    MoveWindow(window, 0, 0, width, 400, TRUE);
    RECT left{}, right{};
    GetClientRect(GetDlgItem(window, kLog), &left);
    GetClientRect(GetDlgItem(window, kBeside), &right);
    EXPECT_EQ(left.right, width * 2 / 3);
    EXPECT_EQ(left.right + right.right, width);
    EXPECT_EQ(left.bottom, 360);
    EXPECT_EQ(right.bottom, 360);
  }
  MoveWindow(window, 0, 0, 300, 10, TRUE);
  RECT low{};
  GetClientRect(GetDlgItem(window, kLog), &low);
  EXPECT_EQ(low.bottom, 0);
}

TEST_F(LogWindow, ClosedItComesBackEmpty) {
  log.printTo(32, L"first\n");
  run(act("Close"));
  const auto gone = tryRun(act("LIST"));
  EXPECT_THAT(gone.message(), HasSubstr("no dialog \"test_reports DEBUG LOG\" is open"));
  log.printTo(32, L"second\n");
  EXPECT_EQ(shown(kLog), "second\n");
}

TEST_F(LogWindow, ClearCallbackAndSave) {
  log.printTo(32, L"yksi\nkaksi ä\n");
  run(act("Callback"));
  EXPECT_THAT(shown(kBeside), HasSubstr("percent of memory is in use."));
  EXPECT_THAT(shown(kBeside), HasSubstr("a.log"));
  const std::string file = (folder_ / "saved").string();
  // Without an ending it gets one; what is there already stays.
  EXPECT_THAT(run(act("Save...") + file + "\n"), HasSubstr("[Siellä lepää.] Log saved."));
  run(act("Save...") + "\"" + file + ".log\"\n");
  EXPECT_EQ(fileText(file + ".log"), "yksi\nkaksi ä\nyksi\nkaksi ä\n");
  EXPECT_THAT(run(act("Save...") + (folder_ / "no/such/folder.log").string() + "\n"),
              HasSubstr("[bummer] Saving failed."));
  EXPECT_THAT(run(act("Save...") + "^C\n"), Not(HasSubstr("[")));
  run(act("Clear"));
  EXPECT_EQ(shown(kLog) + shown(kBeside), "");
  EXPECT_THAT(tryRun(act("Save...")).message(), HasSubstr("file question \"Save As\" was left without an answer"));
}

TEST_F(LogWindow, OnTopAndLowPriorityExcludeEachOther) {
  log.printTo(32, L"x\n");
  EXPECT_THAT(run(act("1005 on") + act("LIST")), HasSubstr("always on top\", on"));
  const std::string low = run(act("1006 on") + act("LIST"));
  EXPECT_THAT(low, HasSubstr("low priority\", on"));
  EXPECT_THAT(low, Not(HasSubstr("always on top\", on")));
  EXPECT_THAT(run(act("1006 off") + act("LIST")), Not(HasSubstr(", on")));
  EXPECT_EQ(shown(kLog), "x\n");
}

TEST_F(LogWindow, SettingsChangeModeStampsAndFile) {
  log.printTo(32, L"x\n");
  log.set(32 | 256);  // the console has no check box and stays
  log.remove(256);
  log.add(8);
  const std::string listed = run(act("Settings..") + "LIST\n1110 off\n1112 on\n1114 off\n1102 on\n1101 3\n1103 " +
                                 (folder_ / "b.log").string() + "\nOk!\n");
  EXPECT_THAT(listed, HasSubstr("dialog \"DEBUG LOG settings...\":"));
  EXPECT_THAT(listed, HasSubstr("1101 edit \"2147483647\""));
  EXPECT_THAT(listed, HasSubstr("\"MFC dialog\", on"));
  EXPECT_THAT(listed, HasSubstr("\"DevStudio debug window\"\n"));
  EXPECT_THAT(fileText(folder_ / "b.log"), HasSubstr("---- ran at"));  // begun at once
  EXPECT_EQ(log.print(L"stamped\n"), 8 + 26);
  EXPECT_THAT(fileText(folder_ / "b.log"), testing::ContainsRegex("\n<[0-9.]+ [0-9:]+\\.[0-9][0-9][0-9]> stamped\n"));
  const std::string again = run(act("Settings..") + "LIST\n1102 off\n1101 2147483647\nOk!\n");
  EXPECT_THAT(again, HasSubstr("1101 edit \"3\""));
  EXPECT_THAT(again, HasSubstr("\"Log file\", on"));
}

TEST_F(LogWindow, AFileNameThatCannotBeUsedIsToldAtOnce) {
  log.printTo(32, L"x\n");
  log.set(4);
  log.print(L"x\n");
  const std::string bad = "1103 " + (folder_ / "none" / "b.log").string() + "\nOk!\n";
  EXPECT_THAT(run(act("Settings..") + bad), HasSubstr("[No niin tietysti.] Invalid log file name; unable to open."));
  EXPECT_THAT(fileText(folder_ / "a.log"), HasSubstr("---- End of debug session"));
  // Without the destination nothing is opened, so nothing can fail. Esc changes nothing.
  log.set(0);
  EXPECT_THAT(run(act("Settings..") + "1103 /none/x.log\nOk!\n"), Not(HasSubstr("[")));
  run(act("Settings..") + "1110 on\n^C\n");
  EXPECT_EQ(log.print(L"x\n"), 0);
}

TEST_F(LogWindow, UnloadingTheModuleTakesTheWindowAlong) {
  log.printTo(32, L"x\n");
  const HWND window = GetActiveWindow();
  ASSERT_NE(window, nullptr);
  log.unload();
  ASSERT_TRUE(application_.unloadModule(L"tolmex"));
  EXPECT_EQ(IsWindow(window), FALSE);
  EXPECT_THAT(tryRun(act("LIST")).message(), HasSubstr("no dialog"));
}

}  // namespace

// `shell` at a terminal and at a pipe.
#include <poll.h>
#include <pty.h>

#include "Support.h"

using namespace tests;
using testing::HasSubstr;

namespace {

class Shell : public Program {
 protected:
  ~Shell() override {
    if (child > 0) {
      ::kill(child, SIGKILL);
      ::waitpid(child, nullptr, 0);
    }
  }

  void open(const Arguments& arguments) {
    child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child != 0) return;
    ::setenv("TERM", "xterm", 1);
    ::setenv("XDG_STATE_HOME", folder.c_str(), 1);
    if (::chdir(folder.c_str()) != 0) ::_exit(121);
    const std::string program = std::string(kBinDir) + "/tolmex";
    std::vector<char*> argv{const_cast<char*>(program.c_str()), const_cast<char*>("shell")};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    ::execv(argv[0], argv.data());
    ::_exit(127);
  }

  /// Waits until the screen shows the text, then presses the keys. What was shown before is past.
  void at(const std::string& text, const std::string& keys) {
    if (HasFatalFailure()) return;
    while (fresh.find(text) == std::string::npos) {
      ASSERT_TRUE(more()) << "waited for " << text << "\nshown: " << all;
    }
    // Prompts stand there twice: as they are printed, and as the line editor shows them.
    while (more(50)) {
    }
    fresh.clear();
    ASSERT_EQ(::write(terminal, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  }

  /// The same once the line editor has shown the prompt: only then do keys reach it and not the terminal.
  void atPrompt(const std::string& prompt, const std::string& keys) { at("\r\x1b[K" + prompt, keys); }

  int end() {
    while (more()) {
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    child = 0;
    ::close(terminal);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

  pid_t child = 0;
  int terminal = -1;
  std::string all, fresh;

 private:
  bool more(int patienceMs = 20000) {
    pollfd ready{terminal, POLLIN, 0};
    std::array<char, 4096> buffer{};
    if (::poll(&ready, 1, patienceMs) != 1) return false;
    const ssize_t count = ::read(terminal, buffer.data(), buffer.size());
    if (count <= 0) return false;
    all.append(buffer.data(), static_cast<std::size_t>(count));
    fresh.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
  }
};

TEST_F(Shell, TakesCommandsKeysAndDialogsOfATerminal) {
  open({"plan.dxf"});
  atPrompt("Command: ", "TLM_MUOK_PEN\t");
  at("SAS", "\r");
  at("Select objects: ", "(handent \"290\")\r");
  at("1 found", "\r");
  at("Command: ", "LINE 0,0 1,1\r");
  atPrompt("Specify next point or [Undo]: ", "\x1b");  // Esc alone
  at("*Cancel*", "LINE\r");
  atPrompt("Specify first point: ", "\x03");  // Ctrl+C
  at("*Cancel*", "LINE\r");
  atPrompt("Specify first point: ", "\x04");  // Ctrl+D leaves the command, not the program
  at("*Cancel*", "harja\t");                  // from the midst of a name
  at("TLM_MUOK_HARJAVIIVA", "\x03");
  atPrompt("Command: ", "?\r");
  at("  ERASE       erases objects", "REGENN\r");
  at("Unknown command \"REGENN\".  Nearest: REGEN.", "TLM_MUOK_RAKENNUS (handent \"2C0\")\r");
  at("Select objects: ", "\r");
  at("30211 edit \"\"", "nonsense\r");  // the controls were listed unasked
  at("has no control \"nonsense\"", "30211 2\r");
  at("dialog", "30206 3\r");
  at("dialog", "30207 0.5\r");
  at("dialog", "30208 0\r");
  at("dialog", "OK\r");
  at("Command: ", "U\r");
  atPrompt("Command: ", "\x04");
  at("Save changes to plan.dxf? [Yes/No/Cancel]", "c\r");
  atPrompt("Command: ", "\x1b[A\x1b[A\r");  // the line before the last answer
  at("Command: ", "quit\r");
  at("Save changes to plan.dxf? [Yes/No/Cancel]", "\r");
  EXPECT_EQ(end(), 0) << all;
  EXPECT_THAT(all, testing::StartsWith("tolmex 1.0, plan.dxf\r\nHELP lists the commands"));
  EXPECT_THAT(all, HasSubstr("U\r\nTLM_MUOK_RAKENNUS\r\n"));
  EXPECT_THAT(all, testing::Not(HasSubstr("tolmex: "))) << "what the transcript says is not said twice";
  EXPECT_THAT(call({"info", "plan.dxf"}).out, HasSubstr("Pensas            1, 1 with a fill\n"));
  EXPECT_THAT(call({"info", "plan.dxf"}).out, testing::Not(HasSubstr("buildings")));
  EXPECT_THAT(read("tolmex/history"), HasSubstr("TLM_MUOK_PENSAS\n"));
  EXPECT_EQ(fs::status(folder / "tolmex/history").permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Shell, ReadsAPipe) {
  write("lines", "NOSUCH\nLINE 0,0 5,5\n\nQUIT\nCancel\nQUIT\nNo\nREGEN\n");
  const Outcome left = call({"shell", "plan.dxf", "--out", "a.dxf"}, {.standardIn = "lines"});
  EXPECT_EQ(left.status, 3);
  EXPECT_EQ(left.err, "tolmex: standard input:1: unknown command \"NOSUCH\"\n");
  EXPECT_THAT(left.out, testing::EndsWith("Save changes to plan.dxf? [Yes/No/Cancel] <Y>: No\n"));
  EXPECT_TRUE(read("plan.dxf") == read(kPlan));
  EXPECT_GT(read("a.dxf").size(), read("plan.dxf").size()) << "a failure does not end the work";
  // One U takes a whole script back; a pick of the script that finds nothing is no failure of the call.
  write("two.scr", "LINE 0,0 5,5\n\nLINE 0,0 6,6\n\nSELECT 9000000,1\n\n");
  write("lines", "SCRIPT two.scr\nU\nLIST ALL\n\n");
  const Outcome undone = call({"shell", "plan.dxf"}, {.standardIn = "lines"});
  EXPECT_EQ(undone.status, 0);
  EXPECT_THAT(undone.out, HasSubstr("Command: U\nSCRIPT two.scr\nCommand: LIST\n"));
  EXPECT_THAT(undone.out, testing::Not(HasSubstr("from 0,0,0 to"))) << "both lines are gone";
  EXPECT_THAT(undone.err, testing::StartsWith("tolmex: two.scr:5: SELECT: nothing found at 9000000,1\n"));
  write("lines", "LINE 0,0 5,5\n\n");
  EXPECT_EQ(call({"shell", "plan.dxf", "--quiet"}, {.standardIn = "lines"}),
            (Outcome{0, "", "tolmex: plan.dxf: the input ended; changes were not saved\n"}));
  EXPECT_EQ(call({"shell", "-"}),
            (Outcome{1, "", "tolmex: -: shell reads commands from standard input; name the drawing's file\n"}));
}

}  // namespace

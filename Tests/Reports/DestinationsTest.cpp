// The debug log from outside: the module is loaded and its functions called as another module would.
#include <gmock/gmock.h>
#include <pty.h>
#include <sys/resource.h>

#include <cstdlib>
#include <sstream>

#include "Editor/Application.h"
#include "OrvLib/Reports/DebugLog.h"
#include "Places.h"
#include "Reports/Exports.h"
#include "Text/Text.h"

namespace {

using namespace tests;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

constexpr const char* kHeader =
    "--------------------------------------------------\n"
    "---- test_reports debug log\n"
    "---- executable: /[^\n]*/test_reports \\(PID [0-9]+\\)\n"
    "---- system: Linux [0-9]+\\.[0-9]+\\.[0-9]+\n"
    "---- ran at [0-9][0-9]\\.[0-9][0-9]\\.20[0-9][0-9] [0-9][0-9]:[0-9][0-9]:[0-9][0-9]\\.[0-9][0-9][0-9]\n"
    "--------------------------------------------------\n\n";
constexpr const char* kFooter =
    "--------------------------------------------------\n"
    "---- End of debug session\n"
    "---- execution finished at [0-9. :]+\n"
    "--------------------------------------------------\n\n";

class Destinations : public InFolder {
 protected:
  std::wstring fileName(const char* name = "a.log") const { return (folder / name).wstring(); }
};

TEST_F(Destinations, StreamsTakeUtf8BesideTheProgramsOwnTextAndResultsAreSummed) {
  const Outcome outcome = inProcess([] {
    Exports log;
    std::vector<int> results{log.print(L"nobody hears %d\n", 1)};
    std::printf("before\n");
    log.set(1);
    results.push_back(log.print(L"pensas %s %5.1f\n", L"räystäs", 2.5));
    std::printf("between\n");
    log.add(2);
    log.remove(1);
    results.push_back(log.print(L"virhe %d\n", 7));
    results.push_back(log.printTo(3, L"abc\n"));  // for this message only
    log.set(128);
    results.push_back(log.print(L"one\ntwo ") + log.print(L"more\n"));
    log.remove(0xFFFFFFFF);
    results.push_back(log.print(L"fg"));
    for (const int result : results) std::printf("%d ", result);
    return 0;
  });
  EXPECT_EQ(outcome, (Outcome{0, "before\npensas räystäs   2.5\nbetween\nabc\n0 21 8 8 13 0 ",
                              "virhe 7\nabc\ndebugger: one\ndebugger: two more\n"}));
}

TEST_F(Destinations, AFileHasHeaderTextAndFooterAndIsContinued) {
  for (const char* const second : {"b.log", "c.log"}) {
    const Outcome outcome = inProcess([&] {
      Exports log;
      log.setFile(fileName().c_str());
      if (log.printTo(4, L"yksi\n") != 5 || log.printTo(4, L"kaksi %s\n", L"äö") != 9) return 2;
      log.setFile(fileName(second).c_str());
      if (fs::exists(folder / second)) return 3;  // begun by its first message only
      if (log.printTo(4, L"kolme\n") != 6) return 4;
      log.unload();
      return 0;
    });
    EXPECT_EQ(outcome, (Outcome{0, "", ""}));
    EXPECT_THAT(fileText(folder / second), MatchesRegex(std::string(kHeader) + "kolme\n" + kFooter));
  }
  const std::string once = std::string(kHeader) + "yksi\nkaksi äö\n" + kFooter;
  EXPECT_THAT(fileText(folder / "a.log"), MatchesRegex(once + once));
}

// In the folder TEMP, or in /tmp when that is empty or missing.
TEST_F(Destinations, TheDefaultFileIsNamedAfterProgramAndTime) {
  for (const std::optional<std::string>& temp : {std::optional(folder.string()), std::optional(std::string()), {}}) {
    const Outcome outcome = inProcess([&] {
      temp ? ::setenv("TEMP", temp->c_str(), 1) : ::unsetenv("TEMP");
      Exports log;
      log.printTo(4, L"x\n");
      for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        const fs::path file = fs::read_symlink(entry.path(), error);
        if (file.filename().string().starts_with("DEBUG_LOG-")) std::printf("%s", file.c_str());
      }
      return 0;
    });
    const std::string where = temp.value_or("").empty() ? "/tmp" : *temp;
    EXPECT_THAT(outcome.out, MatchesRegex(where + "/DEBUG_LOG-test_reports-[0-9][0-9]\\.[0-9][0-9]\\.[0-9]+_[0-9][0-9]"
                                                  "\\.[0-9][0-9]\\.[0-9][0-9]\\.log"));
    if (outcome.out.starts_with("/tmp/DEBUG_LOG-test_reports-")) fs::remove(outcome.out);
  }
}

TEST_F(Destinations, FilesThatCannotBeUsedAreFailuresNotTrouble) {
  const Outcome outcome = inProcess([&] {
    Exports log;
    log.set(4 | 1);
    for (const std::wstring& name : {fileName("none/a.log"), folder.wstring(), std::wstring()}) {
      log.setFile(name.c_str());
      if (log.print(L"abc\n") != -1000000 + 4) return 1;
    }
    log.setFile(nullptr);
    if (log.print(L"abc\n") != -1000000 + 4) return 2;
    // A full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit none{0, 0};
    log.setFile(fileName().c_str());
    return setrlimit(RLIMIT_FSIZE, &none) == 0 && log.printTo(4, L"abc\n") == -1 ? 0 : 3;
  });
  EXPECT_EQ(outcome, (Outcome{0, "abc\nabc\nabc\nabc\n", ""}));
}

TEST_F(Destinations, LongTextsAreWholeWhereNoBufferCutsThem) {
  const std::wstring text(100000, L'x');
  const Outcome outcome = inProcess([&] {
    Exports log;
    log.setFile(fileName().c_str());
    if (log.printTo(4 | 1, L"%s", text.c_str()) != 200000) return 1;
    if (log.printTo(128, L"%s", text.c_str()) != 9998) return 2;
    return log.printTo(1, nullptr);
  });
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out.size(), 100000U);
  EXPECT_THAT(outcome.err, StartsWith("debugger: xxx"));
  EXPECT_THAT(fileText(folder / "a.log"), HasSubstr(std::string(100000, 'x')));
}

int printed(OrvLib::DebugLog& log, const wchar_t* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int result = log.print(format, arguments);
  va_end(arguments);
  return result;
}

TEST_F(Destinations, AnAttachedStreamTakesTheTextAsFarAsItIsGood) {
  OrvLib::DebugLog log;
  std::wostringstream stream;
  log.setMode(OrvLib::DebugLog::kStream);
  EXPECT_EQ(printed(log, L"nobody\n"), 0);
  log.attachStream(&stream);
  EXPECT_EQ(printed(log, L"%s %d\n", L"ä", 5), 4);
  EXPECT_EQ(printed(log, L"%s", std::wstring(20000, L'z').c_str()), 9998);
  EXPECT_TRUE(stream.str() == L"ä 5\n" + std::wstring(9998, L'z'));
  stream.setstate(std::ios::badbit);
  EXPECT_EQ(printed(log, L"x"), -1);
  log.attachStream(nullptr);
  EXPECT_EQ(printed(log, L"x"), 0);
  log.attachCallback([] { return std::wstring(L"own"); });
  EXPECT_EQ(log.callbackText(), L"own");
}

TEST_F(Destinations, TheConsoleIsTheControllingTerminal) {
  int terminal = -1;
  const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) {
    Exports log;
    ::_exit(log.printTo(256, L"päätteelle\n") == 11 && log.printTo(256, L"toinen\n") == 7 ? 0 : 1);
  }
  ASSERT_GT(child, 0);
  std::string seen;
  char block[256];
  for (ssize_t count = 0; (count = ::read(terminal, block, sizeof block)) > 0;)
    seen.append(block, static_cast<std::size_t>(count));
  ::close(terminal);
  EXPECT_EQ(finish(child).status, 0);
  EXPECT_EQ(seen, "päätteelle\r\ntoinen\r\n");
}

TEST_F(Destinations, WithoutATerminalTheConsoleFailsAndNothingElse) {
  const Outcome outcome = inProcess([] {
    Exports log;
    log.set(256 | 1);
    return log.print(L"abc\n") == -1 + 4 && log.print(L"abc\n") == 3 ? 0 : 1;
  });
  EXPECT_EQ(outcome, (Outcome{0, "abc\nabc\n", ""}));
}

TEST_F(Destinations, WhatWasLoggedOutlivesAKill) {
  const pid_t child = start([&] {
    Exports log;
    log.setFile(fileName().c_str());
    for (int i = 0;; ++i) log.printTo(4, L"rivi %d\n", i);
    return 0;
  });
  const bool isLogging = eventually([&] {
    std::error_code error;
    return fs::file_size(folder / "a.log", error) > 20000 && !error;
  });
  ::kill(child, SIGKILL);
  EXPECT_EQ(finish(child).status, 128 + SIGKILL);
  EXPECT_TRUE(isLogging);
  std::string text = fileText(folder / "a.log");
  const std::size_t begin = text.find("\n\n") + 2;
  EXPECT_THAT(text.substr(0, begin), MatchesRegex(kHeader));
  std::string expected;
  for (int i = 0; expected.size() < text.size() - begin; ++i) expected += "rivi " + std::to_string(i) + "\n";
  EXPECT_EQ(text.substr(begin), expected);
}

TEST_F(Destinations, TwoProcessesShareAFileWithoutMixingLines) {
  const auto logged = [&](const wchar_t* who) {
    return [&, who] {
      Exports log;
      log.setFile(fileName().c_str());
      for (int i = 0; i < 300; ++i) log.printTo(4, L"%s %03d %s\n", who, i, std::wstring(2000, L'.').c_str());
      log.unload();
      return 0;
    };
  };
  const pid_t one = start(logged(L"A"));
  const pid_t two = start(logged(L"B"));
  EXPECT_EQ(finish(one).status + finish(two).status, 0);
  std::ifstream in(folder / "a.log");
  int counts[2] = {0, 0};
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line.starts_with("-")) continue;
    ASSERT_EQ(line.size(), 2006U) << line.substr(0, 40);
    EXPECT_EQ(std::stoi(line.substr(2)), counts[line[0] - 'A']++);
  }
  EXPECT_EQ(counts[0], 300);
  EXPECT_EQ(counts[1], 300);
}

// ---- in a host ------------------------------------------------------------------------------------------------------

bool toolkitIsLoaded() { return fileText("/proc/self/maps").find("libtolmexdialogs") != std::string::npos; }

class DestinationsInHost : public Destinations {
 protected:
  /// Runs with a host that has loaded the module; the transcript is standard output.
  Outcome inHost(const std::function<int(Exports&, host::editor::Application&)>& body) {
    return inProcess([&] {
      struct Printer final : host::editor::Observer {
        void print(std::wstring_view text) override { std::fputs(host::text::toUtf8(text).c_str(), stdout); }
      } printer;
      host::editor::ApplicationOptions options;
      options.observer = &printer;
      host::editor::Application application(options);
      if (!application.newDrawing() || !application.loadModule(kModule)) return 100;
      Exports log;
      return body(log, application);
    });
  }
};

TEST_F(DestinationsInHost, TheCommandLineTakesTheTextAsItIsAndAMessageBoxIsANotice) {
  const Outcome outcome = inHost([](Exports& log, auto&) {
    const int whole = log.printTo(16, L"%s\n", L"100 %s");
    const int cut = log.printTo(16, L"%s", std::wstring(20000, L'y').c_str());
    return whole == 7 && cut == 9998 && log.printTo(64, L"Katto puuttuu") == 13 ? 0 : 1;
  });
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, StartsWith("100 %s\n" + std::string(9998, 'y') + "\n"));
  EXPECT_THAT(outcome.out, HasSubstr("[test_reports DEBUG LOG] Katto puuttuu"));
}

TEST_F(DestinationsInHost, OnlyTheWindowStartsTheToolkit) {
  const Outcome outcome = inHost([&](Exports& log, auto&) {
    log.setFile(fileName().c_str());
    log.set(1 | 2 | 4 | 8 | 16 | 64 | 128 | 256);
    log.print(L"a\n");
    if (toolkitIsLoaded()) return 1;
    if (log.printTo(32, L"a\n") != 2) return 2;
    return toolkitIsLoaded() ? 0 : 3;
  });
  EXPECT_EQ(outcome.status, 0) << outcome.err;
}

TEST_F(DestinationsInHost, AProgramThatJustEndsLeavesAFinishedFile) {
  const Outcome outcome = inProcess([&] {
    // Nothing is unloaded: the module's end is that of the process.
    auto& application = *new host::editor::Application;
    auto& log = *new Exports;
    if (!application.newDrawing() || !application.loadModule(kModule)) return 100;
    log.setFile(fileName().c_str());
    log.printTo(4 | 32, L"viimeinen\n");
    std::exit(7);
  });
  EXPECT_EQ(outcome.status, 7) << outcome.err;
  EXPECT_THAT(fileText(folder / "a.log"), MatchesRegex(std::string(kHeader) + "viimeinen\n" + kFooter));
}

}  // namespace

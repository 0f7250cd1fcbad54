// What drawings and scripts are read from, and what stands in them that nobody expects.
#include <sys/stat.h>

#include <functional>

#include "Support.h"

using namespace tests;
using testing::HasSubstr;
using testing::Not;

namespace {

class Inputs : public Program {
 protected:
  // Whoever reads from a pipe may leave early.
  Inputs() { std::signal(SIGPIPE, SIG_IGN); }
  void makePipe(const char* name) const { ASSERT_EQ(::mkfifo((folder / name).c_str(), 0600), 0); }
  /// Writes into a pipe while somebody reads from it.
  template <class Call>
  Outcome whilePiped(const char* pipe, const std::string& bytes, const Call& call) const {
    std::thread writer([&] { write(pipe, bytes); });
    const Outcome outcome = call();
    writer.join();
    return outcome;
  }
  /// Gives a layer of the plan another name.
  void renameInPlan(std::string_view name, std::string_view other) const {
    std::string text = read("plan.dxf");
    const std::string from = "\n" + std::string(name) + "\n", to = "\n" + std::string(other) + "\n";
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; ++count)
      text.replace(at, from.size(), to);
    ASSERT_GT(count, 1U);
    write("plan.dxf", text);
  }
};

TEST_F(Inputs, PipesAreReadAsFilesAre) {
  makePipe("pipe.dxf");
  const std::string drawing = read("plan.dxf");
  const auto piped = [&](const Arguments& arguments) {
    return whilePiped("pipe.dxf", drawing, [&] { return call(arguments); });
  };
  EXPECT_EQ(piped({"run", "pipe.dxf", "--command", "REGEN", "--quiet", "--out", "a.dxf"}), (Outcome{0, "", ""}));
  EXPECT_TRUE(read("a.dxf") == drawing);
  ASSERT_EQ(call({"picture", "plan.dxf", "a.svg"}).status, 0);
  EXPECT_EQ(piped({"picture", "pipe.dxf", "b.svg"}), (Outcome{0, "", ""}));
  EXPECT_TRUE(read("a.svg") == read("b.svg"));
  std::string expected = call({"info", "plan.dxf"}).out;
  EXPECT_EQ(piped({"info", "pipe.dxf"}), (Outcome{0, expected.replace(0, 4, "pipe"), ""}));
  EXPECT_EQ(whilePiped("pipe.dxf", "Dear reader",
                       [&] {
                         return call({"info", "pipe.dxf"});
                       }),
            (Outcome{2, "", "tolmex: pipe.dxf:1: expected a section, found group \"Dear reader\"\n"}));
  // Inside a script only files are opened.
  EXPECT_EQ(runLines({"OPEN", "pipe.dxf"}, {"--quiet"}),
            (Outcome{2, "", "tolmex: --command:2: pipe.dxf: this is no ordinary file\n"}));
  makePipe("pipe.scr");
  EXPECT_EQ(whilePiped("pipe.scr", "REGEN\nNOSUCH\n",
                       [&] {
                         return call({"run", "plan.dxf", "--script", "pipe.scr", "--quiet"});
                       }),
            (Outcome{3, "", "tolmex: pipe.scr:2: unknown command \"NOSUCH\"\n"}));
}

TEST_F(Inputs, WhatNeverEndsIsNotReadToItsEnd) {
  const Outcome device{2, "", "tolmex: /dev/zero: this is a device, not a drawing\n"};
  EXPECT_EQ(call({"info", "/dev/zero"}), device);
  EXPECT_EQ(call({"picture", "/dev/zero", "a.svg"}), device);
  EXPECT_EQ(call({"run", "/dev/zero", "--command", "REGEN"}), device);
  fs::create_symlink("/dev/zero", folder / "zero");
  EXPECT_EQ(call({"run", "-", "--command", "REGEN"}, {.standardIn = "zero"}),
            (Outcome{2, "", "tolmex: standard input: this is a device, not a drawing\n"}));
  const auto script = [&](const char* name, const Surroundings& surroundings = {}) {
    return call({"run", "plan.dxf", "--script", name, "--out", "a.dxf"}, surroundings);
  };
  EXPECT_EQ(script("/dev/zero"), (Outcome{3, "", "tolmex: /dev/zero: this is a device, not a script\n"}));
  EXPECT_EQ(script("-", {.standardIn = "zero"}),
            (Outcome{3, "", "tolmex: standard input: this is a device, not a script\n"}));
  write("large.scr", "");
  fs::resize_file(folder / "large.scr", (std::uintmax_t{64} << 20) + 1);
  EXPECT_EQ(script("large.scr"), (Outcome{3, "", "tolmex: large.scr: the script is longer than 64 MB\n"}));
  EXPECT_THAT(runLines({"SCRIPT", "large.scr"}).err, HasSubstr("large.scr: the script is longer than 64 MB"));
  // A pipe that brings more than memory may hold: here the limit of files stands for it.
  makePipe("pipe.dxf");
  const Outcome full = whilePiped("pipe.dxf", std::string(200000, ' '), [&] {
    return call({"info", "pipe.dxf"}, {.largestFile = 100000});
  });
  EXPECT_EQ(full, (Outcome{2, "", "tolmex: pipe.dxf: cannot be read: File too large\n"}));
  EXPECT_FALSE(fs::exists(folder / "a.dxf"));
}

TEST_F(Inputs, ScriptsOfOtherEncodingsNeverWriteGuessedNames) {
  const auto layers = [&](const std::string& script) {
    write("a.scr", script);
    fs::remove(folder / "a.dxf");
    return call({"run", "plan.dxf", "--script", "a.scr", "--quiet", "--out", "a.dxf"});
  };
  // "Käytävä" and a dash that Latin-1 lacks.
  EXPECT_EQ(layers("REGEN\nLAYER N K\xE4yt\xE4v\xE4\x96\n\n"),
            (Outcome{0, "", "tolmex: a.scr:2: this is not UTF-8; it is read as Windows-1252\n"}));
  EXPECT_THAT(read("a.dxf"), HasSubstr("\nK\xC3\xA4yt\xC3\xA4v\xC3\xA4\xE2\x80\x93\n"));
  std::string utf16 = "\xFF\xFE";
  for (const char c : std::string("LAYER N K\xE4"
                                  "yt\xE4v\xE4\r\n\r\n"))
    utf16.append({c, '\0'});
  EXPECT_EQ(layers(utf16), (Outcome{0, "", ""}));
  EXPECT_THAT(read("a.dxf"), HasSubstr("\nK\xC3\xA4yt\xC3\xA4v\xC3\xA4\n"));
  const std::vector<std::pair<std::string, std::string>> refused = {
      {"LAYER N \xC3\xA4\n\nREGEN\nLAYER N \xE4\n\n", "4: this is not UTF-8, though other places of the text are"},
      {"REGEN\nLAYER N \xE4\x81\n\n", "2: this is neither UTF-8 nor Windows-1252"},
      {std::string("REGEN\nLAYER N a\0b\n\n", 19), "2: a NUL character stands there; this is no text in UTF-8"},
      {utf16 + "\n", "3: the text is damaged UTF-16"},
  };
  for (const auto& [script, sentence] : refused) {
    const std::string end = sentence + "; save the script as UTF-8\n";
    EXPECT_EQ(layers(script), (Outcome{3, "", "tolmex: a.scr:" + end}));
    EXPECT_FALSE(fs::exists(folder / "a.dxf"));
    // The same from inside a script.
    EXPECT_THAT(runLines({"SCRIPT", "a.scr"}, {"--out", "a.dxf"}).err, HasSubstr("SCRIPT: a.scr:" + sentence));
    EXPECT_FALSE(fs::exists(folder / "a.dxf"));
  }
  EXPECT_EQ(runLines({"LAYER", "N \xE4"}).status, 1);
  EXPECT_EQ(call({"run", "plan.dxf", "--command", "REGEN", "--set", "CLAYER=\xE4"}).status, 1);
  write("lines", "LAYER\nN\nK\xE4yt\xE4v\xE4\n\nLAYER\nN\n\xC3\xA4\xE4\nSAVEAS\na.dxf\n");
  const Outcome shell = call({"shell", "plan.dxf", "--quiet"}, {.standardIn = "lines"});
  EXPECT_EQ(shell.status, 3);
  EXPECT_EQ(shell.err,
            "tolmex: standard input:3: this is not UTF-8; it is read as Windows-1252\n"
            "tolmex: standard input:7: this is not UTF-8, though other places of the text are; save the "
            "script as UTF-8\n");
  EXPECT_THAT(read("a.dxf"), HasSubstr("\nK\xC3\xA4yt\xC3\xA4v\xC3\xA4\n"));
  EXPECT_THAT(read("a.dxf"), Not(HasSubstr("\xEF\xBF\xBD")));
}

TEST_F(Inputs, NamesAreShownAndNeverObeyed) {
  // Esc and the control sequence introducer beyond ASCII, as drawings spell them.
  renameInPlan("RAKENNUS", "K^[]0;mine^G\\U+009B2J");
  const std::string name = "a\x1b[2Jb\xC2\x9Bm.dxf";
  fs::rename(plan, folder / name);
  const auto everything = [](const Outcome& outcome) { return outcome.out + outcome.err; };
  std::string said =
      everything(call({"run", name, "--command", "LIST", "--command", "ALL", "--command", "", "--command", "LAYER",
                       "--command", "?", "--command", "", "--command", "OPEN", "--command", "x\x1b[31m.dxf"}));
  EXPECT_THAT(said, HasSubstr("K^[]0;mine^G\\U+009B2J"));
  EXPECT_THAT(said, HasSubstr("x^[[31m.dxf: cannot be opened"));
  const std::vector<Arguments> calls = {
      {"info", name},
      {"info", name, "--json"},
      {"info", name, name, "--repair", "b.dxf"},
      {"info", name, "nothing\x1b[1m.dxf"},
      {"picture", name, "a\x1b[1m.gif"},
      {"picture", name, "a.png", "--layout", "\x1b[1m"},
      {"run", name, name, "--command", "\x1b[1mX", "--out-dir", "."},
      {"run", name, "--script", "s\x1b[1m"},
      {"run", name, "--command", "REGEN", "--width\x1b[1m"},
      {"\x1b[1m"},
  };
  for (const Arguments& arguments : calls) said += everything(call(arguments));
  write("lines", "LAYOUT\nS\n\x1b[1m\nNOSUCH\x07\n");
  said += everything(call({"shell", name}, {.standardIn = "lines"}));
  EXPECT_THAT(said, HasSubstr("a^[[2Jb"));
  EXPECT_THAT(said, Not(testing::ContainsRegex("[\x01-\x08\x0b-\x1f\x7f]|\xC2[\x80-\x9F]")));
}

TEST_F(Inputs, SettingsThatCannotBeReadAreNamed) {
  // A link to itself, a device, a pipe and a file that is too long: the drawing's own colours are used all the same.
  const auto told = [&](const std::string& fault) {
    const Outcome outcome =
        runLines({"TLM_MUOK_PENSAS", "(handent \"290\")", "", "TLM_MUOK_PENSAS", "(handent \"291\")", ""},
                 {"--quiet", "--out", "a.dxf"});
    EXPECT_EQ(outcome, (Outcome{0, "", "tolmex: " + (folder / "tolm.ini").string() + ": " + fault + "\n"}));
    EXPECT_THAT(call({"info", "a.dxf"}).out, HasSubstr("tma_pensas         92\n"));
    fs::remove(folder / "tolm.ini");
  };
  fs::create_symlink("tolm.ini", folder / "tolm.ini");
  told("is passed over: it is no file");
  fs::create_symlink("/proc/self/mem", folder / "tolm.ini");
  told("cannot be read: Input/output error");
  makePipe("tolm.ini");
  told("is passed over: it is no file");
  write("tolm.ini", "pensasviiva 3\n");
  fs::resize_file(folder / "tolm.ini", (std::uintmax_t{16} << 20) + 1);
  told("is passed over: it is longer than 16 MB");
}

}  // namespace

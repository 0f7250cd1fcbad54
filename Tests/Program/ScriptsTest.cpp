// What `run` does with scripts: transcript, failures, variables, support files, interruption.
#include <sys/stat.h>

#include "Support.h"

using namespace tests;
using testing::HasSubstr;
using testing::MatchesRegex;

namespace {

class Scripts : public Program {
 protected:
  /// Gives the signal once `isReady` holds, and the time until the end.
  template <class Condition>
  Outcome interrupt(pid_t child, const Condition& isReady, std::chrono::milliseconds& taken) {
    while (!isReady()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    const auto begin = std::chrono::steady_clock::now();
    ::kill(child, SIGINT);
    const Outcome outcome = finish(child);
    taken = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin);
    return outcome;
  }
};

const Arguments kHedge = {"TLM_MUOK_PENSAS", "(handent \"290\")", ""};

TEST_F(Scripts, TranscriptIsWhatTheCommandLineShows) {
  EXPECT_EQ(runLines(kHedge), (Outcome{0,
                                       "Command: TLM_MUOK_PENSAS\n"
                                       "Valitse muokattava pensasviiva:\n"
                                       "Select objects: (handent \"290\")\n"
                                       "1 found\n"
                                       "Select objects: \n"
                                       "Command: \n"
                                       "Done: 1 command; 1 object made, 1 changed\n",
                                       ""}));
  EXPECT_EQ(runLines(kHedge, {"--quiet"}), (Outcome{0, "", ""}));
  EXPECT_EQ(read("plan.dxf"), read(kPlan)) << "without --out nothing is written";
}

TEST_F(Scripts, TellWhatTheyLeftOut) {
  write(
      "more.scr",
      "LAYER LO PIHA\n\nTLM_MUOK_ASFALTTI\n(handent \"250\")\n(handent \"290\")\n(handent \"298\")\n(handent \"375\")\n"
      "\nTLM_MUOK_SORA\n1,1\n\nTLM_MUOK_RAKENNUS\n(handent \"2C0\")\n\nCancel\n");
  const Outcome told = call({"run", "plan.dxf", "--script", "more.scr", "--out", "a.dxf"});
  EXPECT_EQ(told.status, 0);
  EXPECT_THAT(told.out,
              HasSubstr("\n2 skipped: 1 on a locked layer (LWPOLYLINE 250), 1 that TLM_MUOK_ASFALTTI does not "
                        "take (TEXT 375); 1 not hatched: not closed (LWPOLYLINE 298)\nCommand: "));
  EXPECT_THAT(told.out, HasSubstr("\ndialog \"Rakennuksen ominaisuudet\": Cancel\nCommand: \nDone: 4 commands; "));
  EXPECT_THAT(told.out,
              testing::EndsWith("; 2 skipped: 1 of a kind that the command does not take, 1 on a locked layer; "
                                "1 not hatched: not closed; 1 pick found nothing\n"));
  EXPECT_THAT(runLines({"TLM_MUOK_ASFALTTI", "(handent \"298\")", ""}, {"--strict"}).out,
              testing::EndsWith("\nStopped: 1 command; 1 object changed; 1 not hatched: not closed\n"));
  EXPECT_EQ(told.err, "tolmex: more.scr:10: TLM_MUOK_SORA: nothing found at 1,1\n");
  EXPECT_EQ(call({"run", "plan.dxf", "--script", "more.scr", "--quiet", "--strict", "--out", "b.dxf"}),
            (Outcome{3, "",
                     "tolmex: more.scr:8: TLM_MUOK_ASFALTTI: 2 skipped: 1 on a locked layer (LWPOLYLINE 250), 1 that "
                     "TLM_MUOK_ASFALTTI does not take (TEXT 375); 1 not hatched: not closed (LWPOLYLINE 298); nothing "
                     "was written\n"}));
  EXPECT_FALSE(fs::exists(folder / "b.dxf"));
  // Shadows are made of locked buildings neither.
  const Outcome shadows = runLines({"TLM_MUOK_RAKENNUS", "(handent \"2C0\")", "", "30211 2", "30206 3", "30207 0",
                                    "30208 0", "OK", "LAYER", "LO", "tmv_rak", "", "TLM_VARJO_PAIVITA"});
  EXPECT_THAT(shadows.out, HasSubstr("\n1 skipped: on a locked layer (LWPOLYLINE 2C0)\n"));
}

TEST_F(Scripts, TellWhatChangedInDialogs) {
  const Outcome told = runLines({"TLM_MUOK_RAKENNUS",
                                 "(handent \"2C0\")",
                                 "",
                                 "Kerrosmäärä 2",
                                 "Kerroskorkeus 2,8",
                                 "30207 0.5",
                                 "30208 0.4",
                                 "OK",
                                 "TLM_MUOK_RAKENNUS",
                                 "(handent \"2C0\")",
                                 "",
                                 "30211 5",
                                 "30211 3",
                                 "30206 2.8",
                                 "OK",
                                 "TLM_MUOK_RAKENNUS",
                                 "(handent \"2C0\")",
                                 "",
                                 "30211 9",
                                 "Cancel"});
  EXPECT_EQ(told.status, 0) << told.err;
  EXPECT_THAT(told.out, HasSubstr("\n2,8 is taken as 2.8\n"));
  const std::string dialog = "\ndialog \"Rakennuksen ominaisuudet\": ";
  EXPECT_THAT(told.out, HasSubstr(dialog + "OK" + dialog +
                                  "Kerrosmäärä \"\" -> 2, Kerroskorkeus \"\" -> 2.8, Räystäsleveys \"\" -> 0.5, "
                                  "Sokkelikorkeus \"\" -> 0.4\n"));
  EXPECT_THAT(told.out, HasSubstr(dialog + "OK" + dialog + "Kerrosmäärä 2 -> 3\n"));
  EXPECT_THAT(told.out, HasSubstr(dialog + "Cancel\nCommand: \n"));
}

TEST_F(Scripts, ACommandLeftAtOnceLeavesTheFileAsItWas) {
  for (const Arguments& lines :
       {Arguments{"TLM_MUOK_ASFALTTI", "^C"}, Arguments{"TLM_MUOK_VARIT", "30226 33", "Cancel"},
        Arguments{"TLM_MUOK_RAKENNUS", "(handent \"2C0\")", "", "Cancel"},
        Arguments{"TLM_KATTO_RAST_TEE_3_VARJO", "^C"}}) {
    EXPECT_EQ(runLines(lines, {"--out", "a.dxf"}).status, 0);
    EXPECT_TRUE(read("a.dxf") == read("plan.dxf")) << lines[0];
  }
}

TEST_F(Scripts, WithoutOneADrawingIsConverted) {
  EXPECT_EQ(call({"run", "plan.dxf", "--out", "a.dxf", "--picture", "a.svg"}), (Outcome{0, "", ""}));
  EXPECT_TRUE(read("a.dxf") == read("plan.dxf"));
  EXPECT_THAT(read("a.svg"), HasSubstr("<svg"));
}

TEST_F(Scripts, AMissingSymbolFolderIsTold) {
  const Arguments look{"TLM_LIS_SYMBOLI", "Sulje"};
  write("orvpath.cfg", "KAAVA /nowhere/\n");
  EXPECT_EQ(runLines(look, {"--quiet"}), (Outcome{0, "", "tolmex: /nowhere/tmsym: the folder cannot be found\n"}));
  write("orvpath.cfg", "KAAVA D:/plans/\n");
  EXPECT_EQ(runLines(look, {"--quiet"}),
            (Outcome{0, "", "tolmex: D:\\plans\\tmsym: the folder cannot be found: there is no drive D: here\n"}));
}

TEST_F(Scripts, FailuresNameScriptAndLineAndNothingIsWritten) {
  write("unknown.scr", "REGEN\n; a comment counts as a line\nTLM_MUOK_ASFALTI\n");
  write("short.scr", "TLM_MUOK_ASFALTTI\n");
  write("refused.scr", "\xEF\xBB\xBFLINE\r\nsomewhere\r\n");
  write("a.dxf", "old");
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"unknown.scr", "unknown.scr:3: unknown command \"TLM_MUOK_ASFALTI\"; nearest: TLM_MUOK_ASFALTTI"},
      {"short.scr", "short.scr:1: the input ended while TLM_MUOK_ASFALTTI waited for an answer to \"Select objects:\""},
      {"refused.scr", "refused.scr:2: LINE: Invalid point."},
      {"missing.scr", "missing.scr: the script cannot be read"},
      {".", ".: this is a folder, not a script"},
  };
  const std::vector<std::string> before = names();
  for (const auto& [script, sentence] : cases) {
    const Outcome outcome =
        call({"run", "plan.dxf", "--script", script, "--quiet", "--out", "a.dxf", "--picture", "a.svg"});
    EXPECT_EQ(outcome.status, 3) << script;
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, testing::StartsWith("tolmex: " + sentence));
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_EQ(names(), before);
    EXPECT_EQ(read("a.dxf"), "old");
  }
}

TEST_F(Scripts, AFailureReportOfThePlugInIsAFailure) {
  const Arguments lines{"ARX", "L", std::string(kBinDir) + "/testmodule.arx", "TESTFAILS", "REGEN"};
  const Outcome outcome = runLines(lines, {"--out", "a.dxf"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err,
              testing::StartsWith(
                  "tolmex: --command:4: TESTFAILS failed: No layer. (Error location: a.cpp:1); nothing was written\n"));
  EXPECT_THAT(outcome.out, HasSubstr("[Error] No layer.\n\n(Error location: a.cpp:1)\n"));
  EXPECT_THAT(outcome.out, testing::Not(HasSubstr("REGEN")));
  EXPECT_FALSE(fs::exists(folder / "a.dxf"));
}

TEST_F(Scripts, InlineCommandsFollowTheScript) {
  write("part.scr", "TLM_MUOK_PENSAS\n(handent \"290\")");
  const Outcome outcome = call({"run", "plan.dxf", "--command", "", "--command", "LTSCALE", "--command", "3",
                                "--script", "part.scr", "--set", "LTSCALE=2.5"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("Enter new value for LTSCALE <2.5>: 3\n"));
}

TEST_F(Scripts, ColoursComeFromTheNearestSupportFolder) {
  fs::create_directories(folder / "plans");
  fs::rename(plan, folder / "plans/plan.dxf");
  const auto colour = [&](const fs::path& current) {
    Arguments arguments{"run",       folder / "plans/plan.dxf", "--quiet", "--support",           folder / "first",
                        "--support", folder / "second",         "--out",   folder / "colours.dxf"};
    for (const std::string& line : kHedge) arguments.insert(arguments.end(), {"--command", line});
    EXPECT_EQ(call(arguments, {.folder = current}), (Outcome{0, "", ""}));
    const std::string info = call({"info", folder / "colours.dxf"}).out;
    const std::size_t at = info.find("tma_pensas");
    return at == std::string::npos ? 0 : std::stoi(info.substr(at + 10));
  };
  for (const char* name : {"first", "second"}) fs::create_directory(folder / name);
  write("second/tolm.ini", "pensasviiva\t13\n");
  EXPECT_EQ(colour(folder), 13);
  write("first/tolm.ini", "pensasviiva\t12\n");
  EXPECT_EQ(colour(folder), 12);
  write("plans/tolm.ini", "pensasviiva\t11\n");
  EXPECT_EQ(colour(folder), 11);
  fs::remove(folder / "plans/tolm.ini");
  EXPECT_EQ(colour(folder / "second"), 13) << "the current folder goes before support folders";
}

TEST_F(Scripts, CtrlCStopsAScriptAndLeavesOldFilesWhole) {
  std::string script;
  for (int i = 0; i < 20000; ++i) script += "TLM_MUOK_PENSAS\n(handent \"290\")\n\n";
  write("long.scr", script);
  write("a.dxf", "old");
  const std::vector<std::string> before = names();
  const pid_t child = start({"run", "plan.dxf", "--script", "long.scr", "--out", "a.dxf"});
  std::chrono::milliseconds taken{};
  std::error_code error;
  const Outcome outcome = interrupt(
      child, [&] { return fs::file_size(catchFile("out"), error) > 0 && !error; }, taken);
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err, MatchesRegex("tolmex: long.scr:[0-9]+: interrupted; nothing was written\n"));
  EXPECT_LT(taken.count(), 2000);
  EXPECT_EQ(names(), before);
  EXPECT_EQ(read("a.dxf"), "old");
}

TEST_F(Scripts, CtrlCEndsWorkThatDoesNotNotice) {
  // Nobody ever writes the script: the program waits in the middle of a call.
  ASSERT_EQ(::mkfifo((folder / "wait.scr").c_str(), 0600), 0);
  write("a.dxf", "old");
  const pid_t child = start({"run", "plan.dxf", "--script", "wait.scr", "--out", "a.dxf"});
  std::chrono::milliseconds taken{};
  const Outcome outcome = interrupt(
      child, [&] { return takesInterrupts(child); }, taken);
  EXPECT_EQ(outcome, (Outcome{3, "", "tolmex: interrupted; unfinished outputs were not written\n"}));
  EXPECT_LT(taken.count(), 2000);
  EXPECT_EQ(read("a.dxf"), "old");
}

}  // namespace

// Several drawings in one call, standard input and output, and what `info` gives to programs.
#include <sys/stat.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "Places.h"
#include "Support.h"

using namespace tests;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

using Json = nlohmann::json;

class ManyDrawings : public Program {
 protected:
  /// A call on "wait.dxf", which never comes, and the plan behind it, once its first worker is at work.
  pid_t startWaiting(const Arguments& arguments) const {
    EXPECT_EQ(::mkfifo((folder / "wait.dxf").c_str(), 0600), 0);
    return start(arguments);
  }
  static pid_t workerOf(pid_t program) {
    const std::string process = "/proc/" + std::to_string(program);
    const std::string name = process + "/task/" + std::to_string(program) + "/children";
    for (int i = 0; i < 1000; ++i) {
      pid_t worker = 0;
      // Asked only once the worker has made itself ready for signals.
      if (std::ifstream(name) >> worker && takesInterrupts(worker, true)) return worker;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return 0;
  }
};

const Arguments kHedge = {"--command", "TLM_MUOK_PENSAS", "--command", "(handent \"290\")", "--command", ""};

Arguments with(Arguments arguments, const Arguments& more) {
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

TEST_F(ManyDrawings, EveryOneIsWorkedOnAndTold) {
  write("bad.dxf", "Dear reader");
  fs::create_directory(folder / "sub");
  fs::copy_file(plan, folder / "sub/other.dxf");
  ASSERT_EQ(call(with({"run", "plan.dxf", "--out", "one.dxf", "--picture", "one.svg", "--quiet", "--set", "LTSCALE=2"},
                      kHedge))
                .status,
            0);
  const Arguments all{"bad.dxf", "plan.dxf", "sub/other.dxf"};
  const Outcome outcome =
      call(with(with({"run"}, all),
                with(kHedge, {"--out-dir", "new/er", "--format", "svg", "--jobs", "3", "--set", "LTSCALE=2"})));
  EXPECT_EQ(outcome.status, 2);
  const std::string transcript =
      "Command: TLM_MUOK_PENSAS\nValitse muokattava pensasviiva:\nSelect objects: (handent \"290\")\n1 found\n"
      "Select objects: \nCommand: \n";
  EXPECT_EQ(outcome.out, "bad.dxf: the drawing could not be read\n" + transcript +
                             "plan.dxf: done; 1 command; 1 object made, 1 changed\n" + transcript +
                             "sub/other.dxf: done; 1 command; 1 object made, 1 changed\n"
                             "2 drawings: 2 commands; 2 objects made, 2 changed\n");
  EXPECT_THAT(outcome.err, StartsWith("tolmex: bad.dxf:1: "));
  EXPECT_TRUE(read("new/er/plan.svg") == read("one.svg"));
  EXPECT_TRUE(read("new/er/other.dxf") == read("one.dxf"));
  EXPECT_FALSE(fs::exists(folder / "new/er/bad.dxf"));
  // A problem says which of the drawings it is in, even where the sentence is about the script.
  EXPECT_EQ(call({"run", "plan.dxf", "sub/other.dxf", "--command", "NOSUCH", "--quiet"}),
            (Outcome{3, "plan.dxf: the script failed\nsub/other.dxf: the script failed\n",
                     "tolmex: plan.dxf: --command:1: unknown command \"NOSUCH\"\n"
                     "tolmex: sub/other.dxf: --command:1: unknown command \"NOSUCH\"\n"}));
  EXPECT_EQ(call({"picture", "plan.dxf", "bad.dxf", "--out-dir", ".", "--format", "svg", "--format", "pdf"}).status, 2);
  EXPECT_TRUE(fs::exists(folder / "plan.svg") && fs::exists(folder / "plan.pdf"));
}

TEST_F(ManyDrawings, OutputsOfAllAreCheckedBeforeWorkBegins) {
  fs::create_directory(folder / "sub");
  fs::copy_file(plan, folder / "sub/plan.dxf");
  write("file", "");
  const std::vector<std::string> before = names();
  const auto run = [&](const Arguments& more) { return call(with({"run", "plan.dxf"}, with(kHedge, more))); };
  EXPECT_EQ(run({"sub/plan.dxf", "--out-dir", "new"}),
            (Outcome{4, "", "tolmex: new/plan.dxf: two outputs have this name\n"}));
  EXPECT_EQ(run({"sub/plan.dxf", "--out-dir", "sub"}),
            (Outcome{4, "", "tolmex: sub/plan.dxf: this output is the input sub/plan.dxf\n"}));
  EXPECT_EQ(run({"--out-dir", "."}), (Outcome{4, "", "tolmex: ./plan.dxf: this output is the input plan.dxf\n"}));
  EXPECT_EQ(run({"--out-dir", "file"}), (Outcome{4, "", "tolmex: file: this is no folder\n"}));
  EXPECT_EQ(names(), before) << "not even the folder is made";
}

TEST_F(ManyDrawings, ACrashCostsOneDrawingOnly) {
  const pid_t program =
      startWaiting({"run", "wait.dxf", "plan.dxf", "--command", "REGEN", "--quiet", "--out-dir", "new"});
  const pid_t worker = workerOf(program);
  ASSERT_GT(worker, 0);
  ::kill(worker, SIGKILL);
  EXPECT_EQ(finish(program), (Outcome{3, "wait.dxf: the script failed\nplan.dxf: done; 1 command; no object changed\n",
                                      "tolmex: wait.dxf: the work crashed: Killed\n"}));
  EXPECT_TRUE(read("new/plan.dxf") == read("plan.dxf"));
}

TEST_F(ManyDrawings, CtrlCEndsAll) {
  const pid_t program =
      startWaiting({"run", "wait.dxf", "plan.dxf", "--command", "REGEN", "--quiet", "--out-dir", "new"});
  ASSERT_GT(workerOf(program), 0);
  const auto begin = std::chrono::steady_clock::now();
  ::kill(program, SIGINT);
  const Outcome outcome = finish(program);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
  EXPECT_EQ(outcome, (Outcome{3, "wait.dxf: the script failed\nplan.dxf: the script failed\n",
                              "tolmex: interrupted; unfinished outputs were not written\n"
                              "tolmex: plan.dxf: not begun: interrupted\n"}));
  EXPECT_TRUE(fs::is_empty(folder / "new"));
}

TEST_F(ManyDrawings, StandardInputAndOutput) {
  const Surroundings fromPlan{.standardIn = "plan.dxf"};
  const std::string drawing = read("plan.dxf");
  Outcome outcome = call({"run", "-", "--command", "REGEN", "--out", "-"}, fromPlan);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.out == drawing) << "only the drawing is on standard output";
  EXPECT_EQ(outcome.err, "Command: REGEN\nRegenerating model.\nCommand: \nDone: 1 command; no object changed\n");
  ASSERT_EQ(call({"picture", "plan.dxf", "a.svg"}).status, 0);
  outcome = call({"picture", "-", "-", "--format", "svg"}, fromPlan);
  EXPECT_EQ(outcome.err, "");
  EXPECT_TRUE(outcome.out == read("a.svg"));
  EXPECT_EQ(call({"run", "-", "--command", "REGEN", "--out", "plan.dxf"}, fromPlan),
            (Outcome{4, "", "tolmex: plan.dxf: this output is the input standard input\n"}));
  EXPECT_EQ(call({"run", "plan.dxf", "--command", "REGEN", "--out", "-", "--picture", "-"}),
            (Outcome{4, "", "tolmex: -: two outputs go to standard output\n"}));
  write("script", "REGEN\nNOSUCH\n");
  EXPECT_EQ(call({"run", "plan.dxf", "--script", "-", "--quiet"}, {.standardIn = "script"}),
            (Outcome{3, "", "tolmex: standard input:2: unknown command \"NOSUCH\"\n"}));
  EXPECT_EQ(call({"info", "-"}, {.standardIn = "script"}),
            (Outcome{2, "", "tolmex: standard input:1: expected a section, found group \"REGEN\"\n"}));
}

TEST_F(ManyDrawings, JsonHoldsWhatTheDrawingsHold) {
  write("bad.dxf", "Dear reader");
  write("a.scr",
        "PLINE\n0,0\n10,0\n10,5\n0,5\nC\nTLM_MUOK_ASFALTTI\nL\n\n"
        // A half circle of radius 2 on a rectangle.
        "PLINE\n0,20\n10,20\nA\n10,24\nL\n0,24\nC\nTLM_MUOK_PENSAS\nL\n\n"
        "PLINE\n0,0\n3,4\n\nTLM_MUOK_AITA_LAUTA\nL\n\nTLM_ASETA_KORKEUS\nL\n\n1.25\n");
  ASSERT_EQ(call({"run", "plan.dxf", "--script", "a.scr", "--quiet", "--out", "a.dxf"}), (Outcome{0, "", ""}));
  const Outcome outcome = call({"info", "a.dxf", "bad.dxf", "plan.dxf", "--json", "--jobs", "2"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, StartsWith("tolmex: bad.dxf:1: "));
  const Json document = Json::parse(outcome.out);
  EXPECT_EQ(document["schema"], "tolmex-info");
  EXPECT_EQ(document["version"], 1);
  ASSERT_EQ(document["drawings"].size(), 3U);
  EXPECT_EQ(document["drawings"][1]["file"], "bad.dxf");
  EXPECT_EQ(document["drawings"][1]["status"], 2);
  EXPECT_EQ("tolmex: " + document["drawings"][1]["error"].get<std::string>() + "\n", outcome.err);
  const Json& elements = document["drawings"][0]["elements"];
  ASSERT_EQ(elements.size(), 3U);
  EXPECT_EQ(elements[0]["category"], "Asfaltti");
  EXPECT_EQ(elements[0]["filled"], 1);
  EXPECT_NEAR(elements[0]["area"].get<double>(), 50, 1e-6);
  EXPECT_NEAR(elements[0]["length"].get<double>(), 30, 1e-6);
  EXPECT_NEAR(elements[1]["items"][0]["area"].get<double>(), 40 + 2 * 3.14159265, 1e-5);
  EXPECT_NEAR(elements[1]["items"][0]["length"].get<double>(), 24 + 2 * 3.14159265, 1e-5);
  EXPECT_TRUE(elements[2]["items"][0]["area"].is_null());
  const Json& fence = document["drawings"][0]["fences"][0];
  EXPECT_EQ(fence["height"], 1.25);
  EXPECT_NEAR(fence["length"].get<double>(), 5, 1e-6);
  EXPECT_EQ(document["drawings"][2]["elements"].size(), 0U);
}

TEST_F(ManyDrawings, TheInstalledProgramRunsAnywhere) {
  const Outcome installed =
      call({"--install", fs::path(kBinDir).parent_path(), "--prefix", folder / "there"}, {.program = "/usr/bin/cmake"});
  ASSERT_EQ(installed.status, 0) << installed.err;
  fs::rename(folder / "there", folder / "elsewhere");
  const std::string program = folder / "elsewhere/bin/tolmex";
  // The script opens dialogs and loads linetypes; the picture needs the painter's library.
  EXPECT_EQ(call({"run", "plan.dxf", "--script", kExamples / "kortteli.scr", "--support", kExamples, "--quiet", "--out",
                  "a.dxf", "--picture", "a.svg"},
                 {.program = program.c_str()}),
            (Outcome{0, "", ""}));
  EXPECT_TRUE(fs::exists(folder / "elsewhere/share/man/man1/tolmex.1"));
}

TEST_F(ManyDrawings, WhatIsUpToDateIsLeftAndAllIsReported) {
  fs::copy_file(plan, folder / "b.dxf");
  write("bad.dxf", "Dear reader");
  write("hedge.scr", "TLM_MUOK_PENSAS\n(handent \"290\")\n\n");
  const Arguments all = {"run", "plan.dxf", "bad.dxf", "b.dxf",   "--script", "hedge.scr", "--out-dir",
                         "out", "--format", "svg",     "--quiet", "--resume", "--report",  "report.jsonl"};
  const auto results = [this] {
    std::vector<std::string> found;
    std::istringstream lines(read("report.jsonl"));
    for (std::string line; std::getline(lines, line);) {
      const Json json = Json::parse(line);
      found.push_back(json["drawing"].get<std::string>() + ": " + json["result"].get<std::string>());
      EXPECT_EQ(json["outputs"].size(), 2U);
      if (json["status"] == 2) {
        EXPECT_THAT(json["messages"].dump(), HasSubstr("bad.dxf"));
      }
      if (json["result"] == "done") {
        EXPECT_EQ(json["sum"].dump(),
                  R"({"changed":1,"commands":1,"erased":0,"foundNothing":0,"made":1,"notHatched":{},)"
                  R"("skipped":{}})");
      }
    }
    return found;
  };
  using Results = std::vector<std::string>;
  EXPECT_EQ(call(all).status, 2);
  EXPECT_EQ(results(), (Results{"plan.dxf: done", "bad.dxf: the drawing could not be read", "b.dxf: done"}));
  const std::string first = read("out/b.dxf");
  EXPECT_EQ(call(all).status, 2);
  EXPECT_EQ(results(),
            (Results{"plan.dxf: up to date", "b.dxf: up to date", "bad.dxf: the drawing could not be read"}));
  // A picture that is gone, a drawing that has changed, a script that has.
  fs::remove(folder / "out/plan.svg");
  fs::last_write_time(folder / "b.dxf", fs::file_time_type::clock::now() + std::chrono::seconds(2));
  EXPECT_EQ(call(all).status, 2);
  EXPECT_EQ(results(), (Results{"plan.dxf: done", "bad.dxf: the drawing could not be read", "b.dxf: done"}));
  EXPECT_EQ(read("out/b.dxf"), first);
  // Other options, another script, an output that somebody else has made.
  const Results again = {"plan.dxf: done", "bad.dxf: the drawing could not be read", "b.dxf: done"};
  fs::last_write_time(folder / "b.dxf", fs::last_write_time(folder / "plan.dxf"));
  const auto made = [&](const Arguments& more) {
    Arguments arguments = all;
    arguments.insert(arguments.end(), more.begin(), more.end());
    call(arguments);
    return results();
  };
  const Results left = {"plan.dxf: up to date", "b.dxf: up to date", "bad.dxf: the drawing could not be read"};
  EXPECT_EQ(made({"--set", "LTSCALE=2"}), again);
  EXPECT_EQ(made({"--set", "LTSCALE=2", "--jobs", "2"}), left);
  EXPECT_EQ(made({}), again);
  EXPECT_EQ(made({"--width", "500"}), again);
  write("hedge.scr", "TLM_MUOK_PENSAS\n(handent \"290\")\n\n; more\n");
  EXPECT_EQ(made({"--width", "500"}), again);
  write("out/plan.svg", read("out/plan.svg") + " ");
  EXPECT_EQ(made({"--width", "500"}),
            (Results{"b.dxf: up to date", "plan.dxf: done", "bad.dxf: the drawing could not be read"}));
  // Lines that the program does not write so.
  const char* const log = "out/.tolmex-resume.jsonl";
  write(log, read(log) + R"({"file": 1, "made": [], "size": "x"})" + "\n[]\n{\"file\": \"pl");
  EXPECT_EQ(made({"--width", "500"}), left);
}

}  // namespace

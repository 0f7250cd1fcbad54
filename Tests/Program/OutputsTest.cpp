// Outputs that cannot be written, pictures, and what `info` finds.
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <cstring>

#include "Support.h"

using namespace tests;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class Outputs : public Program {
 protected:
  /// The reading end of a pipe that nobody reads from; the program's end has the name "pipe".
  class Pipe {
   public:
    explicit Pipe(const fs::path& name) {
      EXPECT_EQ(::mkfifo(name.c_str(), 0600), 0);
      end_ = ::open(name.c_str(), O_RDONLY | O_NONBLOCK);
      EXPECT_EQ(::fcntl(end_, F_SETPIPE_SZ, 4096), 4096);
    }
    ~Pipe() { ::close(end_); }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    /// Until nothing more goes in; a piece that does not fit leaves some room.
    void awaitFull() const {
      for (int held = 0, former = 0, still = 0; still < 5; former = held) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        ::ioctl(end_, FIONREAD, &held);
        still = held > 0 && held == former ? still + 1 : 0;
      }
    }

   private:
    int end_;
  };

  Outcome illustrate(const Arguments& outputs) const {
    Arguments arguments{"run", "plan.dxf", "--script", kExamples / "kortteli.scr", "--support", kExamples, "--quiet"};
    arguments.insert(arguments.end(), outputs.begin(), outputs.end());
    return call(arguments);
  }
};

TEST_F(Outputs, AreRefusedBeforeWorkBegins) {
  fs::create_directory(folder / "sub");
  fs::create_directory(folder / "folder.dxf");
  fs::create_symlink("plan.dxf", folder / "link.dxf");
  fs::create_symlink(".", folder / "here");
  fs::create_symlink("nowhere/plan.dxf", folder / "dangling.dxf");
  fs::create_hard_link(plan, folder / "hard.dxf");
  write("file", "");
  ASSERT_EQ(::mkfifo((folder / "pipe.dxf").c_str(), 0600), 0);
  const std::vector<std::string> before = names();
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"plan.dxf", "this output is the input plan.dxf"},
      {"./plan.dxf", "this output is the input plan.dxf"},
      {"sub/../plan.dxf", "this output is the input plan.dxf"},
      {"here/plan.dxf", "this output is the input plan.dxf"},
      {"link.dxf", "this output is the input plan.dxf"},
      {"hard.dxf", "this output is the input plan.dxf"},
      {plan.string(), "this output is the input plan.dxf"},
      {"folder.dxf", "this output is a folder"},
      {"pipe.dxf", "this output is no ordinary file"},
      {"nowhere/a.dxf", "there is no folder nowhere"},
      {"file/a.dxf", "there is no folder file"},
  };
  for (const auto& [file, sentence] : cases) {
    EXPECT_EQ(runLines({"NOSUCHCOMMAND"}, {"--out", file}),
              (Outcome{4, "", "tolmex: " + file + ": " + sentence + "\n"}));
  }
  EXPECT_EQ(runLines({"REGEN"}, {"--picture", "a.svg", "--picture", "./a.svg"}),
            (Outcome{4, "", "tolmex: ./a.svg: two outputs have this name\n"}));
  // These show only when the file is made.
  EXPECT_EQ(runLines({"REGEN"}, {"--quiet", "--out", "dangling.dxf"}),
            (Outcome{4, "", "tolmex: dangling.dxf: the link leads nowhere\n"}));
  const Outcome closed = runLines({"REGEN"}, {"--quiet", "--out", "/proc/a.dxf"});
  EXPECT_EQ(closed.status, 4);
  EXPECT_THAT(closed.err, StartsWith("tolmex: /proc/a.dxf: cannot be written: "));
  EXPECT_EQ(names(), before);
  EXPECT_EQ(read("plan.dxf"), read(kPlan));
  EXPECT_TRUE(fs::is_fifo(folder / "pipe.dxf"));
}

TEST_F(Outputs, AFullDeviceIsTold) {
  // Opened for writing as standard output: the device stays what it is.
  EXPECT_EQ(call({"info", "plan.dxf"}, {.standardOut = "/dev/full"}),
            (Outcome{4, "", "tolmex: standard output cannot be written\n"}));
}

TEST_F(Outputs, PipesThatNobodyReadsCanBeLeft) {
  write("a.scr", "LIST\nALL\n\nLIST\nALL\n\n");
  fs::copy_file(plan, folder / "b.dxf");
  struct Case {
    Arguments arguments;
    int status;
    std::string err;
  };
  const std::string sentence = "tolmex: interrupted; unfinished outputs were not written\n";
  const Case cases[] = {
      {{"run", "plan.dxf", "--command", "REGEN", "--quiet", "--out", "-"}, 3, sentence},
      {{"picture", "plan.dxf", "-", "--format", "svg"}, 4, sentence},
      {{"run", "plan.dxf", "--script", "a.scr"}, 3, sentence},
      {{"run", "plan.dxf", "b.dxf", "--script", "a.scr"}, 3, sentence},
  };
  for (const Case& one : cases) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
      SCOPED_TRACE(one.arguments.front() + " " + ::strsignal(signal));
      fs::remove(folder / "pipe");
      const Pipe pipe(folder / "pipe");
      const pid_t child = start(one.arguments, {.standardOut = folder / "pipe"});
      pipe.awaitFull();
      const auto begin = std::chrono::steady_clock::now();
      ::kill(child, signal);
      EXPECT_EQ(finish(child), (Outcome{one.status, "", one.err}));
      EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
    }
  }
  // Standard error may be such a pipe too; then even the farewell has nowhere to go.
  fs::remove(folder / "pipe");
  const Pipe pipe(folder / "pipe");
  const pid_t child =
      start({"-c", "exec '" + std::string(kBinDir) + "/tolmex' run plan.dxf --script a.scr --out - 2>pipe"},
            {.program = "/bin/sh"});
  pipe.awaitFull();
  ::kill(child, SIGTERM);
  EXPECT_EQ(finish(child).status, 3);
}

TEST_F(Outputs, NothingElseGoesIntoTheDrawing) {
  const std::string drawing = read("plan.dxf");
  // What a plug-in prints to standard output, as its log does, would stand in the drawing.
  const Outcome outcome =
      runLines({"ARX", "L", std::string(kBinDir) + "/testmodule.arx", "TESTPRINTS"}, {"--out", "-", "--quiet"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.out == drawing);
  EXPECT_THAT(outcome.err, StartsWith("for standard output\n"));
  // Closed streams: their numbers would go to the next files.
  const std::string program = "'" + std::string(kBinDir) + "/tolmex' ";
  const auto shell = [&](const std::string& line) { return call({"-c", line}, {.program = "/bin/sh"}); };
  EXPECT_EQ(shell(program + "run plan.dxf --command LIST --command ALL --command '' --out a.dxf <&- >&- 2>&-").status,
            4);
  EXPECT_TRUE(read("a.dxf") == drawing);
  EXPECT_EQ(shell(program + "run plan.dxf --command NOSUCH --out b.dxf 2>&-").status, 3);
  EXPECT_EQ(shell(program + "run - --command REGEN <&-").err,
            "tolmex: standard input: cannot be read: Bad file descriptor\n");
  EXPECT_EQ(shell(program + "run plan.dxf --command REGEN --quiet --out - >&-"),
            (Outcome{4, "", "tolmex: standard output cannot be written\n"}));
}

TEST_F(Outputs, OneFailureDoesNotStopTheRest) {
  const Outcome outcome =
      runLines({"REGEN"}, {"--quiet", "--out", "/proc/a.dxf", "--picture", "/proc/a.svg", "--picture", "good.svg"});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 2) << outcome.err;
  EXPECT_THAT(read("good.svg"), EndsWith("</svg>\n"));
}

TEST_F(Outputs, AnUntouchedDrawingKeepsItsBytes) {
  fs::permissions(plan, fs::perms::owner_read | fs::perms::owner_write);
  write("target.dxf", "old");
  fs::permissions(folder / "target.dxf", fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  fs::create_symlink("target.dxf", folder / "link.dxf");
  EXPECT_EQ(runLines({"REGEN"}, {"--quiet", "--out", "link.dxf"}), (Outcome{0, "", ""}));
  EXPECT_EQ(read("target.dxf"), read("plan.dxf"));
  EXPECT_TRUE(fs::is_symlink(folder / "link.dxf"));
  EXPECT_EQ(fs::status(folder / "target.dxf").permissions(),
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

TEST_F(Outputs, PicturesAreWholeAndTheSameEveryTime) {
  const Arguments names1{"--out", "a.dxf", "--picture", "a.png", "--picture", "a.svg", "--picture", "a.pdf"};
  ASSERT_EQ(illustrate(names1), (Outcome{0, "", ""}));
  EXPECT_THAT(read("a.png"), StartsWith("\x89PNG\r\n"));
  EXPECT_THAT(read("a.png"), HasSubstr("IEND"));
  EXPECT_THAT(read("a.svg"), EndsWith("</svg>\n"));
  EXPECT_THAT(read("a.pdf"), StartsWith("%PDF-1."));
  EXPECT_THAT(read("a.pdf"), EndsWith("%%EOF\n"));
  const Arguments names2{"--out", "b.dxf", "--picture", "b.png", "--picture", "b.svg", "--picture", "b.pdf"};
  ASSERT_EQ(illustrate(names2).status, 0);
  fs::create_directory(folder / "sub");
  fs::create_directory(folder / "saved");
  fs::copy_file(folder / "a.dxf", folder / "saved/plan.dxf");  // of one name: it is the title
  for (const char* ending : {"dxf", "png", "svg", "pdf"}) {
    const std::string first = read(std::string("a.") + ending);
    EXPECT_TRUE(first == read(std::string("b.") + ending)) << ending;
    if (ending == std::string_view("dxf")) continue;
    // The saved drawing shows what the open one showed, wherever one stands.
    const std::string there = std::string("c.") + ending;
    EXPECT_EQ(call({"picture", "../saved/plan.dxf", there}, {.folder = folder / "sub"}), (Outcome{0, "", ""}));
    EXPECT_TRUE(first == read("sub/" + there)) << ending;
  }
}

TEST_F(Outputs, AnEmptyPictureIsRefusedWithBothRectangles) {
  EXPECT_EQ(call({"picture", "plan.dxf", "a.png", "--window", "0,0,10,20.5"}),
            (Outcome{4, "",
                     "tolmex: a.png: Nothing visible lies in the window (0, 0) - (10, 20.5); the drawing covers "
                     "(25496200, 6672384.5) - (25496346.2, 6672517.2).\n"}));
  EXPECT_EQ(call({"picture", "plan.dxf", "a.png", "--layers", "NONE*"}).status, 4);
  EXPECT_FALSE(fs::exists(folder / "a.png"));
}

TEST_F(Outputs, InfoCountsElementsAndNamesProblems) {
  const Outcome before = call({"info", "plan.dxf"});
  EXPECT_EQ(before.status, 0);
  EXPECT_EQ(before.err, "");
  EXPECT_THAT(before.out, StartsWith("plan.dxf: AC1027, 144 entities in model space, 17 layers\nelements\n"
                                     "shadows\n  default settings\n"));
  EXPECT_THAT(before.out, HasSubstr("\nfonts\n  arial.ttf: 22 texts, drawn with "));
  EXPECT_THAT(before.out, EndsWith("\nproblems 0\n"));
  ASSERT_EQ(illustrate({"--out", "a.dxf"}).status, 0);
  const Outcome after = call({"info", "a.dxf"});
  EXPECT_EQ(after.status, 0);
  EXPECT_EQ(after.err, "");
  EXPECT_THAT(after.out, StartsWith("a.dxf: AC1027, 486 entities in model space, 57 layers\n"
                                    "elements\n"
                                    "  Asfaltti         10, 10 with a fill\n"
                                    "  Nurmialue         5, 5 with a fill\n"
                                    "  Sora-alue         2, 2 with a fill\n"
                                    "  Pihalaatta        7, 7 with a fill\n"
                                    "  Polku             4, 4 with a fill\n"
                                    "  Pensas            6, 6 with a fill\n"
                                    "  Metsä             2, 2 with a fill\n"
                                    "  Lauta-aita        4\n"
                                    "  Kiviaita          3\n"
                                    "  Harjaviiva        6\n"
                                    "  parking rows      3\n"
                                    "fences 7\n"
                                    "  2A0: Lauta-aita, height 1.8\n"
                                    "  2A1: Lauta-aita, height 1.8\n"
                                    "  2A2: Lauta-aita, height 1.8\n"
                                    "  2A3: Lauta-aita, height 1.8\n"
                                    "  2A8: Kiviaita, height 1.2\n"
                                    "  2A9: Kiviaita, height 1.2\n"
                                    "  2AA: Kiviaita, height 1.2\n"
                                    "buildings 8\n"
                                    "  2C0: floors 2 of 3, base 0.4, eaves 0.5, ridge 2E0 at 2.5, colours sun 42 shade "
                                    "45\n"));
  EXPECT_THAT(after.out, testing::HasSubstr("shadows\n  direction 40 degrees, length 2.5 per floor, colour 7, scale "
                                            "0.15, lines\ncolours\n  tma_asf           254\n"));
  EXPECT_THAT(after.out, HasSubstr("2D1: floors 4 of 3, base 0.4, eaves 0, flat roof, colours sun 42 shade 45\n"));
  EXPECT_THAT(after.out, EndsWith("problems 0\n"));
  // A fill that somebody takes away is missed.
  const std::string text = read("a.dxf");
  const std::size_t key = text.find("HATCH_HANDLE");
  const std::size_t handle = text.find("1005\n", key) + 5;
  write("b.dxf", std::string(text).replace(handle, text.find('\n', handle) - handle, "FFF0"));
  const Outcome broken = call({"info", "b.dxf"});
  EXPECT_EQ(broken.status, 0);
  EXPECT_THAT(broken.err, testing::MatchesRegex("tolmex: b.dxf: LWPOLYLINE [0-9A-F]+: its fill FFF0 is not in the "
                                                "drawing\n"));
  EXPECT_THAT(broken.out, EndsWith("problems 1\n"));
}

}  // namespace

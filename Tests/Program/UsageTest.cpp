// Wrong usage, and drawings that cannot be read.
#include "Support.h"

using namespace tests;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class Usage : public Program {};

constexpr const char* kHint = "\nRun with --help for more information.\n";

TEST_F(Usage, HelpAndVersion) {
  EXPECT_EQ(call({"--version"}), (Outcome{0, "tolmex 1.0\n", ""}));
  const Outcome help = call({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.err, "");
  for (const char* part : {"  run ", "  shell ", "  picture ", "  info ", "4 an output could not be written"})
    EXPECT_THAT(help.out, HasSubstr(part));
  for (const char* name : {"run", "shell", "picture", "info", "desktop"})
    EXPECT_EQ(call({name, "--help"}).status, 0) << name;
}

TEST_F(Usage, WrongArgumentsAreNamedWithTheAcceptedForms) {
  const std::vector<std::pair<Arguments, std::string>> cases = {
      {{}, std::string("A subcommand is required") + kHint},
      {{"ruin", "plan.dxf"},
       std::string("ruin: No such call; the calls are run, shell, picture, info and desktop") + kHint},
      {{"run"}, std::string("PLAN is required") + kHint},
      {{"run", "plan.dxf", "", "--command", "REGEN"}, std::string("PLAN: a file name is empty") + kHint},
      {{"run", "plan.dxf"},
       std::string("--script, --command or an output (--out, --out-dir, --picture) is required") + kHint},
      {{"picture", "plan.dxf", "a.png", "--widht", "500"},
       std::string("--widht: No such option of picture; nearest: --width") + kHint},
      {{"info", "plan.dxf", "--nonsense=5"}, std::string("--nonsense: No such option of info") + kHint},
      {{"run", "plan.dxf", "other.dxf", "--command", "REGEN", "--out", "a.dxf"},
       "tolmex: --out names one file; with several drawings give --out-dir DIR\n"},
      {{"run", "plan.dxf", "other.dxf", "--command", "REGEN", "--picture", "a.png"},
       "tolmex: --picture names one file; with several drawings give --out-dir DIR --format png\n"},
      {{"run", "plan.dxf", "--command", "REGEN", "--out", "a.dxf", "--out-dir", "out"},
       std::string("--out excludes --out-dir") + kHint},
      {{"run", "-", "--script", "-"}, "tolmex: -: standard input can be one drawing, or the script\n"},
      {{"run", "-", "--command", "REGEN", "--out-dir", "out"},
       "tolmex: the drawing on standard input has no name for --out-dir; give --out FILE\n"},
      {{"run", "plan.dxf", "--command", "REGEN", "--format", "png"},
       "tolmex: --format goes with --out-dir DIR, or with a picture on standard output (--picture -)\n"},
      {{"run", "plan.dxf", "--command", "REGEN", "--jobs", "0"},
       std::string("--jobs: \"0\" is not a whole number from 1 to 256") + kHint},
      {{"picture", "plan.dxf"}, std::string("OUT, the name of the picture, or --out-dir DIR is required") + kHint},
      {{"picture", "plan.dxf", "other.dxf", "a.png"}, std::string("PLAN: several drawings need --out-dir DIR") + kHint},
      {{"picture", "plan.dxf", "a.png", "--format", "svg"},
       "tolmex: a.png: the name and --format ask for different formats\n"},
      {{"picture", "plan.dxf", "-", "--format", "gif"},
       std::string("--format: \"gif\" is no picture format; use png, svg or pdf") + kHint},
      {{"desktop"}, "tolmex: desktop: the window is not part of this build; use run, shell or picture\n"},
      {{"run", "plan.dxf", "--command", "REGEN", "--out", "a.dwg"},
       "tolmex: a.dwg: drawings are saved as DXF; the name must end in .dxf\n"},
      {{"run", "plan.dxf", "--command", "REGEN", "--out", ""},
       "tolmex: \"\": drawings are saved as DXF; the name must end in .dxf\n"},
      {{"run", "plan.dxf", "--command", "REGEN", "--picture", "a.gif"},
       "tolmex: a.gif: a picture's name must end in .png, .svg or .pdf\n"},
      {{"run", "plan.dxf", "--command", "REGEN", "--support", "nowhere"},
       std::string("--support: Directory does not exist: nowhere") + kHint},
      {{"run", "plan.dxf", "--command", "REGEN", "--set", "LTSCALE"}, "tolmex: --set LTSCALE: give it as NAME=VALUE\n"},
      {{"run", "plan.dxf", "--command", "REGEN", "--set", "LTSCALEE=1"},
       "tolmex: --set LTSCALEE=1: unknown system variable \"LTSCALEE\"; nearest: LTSCALE\n"},
      {{"run", "plan.dxf", "--command", "REGEN", "--set", "LTSCALE=wide"},
       "tolmex: --set LTSCALE=wide: LTSCALE: needs a number\n"},
      {{"picture", "plan.dxf", "a.gif"}, "tolmex: a.gif: a picture's name must end in .png, .svg or .pdf\n"},
      {{"picture", "plan.dxf", "a.png", "--width", "0"},
       std::string("--width: Picture width \"0\" is not a whole number of pixels from 1 to 30000.") + kHint},
      {{"picture", "plan.dxf", "a.png", "--paper", "B9"},
       std::string("--paper: Paper \"B9\" is not known; use A0, A1, A2, A3, A4 or A5, with -landscape or -portrait, or "
                   "WIDTHxHEIGHT in millimetres.") +
           kHint},
      {{"picture", "plan.dxf", "a.png", "--scale", "500"},
       std::string("--scale: Scale \"500\" is not of the form 1:500.") + kHint},
      {{"picture", "plan.dxf", "a.png", "--window", "0,0,nan,5"},
       std::string("--window: Picture window \"0,0,nan,5\" is not of the form x1,y1,x2,y2 with two opposite corners.") +
           kHint},
      {{"picture", "plan.dxf", "a.png", "--background", "blurple"},
       std::string(
           "--background: Background \"blurple\" is not a colour; use a name such as white, #rrggbb, or transparent.") +
           kHint},
      {{"picture", "plan.dxf", "a.png", "--lineweights", "-1"},
       std::string("--lineweights: Lineweights \"-1\" are not on, off or a factor from above 0 to 100.") + kHint},
      {{"picture", "plan.dxf", "a.png", "--grayscale", "--monochrome"},
       std::string("--grayscale excludes --monochrome") + kHint},
  };
  for (const auto& [arguments, sentence] : cases) {
    EXPECT_EQ(call(arguments), (Outcome{1, "", sentence})) << testing::PrintToString(arguments);
  }
  EXPECT_EQ(names(), std::vector<std::string>{"plan.dxf"});
}

TEST_F(Usage, UnreadableDrawingsAreNamed) {
  fs::create_directory(folder / "folder.dxf");
  write("empty.dxf", "");
  write("letter.dxf", "Dear reader,\nthis is no drawing.\n");
  write("binary.dxf", std::string("AutoCAD Binary DXF\r\n\x1a\0\0\0SECTION", 31));
  write("plan.dwg", std::string("AC1027\0\0\0\0\0", 11));
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"missing.dxf", "missing.dxf: cannot be opened: No such file or directory"},
      {"folder.dxf", "folder.dxf: this is a folder, not a drawing"},
      {"empty.dxf", "empty.dxf: the file is empty"},
      {"binary.dxf", "binary.dxf: nothing of a drawing can be read from it"},
  };
  for (const auto& [file, sentence] : cases) {
    const Outcome expected{2, "", "tolmex: " + sentence + "\n"};
    EXPECT_EQ(call({"info", file}), expected);
    EXPECT_EQ(call({"picture", file, "a.png"}), expected);
    EXPECT_EQ(call({"run", file, "--command", "REGEN", "--out", "a.dxf"}), expected);
  }
  const Outcome letter = call({"info", "letter.dxf"});
  EXPECT_EQ(letter.status, 2);
  EXPECT_THAT(letter.err, StartsWith("tolmex: letter.dxf:1: expected a section, found group \"Dear reader,\"\n"));
  // Damaged, or nothing here to read it with: one sentence either way.
  const Outcome dwg = call({"info", "plan.dwg"});
  EXPECT_EQ(dwg.status, 2);
  EXPECT_THAT(dwg.err, testing::MatchesRegex("tolmex: plan.dwg: [^\n]*DWG[^\n]*\n"));
  EXPECT_FALSE(fs::exists(folder / "a.png") || fs::exists(folder / "a.dxf"));
}

}  // namespace

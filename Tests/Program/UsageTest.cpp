// Wrong usage, and drawings that cannot be read.
#include <algorithm>
#include <sstream>

#include "Support.h"

using namespace tests;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class Usage : public Program {};

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
  // Arguments parted by blanks; '' is an empty one.
  using Cases = std::vector<std::pair<std::string, std::string>>;
  const auto expectRefused = [this](const Cases& cases, const std::string& before, const std::string& after) {
    for (const auto& [text, sentence] : cases) {
      std::istringstream words(text);
      Arguments arguments{std::istream_iterator<std::string>(words), {}};
      std::replace(arguments.begin(), arguments.end(), std::string("''"), std::string());
      EXPECT_EQ(call(arguments), (Outcome{1, "", before + sentence + after})) << text;
    }
  };
  const Cases hinted = {
      {"", "A subcommand is required"},
      {"ruin plan.dxf", "ruin: No such call; the calls are run, shell, picture, info, import, sun and desktop"},
      {"run", "PLAN is required"},
      {"run plan.dxf '' --command REGEN", "PLAN: a file name is empty"},
      {"run plan.dxf", "--script, --command or an output (--out, --out-dir, --picture) is required"},
      {"picture plan.dxf a.png --widht 500", "--widht: No such option of picture; nearest: --width"},
      {"info plan.dxf --nonsense=5", "--nonsense: No such option of info"},
      {"run plan.dxf --command REGEN --out a.dxf --out-dir out", "--out excludes --out-dir"},
      {"run plan.dxf --command REGEN --jobs 0", "--jobs: \"0\" is not a whole number from 1 to 256"},
      {"picture plan.dxf", "OUT, the name of the picture, or --out-dir DIR is required"},
      {"picture plan.dxf other.dxf a.png", "PLAN: several drawings need --out-dir DIR"},
      {"picture plan.dxf - --format gif", "--format: \"gif\" is no picture format; use png, svg, pdf, tif or html"},
      {"run plan.dxf --command REGEN --support nowhere", "--support: Directory does not exist: nowhere"},
      {"picture plan.dxf a.png --width 0",
       "--width: Picture width \"0\" is not a whole number of pixels from 1 to 30000."},
      {"picture plan.dxf a.png --paper B9",
       "--paper: Paper \"B9\" is not known; use A0, A1, A2, A3, A4 or A5, with -landscape or -portrait, or "
       "WIDTHxHEIGHT in millimetres."},
      {"picture plan.dxf a.png --scale 500", "--scale: Scale \"500\" is not of the form 1:500."},
      {"picture plan.dxf a.png --window 0,0,nan,5",
       "--window: Picture window \"0,0,nan,5\" is not of the form x1,y1,x2,y2 with two opposite corners."},
      {"picture plan.dxf a.png --background blurple",
       "--background: Background \"blurple\" is not a colour; use a name such as white, #rrggbb, or transparent."},
      {"picture plan.dxf a.png --lineweights -1",
       "--lineweights: Lineweights \"-1\" are not on, off or a factor from above 0 to 100."},
      {"picture plan.dxf a.png --grayscale --monochrome", "--monochrome: --grayscale excludes --monochrome"},
      {"picture plan.dxf a.png --dpi 300", "--dpi goes with --paper, --scale, --sheet or --layout"},
  };
  expectRefused(hinted, "", "\nRun with --help for more information.\n");
  const Cases told = {
      {"run plan.dxf other.dxf --command REGEN --out a.dxf",
       "--out names one file; with several drawings give --out-dir DIR"},
      {"run plan.dxf other.dxf --command REGEN --picture a.png",
       "--picture names one file; with several drawings give --out-dir DIR --format png"},
      {"run - --script -", "-: standard input can be one drawing, or the script"},
      {"run - --command REGEN --out-dir out",
       "the drawing on standard input has no name for --out-dir; give --out FILE"},
      {"run plan.dxf --command REGEN --format png",
       "--format goes with --out-dir DIR, or with a picture on standard output (--picture -)"},
      {"picture plan.dxf a.png --format svg", "a.png: the name and --format ask for different formats"},
      {"desktop", "desktop: there is no display; run, shell and picture need none"},
      {"run plan.dxf --command REGEN --out a.dwg", "a.dwg: drawings are saved as DXF; the name must end in .dxf"},
      {"run plan.dxf --command REGEN --out ''", "\"\": drawings are saved as DXF; the name must end in .dxf"},
      {"run plan.dxf --command REGEN --picture a.gif",
       "a.gif: a picture's name must end in .png, .svg, .pdf, .tif or .html"},
      {"run plan.dxf --command REGEN --set LTSCALE", "--set LTSCALE: give it as NAME=VALUE"},
      {"run plan.dxf --command REGEN --set LTSCALEE=1",
       "--set LTSCALEE=1: unknown system variable \"LTSCALEE\"; nearest: LTSCALE"},
      {"run plan.dxf --command REGEN --set LTSCALE=wide", "--set LTSCALE=wide: LTSCALE: needs a number"},
      {"picture plan.dxf a.png --real-text",
       "a.png: --real-text writes letters as text, so it goes with SVG and web pages only."},
      {"run plan.dxf --command REGEN --out b.dxf --picture a.svg --picture b.pdf --real-text",
       "b.pdf: --real-text writes letters as text, so it goes with SVG and web pages only."},
      {"run plan.dxf --command REGEN --out b.dxf --picture a.png --layout *",
       "a.png: --layout * makes a page of each layout, so it goes with PDF only."},
      {"picture plan.dxf a.gif", "a.gif: a picture's name must end in .png, .svg, .pdf, .tif or .html"},
  };
  expectRefused(told, "tolmex: ", "\n");
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

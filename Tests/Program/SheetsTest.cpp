// Pictures on sheets.
#include "Support.h"

using namespace tests;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

using Sheets = Program;

TEST_F(Sheets, OfTheProgramAndOwnOnesAreFilled) {
  const Arguments fields{"--field", "otsikko=Koivukatu 4\u20138", "--field", "PAIVAYS=2.3.2026"};
  Arguments arguments{"picture", "plan.dxf", "a.pdf", "--sheet", "A3-kaava"};
  arguments.insert(arguments.end(), fields.begin(), fields.end());
  EXPECT_EQ(call(arguments), (Outcome{0, "", ""}));
  const std::string pdf = read("a.pdf");
  ASSERT_THAT(pdf, StartsWith("%PDF"));
  double bottom = 0, right = 0, top = 0;
  ASSERT_EQ(std::sscanf(pdf.c_str() + pdf.find("/MediaBox"), "/MediaBox [0 %lf %lf %lf]", &bottom, &right, &top), 3);
  EXPECT_NEAR(right, 420 * 72 / 25.4, 1e-3);
  EXPECT_NEAR(top - bottom, 297 * 72 / 25.4, 1e-3);
  // The same call of `run`, with a copy of the sheet in a support folder.
  const fs::path own = folder / "own";
  fs::create_directory(own);
  fs::copy_file(fs::path(kBinDir) / "sheets" / "A3-kaava.dxf", own / "mine.dxf");
  Arguments run{"run", "plan.dxf", "--picture", "b.pdf", "--sheet", "mine", "--support", own};
  run.insert(run.end(), fields.begin(), fields.end());
  EXPECT_EQ(call(run).status, 0);
  EXPECT_EQ(read("b.pdf"), pdf);
  // And of a script.
  EXPECT_EQ(call({"run", "plan.dxf", "--support", own, "--command", "PICTURE", "--command",
                  "c.pdf --sheet mine --field \"otsikko=Koivukatu 4\u20138\" --field PAIVAYS=2.3.2026"})
                .status,
            0);
  EXPECT_EQ(read("c.pdf"), pdf);
}

TEST_F(Sheets, LegendTakesOwnTexts) {
  write("legend.txt", "; own texts\nNurmialue = Nurmikko\nAsfaltti =\n");
  write("wrong.txt", "Nurmialue\n");
  EXPECT_EQ(call({"picture", "plan.dxf", "a.svg", "--sheet", "A3-kaava", "--legend", "legend.txt"}).status, 0);
  const Outcome wrong = call({"picture", "plan.dxf", "a.svg", "--sheet", "A3-kaava", "--legend", "wrong.txt"});
  EXPECT_EQ(wrong.status, 1);
  EXPECT_THAT(wrong.err, HasSubstr("wrong.txt:1: a line of a legend is of the form name = text"));
}

TEST_F(Sheets, RefusalsNameWhatThereIs) {
  write("bare.dxf", "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n0\n20\n0\n11\n9\n21\n9\n0\nENDSEC\n0\nEOF\n");
  for (const auto& [options, told] : std::vector<std::pair<Arguments, std::string>>{
           {{"--sheet", "A9"}, "there is no sheet \"A9\"; the program has A4-kaava, A3-kaava, A2-kaava"},
           {{"--sheet", "bare.dxf"}, "nothing lies on a layer KUVA, which says where the plan goes"},
           {{"--sheet", "A4-kaava", "--field", "X=1"}, "the sheet has no field X; it has OTSIKKO, KOHDE"},
           {{"--sheet", "A4-kaava", "--field", "X"}, "Field \"X\" is not of the form NAME=TEXT."},
           {{"--sheet", "A4-kaava", "--paper", "A3"}, "--sheet excludes --paper"},
           {{"--field", "X=1"}, "--field goes with --sheet"}}) {
    Arguments arguments{"picture", "plan.dxf", "a.png"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = call(arguments);
    EXPECT_EQ(outcome.status, 1) << told;
    EXPECT_THAT(outcome.err, HasSubstr(told));
  }
}

}  // namespace

// The web page of a plan.
#include <cstdlib>
#include <regex>

#include "Support.h"

using namespace tests;
using testing::HasSubstr;
using testing::Not;

namespace {

class WebPage : public Program {
 protected:
  /// The illustrated example as a page.
  void SetUp() override {
    const Outcome made = call({"run", "plan.dxf", "--script", kExamples / "kortteli.scr", "--support", kExamples,
                               "--quiet", "--picture", "plan.html"});
    ASSERT_EQ(made.status, 0) << made.err;
  }
};

TEST_F(WebPage, IsOneSmallFileThatNeedsNoOther) {
  const std::string page = read("plan.html");
  EXPECT_LT(page.size(), 2'000'000U);
  // Addresses other than the names of standards, and everything that would load a file.
  const std::string own = std::regex_replace(page, std::regex("xmlns(:xlink)?=\"http://www.w3.org/[^\"]*\""), "");
  for (const char* const word : {"http:", "https:", "src=", "@import", "<link", "<iframe", "fetch(", "file:", "@PLAN@"})
    EXPECT_THAT(own, Not(HasSubstr(word)));
  EXPECT_THAT(page, HasSubstr("<title>plan</title>"));
  EXPECT_THAT(page, HasSubstr("<g><title>Asfaltti</title><desc>"));
  EXPECT_THAT(page, HasSubstr("<g data-layer=\"tma_nurmi\">"));
}

TEST_F(WebPage, WorksInABrowser) {
  if (std::system("command -v chromium >/dev/null 2>&1") != 0) GTEST_SKIP() << "needs chromium";
  const Outcome worked =
      call({fs::path(kSourceDir) / "Tests/Program/browse_page.py", "plan.html"}, {.program = "/usr/bin/python3"});
  EXPECT_EQ(worked.status, 0) << worked.err;
  EXPECT_EQ(worked.out, R"(files asked for: 1
said by the browser: []
wheel zooms in: True
drag moves: True
key ArrowLeft goes left: True
key ArrowRight goes right: True
key ArrowUp goes up: True
key ArrowDown goes down: True
key + goes closer: True
key - goes farther: True
key 0 shows all: True
button #in: True
button #out: True
button #whole: True
hover: Asfaltti 855 m²
hover: Lauta-aita 61 m, korkeus 1.8 m
hover: Rakennus (4 kerrosta): harjaviivaa ei määritelty.
hover: Pihalaatta 676 m²
Escape hides it: True
grass is switched off: True
the switch of all is between: True
and on again by key: True
all are off: True
legend: True
bar: 20 m
words: ['Selitykset Tasot', 'Legend Layers']
key t hides the panel: True
phones begin without the panel: True
tap: Nurmialue
)");
}

}  // namespace

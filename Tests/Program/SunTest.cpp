// Shadow studies. Builds without libnova and PROJ say so instead.
#include "Support.h"

namespace {

using namespace tests;
using testing::HasSubstr;
using testing::Not;

class Sun : public Program {
 protected:
  void SetUp() override {
    if (!fs::exists(fs::path(kBinDir) / "libtolmexsun.so")) GTEST_SKIP() << "this build is without libnova";
  }
};

TEST_F(Sun, MakesAPictureForEachHourAndASheetOfAll) {
  write("lines.scr",
        "PLINE\n25496000,6672000\n25496030,6672000\n25496030,6672020\n25496000,6672020\nC\n"
        "TLM_MUOK_RAKENNUS\nL\n\n30211 2\n30206 3.2\n30207 0.5\n30208 0.4\nOK\n"
        "PLINE\n25496040,6672000\n25496040,6672020\n\nTLM_MUOK_AITA_LAUTA\nL\n\nTLM_ASETA_KORKEUS\nP\n\n1.5\n");
  ASSERT_EQ(call({"run", "plan.dxf", "--script", "lines.scr", "--out", "house.dxf", "--quiet"}).status, 0);
  const std::string before = read("house.dxf");
  const Outcome made =
      call({"sun", "house.dxf", "--date", "2026-03-20", "--times", "12,15:30,18:30", "--out-dir", "study"});
  EXPECT_EQ(made.status, 0) << made.err;
  // 3.2 m a floor / tan 29.55 degrees.
  EXPECT_THAT(made.out, HasSubstr("12:00: azimuth 172.02, elevation 29.5"));
  EXPECT_THAT(made.out, HasSubstr("5.65 m a floor"));
  EXPECT_THAT(made.err, HasSubstr("18:30: the sun is"));
  EXPECT_THAT(made.err, HasSubstr("below 3 degrees no shadows are drawn"));
  EXPECT_THAT(made.err, Not(HasSubstr("nothing found")));
  EXPECT_TRUE(fs::exists(folder / "study/house-2026-03-20-1530.png"));
  EXPECT_FALSE(fs::exists(folder / "study/house-2026-03-20-1830.png"));
  const std::string sheet = read("study/house-2026-03-20.svg");
  EXPECT_THAT(sheet, HasSubstr("klo 15:30"));
  EXPECT_THAT(sheet, HasSubstr("data:image/png;base64,iVBOR"));
  EXPECT_EQ(read("house.dxf"), before);
}

TEST_F(Sun, RefusesWhatIsNoTimeOrPlace) {
  const auto refusal = [this](const Arguments& more) {
    Arguments all = {"sun", "plan.dxf", "--out-dir", "study"};
    all.insert(all.end(), more.begin(), more.end());
    const Outcome refused = call(all);
    EXPECT_EQ(refused.status, 1) << refused.err;
    return refused.err;
  };
  EXPECT_THAT(refusal({"--date", "20.3.2026", "--times", "9"}), HasSubstr("is no date; give it as 2026-03-20"));
  EXPECT_THAT(refusal({"--date", "2026-03-20", "--times", "9,25"}), HasSubstr("\"25\" is no time"));
  EXPECT_THAT(refusal({"--date", "2026-02-30", "--times", "9"}), HasSubstr("skipped by the clock"));
  EXPECT_THAT(refusal({"--date", "2026-03-20", "--times", "9", "--time-zone", "Mars"}), HasSubstr("no such time zone"));
  EXPECT_THAT(refusal({"--date", "2026-03-20", "--times", "9", "--crs", "GK"}), HasSubstr("no such coordinate system"));
  EXPECT_FALSE(fs::exists(folder / "study/plan-2026-03-20.svg"));
}

}  // namespace

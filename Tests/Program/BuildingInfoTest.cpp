// What `info` tells of buildings, fences and their shadows, and of what is wrong with their records.
#include "Support.h"

using namespace tests;
using testing::HasSubstr;

namespace {

class BuildingInfo : public Program {
 protected:
  void SetUp() override {
    ASSERT_EQ(call({"run", "plan.dxf", "--script", kExamples / "kortteli.scr", "--support", kExamples, "--quiet",
                    "--out", "a.dxf"}),
              (Outcome{0, "", ""}));
    text_ = read("a.dxf");
  }
  /// Replaces the first such lines behind the entity's handle.
  void damage(const std::string& handle, const std::string& lines, const std::string& by) {
    const std::size_t at = text_.find(lines, text_.find("\nLWPOLYLINE\n5\n" + handle + "\n"));
    ASSERT_NE(at, std::string::npos) << handle << " " << lines;
    text_.replace(at, lines.size(), by);
  }

  std::string text_;
};

TEST_F(BuildingInfo, SaysWhatIsWrongWithARecord) {
  damage("2C0", "\n2E0\n", "\nFFFFF\n");        // leads nowhere
  damage("2C1", "\n2E1\n", "\n200\n");          // to another element
  damage("2D0", "\nroofheight\n", "\nroof\n");  // a key is missing
  damage("2D1", "\nnrfloors\n1000\n4\n", "\nnrfloors\n1000\nmany\n");
  damage("2D2", "\ntolm_bld_suncolor\n", "\nsuncolor\n");  // no building any more
  damage("2A0", "\nHEIGHT\n1000\n1.8\n", "\nHEIGHT\n1000\nkorkea\n");
  damage("2A1", "\nHEIGHT\n1000\n1.8\n", "\nHEIGHT\n1000\n0\n");
  text_.replace(text_.find("\nSHADOWSCALE\n"), 13, "\nSCALE\n");
  write("a.dxf", text_);
  const Outcome info = call({"info", "a.dxf"});
  EXPECT_EQ(info.status, 0);
  for (const char* const problem : {"LWPOLYLINE 2C0: its ridge line FFFFF is not in the drawing\n",
                                    "LWPOLYLINE 2C1: its ridge line 200 is not tagged as one\n",
                                    "LWPOLYLINE 2D0: the building record lacks \"roofheight\"\n",
                                    "LWPOLYLINE 2D1: \"nrfloors\" of the building is not a number: \"many\"\n",
                                    "LWPOLYLINE 2D2: the building record lacks \"tolm_bld_suncolor\"\n",
                                    "LWPOLYLINE 2A0: the height is not a number: \"korkea\"\n",
                                    "the shadow settings lack \"SHADOWSCALE\"; the default counts\n"}) {
    EXPECT_THAT(info.err, HasSubstr(problem));
  }
  EXPECT_THAT(info.out,
              HasSubstr("  2A0: Lauta-aita, no height\n  2A1: Lauta-aita, no height\n  2A2: Lauta-aita, height"));
  EXPECT_THAT(info.out, HasSubstr("2C0: floors 2 of 3, base 0.4, eaves 0.5, ridge FFFFF (dead), colours"));
  EXPECT_THAT(info.out, HasSubstr("problems 7\n"));
}

TEST_F(BuildingInfo, ReadsRecordsAsThePlugInDoes) {
  damage("2A0", "\nHEIGHT\n1000\n1.8\n", "\nHEIGHT\n1040\n2.50\n");                 // a number: as text
  damage("2A1", "\nHEIGHT\n1000\n1.8\n", "\nHEIGHT\n1002\n{\n1000\n3\n1002\n}\n");  // a list: none
  damage("2A2", "\nHEIGHT\n1000\n1.8\n", "\nHEIGHT\n1000\n2 m\n");                  // what it begins with
  text_.replace(text_.find("\nSHADOWCOLOR\n 70\n") + 13, 3, " 90");
  write("a.dxf", text_);
  const Outcome info = call({"info", "a.dxf"});
  EXPECT_THAT(info.out, HasSubstr("  2A0: Lauta-aita, height 2.5\n  2A1: Lauta-aita, no height\n"
                                  "  2A2: Lauta-aita, height 2 m\n"));
  EXPECT_THAT(info.out, HasSubstr("per floor, colour 7, scale"));
  EXPECT_EQ(info.err.find("SHADOWCOLOR"), std::string::npos) << info.err;
}

}  // namespace

// Shadows, groups and records of drawings under a reader that shares no code with us, which works them out again.
#include "Places.h"
#include "Support.h"

using namespace tests;

namespace {

const fs::path kTests = fs::path(kSourceDir) / "Tests";

class ShadowAudit : public Program {
 protected:
  void SetUp() override {
    ASSERT_EQ(python({"-c", "import ezdxf"}).status, 0) << "python3-ezdxf is not installed (tools/install-deps.sh)";
  }
  Outcome python(const Arguments& arguments) const { return call(arguments, {.program = "/usr/bin/python3"}); }
  Outcome shadowsOf(const fs::path& drawing) const { return python({kTests / "audit/audit_shadows.py", drawing}); }
  Outcome audit(const fs::path& drawing) const {
    return python({kTests / "audit/audit_dxf.py", "--expect", "expected.json", drawing});
  }
  void illustrate() const {
    ASSERT_EQ(call({"run", "plan.dxf", "--script", kExamples / "kortteli.scr", "--support", kExamples, "--quiet",
                    "--out", "a.dxf"}),
              (Outcome{0, "", ""}));
  }
};

TEST_F(ShadowAudit, TheExampleCastsWhatItsRecordsSay) {
  illustrate();
  EXPECT_EQ(shadowsOf("a.dxf"), (Outcome{0, "a.dxf: 8 buildings, 7 fences, 116 hatches, 0 errors\n", ""}));
  // Every item of a gable house's record, and the settings in degrees of 40.
  write("expected.json", R"({
    "xdata": [{"handle": "2C0", "application": "ORV_VR", "items": [
      [1000, "_ENTITYTYPE"], [1000, "building"], [1000, "rooflinelayer"], [1000, "tmv_harjav"],
      [1000, "baseheight"], [1000, "0.4"], [1000, "eavesWidth"], [1000, "0.5"], [1000, "floorheight"], [1000, "3"],
      [1000, "nrfloors"], [1000, "2"], [1000, "roofmaterial"], [1000, "Surf_MetalPlate"],
      [1000, "basematerial"], [1000, "Surf_Concrete"], [1000, "texwidth"], [1000, "16"],
      [1000, "basematerial"], [1000, "Surf_Concrete"], [1000, "materials"], [1000, "mat_rakennus"],
      [1000, "roofheight"], [1000, "2.5"], [1000, "TOLM_VERSION"], [1000, "1"],
      [1000, "tolm_bld_shadowcolor"], [1000, "45"], [1000, "tolm_bld_suncolor"], [1000, "42"],
      [1000, "tolm_roofline_handle"], [1005, "2E0"]]}],
    "xrecords": [{"path": ["orv_tolmex", "shadowSettings"], "items": [
      [1, "SHADOWANGLERAD"], [40, 0.6981317007977318], [1, "SHADOWCOLOR"], [70, 7],
      [1, "SHADOWLENGTHPERFLOOR"], [40, 2.5], [1, "SHADOWSCALE"], [40, 0.15], [1, "SHADOWHATCHTYPE"], [70, 10]]}]
  })");
  EXPECT_EQ(audit("a.dxf"), (Outcome{0, "a.dxf: 0 errors\n", ""}));

  // Again and again, with other settings, from the saved drawing: groups of before stay, but empty.
  ASSERT_EQ(call({"run", "a.dxf", "--quiet", "--out", "b.dxf", "--command", "TLM_VARJO_PAIVITA", "--command",
                  "TLM_VARJO_OMINAISUUDET", "--command", "30216 135", "--command", "30217 4", "--command",
                  "30203 Piste", "--command", "OK"}),
            (Outcome{0, "", ""}));
  EXPECT_EQ(shadowsOf("b.dxf"), (Outcome{0, "b.dxf: 8 buildings, 7 fences, 116 hatches, 0 errors\n", ""}));
  write("expected.json", R"({"emptied groups": ["Varjo"], "groups": [{"name": "Varjo0", "count": 0},
    {"name": "Varjo29", "count": 0}, {"name": "Varjo30", "count": 42, "description": "Aidan varjon hatch"}]})");
  EXPECT_EQ(audit("b.dxf"), (Outcome{0, "b.dxf: 0 errors\n", ""}));
}

TEST_F(ShadowAudit, BuildingsOfOtherProgramsCastTheSame) {
  write("expected.json", R"({"emptied groups": ["Varjo"]})");
  for (const char* const seed : {"1", "3"}) {
    ASSERT_EQ(python({kTests / "data/make_buildings_drawing.py", seed, "made.dxf"}), (Outcome{0, "", ""}));
    ASSERT_EQ(call({"run", "made.dxf", "--quiet", "--command", "TLM_VARJO_PAIVITA", "--out", "cast.dxf"}),
              (Outcome{0, "", ""}));
    const Outcome shadows = shadowsOf("cast.dxf");
    EXPECT_EQ(shadows.status, 0) << "seed " << seed << "\n" << shadows.err;
    EXPECT_EQ(audit("cast.dxf"), (Outcome{0, "cast.dxf: 0 errors\n", ""})) << "seed " << seed;
  }
}

TEST_F(ShadowAudit, AWrongShadowIsFound) {
  illustrate();
  std::string text = read("a.dxf");
  const std::size_t floors = text.find("nrfloors", text.find("\n2D0\n"));
  text.replace(text.find("\n3\n", floors), 3, "\n4\n");
  write("a.dxf", text);
  const Outcome wrong = shadowsOf("a.dxf");
  EXPECT_EQ(wrong.status, 1);
  EXPECT_THAT(wrong.err, testing::HasSubstr("a.dxf: missing shadow (("));
}

}  // namespace

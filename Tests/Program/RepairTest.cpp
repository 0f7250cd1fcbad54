// Damaged drawings and drawings of older versions, as users of the program meet them.
#include "Support.h"

using namespace tests;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class Repair : public Program {
 protected:
  /// The example plan, cut off in the middle of its entities.
  void writeCut() { write("cut.dxf", read("plan.dxf").substr(0, 30000)); }
};

TEST_F(Repair, ACutPlanIsOpenedAndEveryCallSaysWhatIsMissing) {
  writeCut();
  const Outcome info = call({"info", "cut.dxf"});
  EXPECT_EQ(info.status, 0);
  EXPECT_THAT(info.err, HasSubstr("tolmex: cut.dxf:5489: the file ends in the middle (EOF is missing)\n"));
  EXPECT_THAT(info.err, HasSubstr("tolmex: cut.dxf: left out in all: 1 (INSERT 1)\n"));
  EXPECT_THAT(info.err, testing::ContainsRegex("tolmex: cut.dxf:[0-9]+: [0-9A-F]+: INSERT left out: "));
  EXPECT_THAT(info.out, testing::ContainsRegex("problems [1-9][0-9]*\n$"));
  // Nothing else is said, and nothing less, where the drawing is only used.
  for (const Outcome& used :
       {call({"picture", "cut.dxf", "a.png"}), call({"run", "cut.dxf", "--quiet", "--command", "TLM_MUOK_ASFALTTI",
                                                     "--command", "ALL", "--command", "", "--out", "out.dxf"})}) {
    EXPECT_EQ(used.status, 0);
    EXPECT_EQ(used.err, info.err);
    EXPECT_EQ(used.out, "");
  }
  const Outcome result = call({"info", "out.dxf"});
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(result.out, HasSubstr("Asfaltti"));
}

TEST_F(Repair, TheCopyIsSoundAndTheOriginalStays) {
  writeCut();
  const std::string before = read("cut.dxf");
  const Outcome repaired = call({"info", "cut.dxf", "--repair", "sound.dxf"});
  EXPECT_EQ(repaired.status, 0);
  EXPECT_THAT(repaired.out, EndsWith("\nrepaired copy sound.dxf\n"));
  EXPECT_EQ(read("cut.dxf"), before);
  const Outcome sound = call({"info", "sound.dxf"});
  EXPECT_EQ(sound.err, "");
  EXPECT_THAT(sound.out, EndsWith("problems 0\n"));
  // The plan itself has nothing wrong: its copy is the plan.
  EXPECT_EQ(call({"info", "plan.dxf", "--repair", "same.dxf"}).status, 0);
  EXPECT_EQ(read("same.dxf"), read("plan.dxf"));

  for (const char* name : {"cut.dxf", "../" /* its folder by another way */}) {
    const std::string target = name[0] == '.' ? "../" + folder.filename().string() + "/cut.dxf" : name;
    const Outcome refused = call({"info", "cut.dxf", "--repair", target});
    EXPECT_EQ(refused.status, 4);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(read("cut.dxf"), before);
  }
  const Outcome misnamed = call({"info", "cut.dxf", "--repair", "sound.dwg"});
  EXPECT_EQ(misnamed,
            (Outcome{1, "", "tolmex: sound.dwg: a repaired copy is a DXF drawing; the name must end in .dxf\n"}));
}

TEST_F(Repair, NamesAreShownInTheirOwnLetters) {
  write("piha.dxf",
        "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n9\n$DWGCODEPAGE\n3\nANSI_"
        "932\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n"
        "0\nPOINT\n8\n\x95\x5c\x83\x5c\n10\n0\n20\n0\n0\nENDSEC\n0\nEOF\n");
  EXPECT_THAT(call({"info", "piha.dxf"}).err, HasSubstr("LAYER \"表ソ\" is used but was not defined"));
}

TEST_F(Repair, AnOldDrawingIsUpgradedInOneNote) {
  write(
      "old.dxf",
      "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nPOLYLINE\n8\nTALO\n66\n1\n"
      "70\n1\n0\nVERTEX\n8\nTALO\n10\n0\n20\n0\n0\nVERTEX\n8\nTALO\n10\n9\n20\n0\n0\nVERTEX\n8\nTALO\n10\n9\n20\n9\n"
      "0\nSEQEND\n0\nENDSEC\n0\nEOF\n");
  const std::string note =
      "tolmex: old.dxf: the drawing is of version AC1009 (R12); it was upgraded to AC1015 (2000)\n";
  const Outcome info = call({"info", "old.dxf"});
  EXPECT_EQ(info.err, note);
  EXPECT_THAT(info.out, StartsWith("old.dxf: AC1015, 1 entities in model space, 2 layers\n"));
  EXPECT_THAT(info.out, EndsWith("problems 0\n"));
  EXPECT_EQ(call({"run", "old.dxf", "--quiet", "--command", "TLM_MUOK_ASFALTTI", "--command", "ALL", "--command", "",
                  "--out", "new.dxf"}),
            (Outcome{0, "", note}));
  const Outcome upgraded = call({"info", "new.dxf"});
  EXPECT_EQ(upgraded.err, "");
  EXPECT_THAT(upgraded.out, testing::ContainsRegex("Asfaltti +1, 1 with a fill"));
}

}  // namespace

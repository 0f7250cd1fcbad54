// What the program leaves alone, shown with drawings made for the purpose by a generator that shares no code with it.
#include "Places.h"
#include "Support.h"

using namespace tests;

namespace {

const fs::path kAudit = fs::path(kSourceDir) / "Tests/audit";
const fs::path kProgram = fs::path(kBinDir) / "tolmex";

using Lossless = Program;

TEST_F(Lossless, OnlyWhatACommandChangesIsChanged) {
  const Outcome probe =
      call({kAudit / "probe_lossless.py", kProgram, "--seeds", "1", "12"}, {.program = "/usr/bin/python3"});
  EXPECT_EQ(probe, (Outcome{0, "12 drawings, 0 with faults\n", ""}));
}

TEST_F(Lossless, KillsLeaveOldOrNewFilesAndNothingBetween) {
  const Outcome probe =
      call({kAudit / "probe_saving.py", kProgram, "--only", "kills", "--kills", "12"}, {.program = "/usr/bin/python3"});
  EXPECT_EQ(probe.status, 0) << probe.out << probe.err;
}

}  // namespace

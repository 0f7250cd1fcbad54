// Calls on outputs that fail in the middle: the old file stands, one sentence says why, the status is 4.
#include <cerrno>
#include <cstring>

#include "Support.h"

using namespace tests;

namespace {

class IoFaults : public Program {
 protected:
  /// The call with the preloaded library that makes `wish` true (see Tests/Faults/Shim.cpp).
  Outcome callWith(const std::string& wish, const Arguments& arguments, const fs::path& standardIn = {}) const {
    Surroundings surroundings;
    surroundings.standardIn = standardIn;
    // Sanitizers want to be loaded first, which they need not be for calls on files.
    const char* const sanitizer = std::getenv("ASAN_OPTIONS");
    surroundings.variables = {
        "LD_PRELOAD=" + std::string(kBinDir) + "/libtolmex_shim.so", "TOLMEX_SHIM=" + wish,
        std::string("ASAN_OPTIONS=verify_asan_link_order=0:") + (sanitizer != nullptr ? sanitizer : "")};
    return call(arguments, surroundings);
  }
  static std::string failing(const char* what, int error) { return what + (":" + std::to_string(error)) + ":1"; }
};

TEST_F(IoFaults, LeaveTheOldFileAndSayOneSentence) {
  const std::vector<std::pair<Arguments, std::string>> calls = {
      {{"run", "plan.dxf", "--quiet", "--command", "REGEN", "--out", "out.dxf"}, "out.dxf"},
      {{"picture", "plan.dxf", "out.png"}, "out.png"},
      {{"picture", "plan.dxf", "out.svg"}, "out.svg"},
      {{"info", "plan.dxf", "--repair", "out.dxf"}, "out.dxf"},
  };
  for (const auto& [arguments, output] : calls) {
    for (const char* const what : {"open", "write", "fsync", "close", "link", "rename"}) {
      for (const int error : {ENOSPC, EIO}) {
        SCOPED_TRACE(output + " " + what + " " + std::strerror(error));
        write(output, "old");
        const std::vector<std::string> before = names();
        const Outcome outcome = callWith(failing(what, error), arguments);
        EXPECT_EQ(outcome.status, 4);
        EXPECT_EQ(outcome.err, "tolmex: " + output + ": cannot be written: " + std::strerror(error) + "\n");
        EXPECT_EQ(read(output), "old");
        EXPECT_EQ(names(), before);
      }
    }
    // The rest of a write that took half is written next.
    EXPECT_EQ(callWith("short:0:1", arguments).status, 0);
    const std::string halved = read(output);
    EXPECT_EQ(call(arguments).status, 0);
    EXPECT_EQ(read(output), halved);
    fs::remove(folder / output);
  }
}

// Nothing of the user's work is gone when a save fails: the next one writes it.
TEST_F(IoFaults, LeaveTheWorkInTheSession) {
  write("lines", "LINE 0,0 1,1\n\nSAVEAS out.dxf\nSAVEAS out.dxf\nQUIT\n");
  write("out.dxf", "old");
  const Outcome outcome = callWith(failing("fsync", EIO), {"shell", "plan.dxf", "--quiet"}, "lines");
  EXPECT_THAT(outcome.err, testing::HasSubstr("out.dxf: cannot be written: Input/output error\n"));
  EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
  EXPECT_EQ(call({"info", "out.dxf"}).status, 0);
  EXPECT_THAT(read("out.dxf"), testing::HasSubstr("\nAcDbLine\n"));
}

// The colours in `tolm.ini` are the user's: a full disk leaves the old ones.
TEST_F(IoFaults, LeaveTheOldColours) {
  write("tolm.ini", "asfaltti\t3\n");
  const Arguments arguments{"run",     "plan.dxf",  "--command",           "TLM_MUOK_VARIT", "--command",
                            "30224 5", "--command", "Tallenna tiedostoon", "--command",      "OK"};
  write("tolm.ini", "asfaltti\t3\n");
  ASSERT_EQ(call(arguments).status, 0);
  const std::string saved = read("tolm.ini");
  EXPECT_NE(saved, "asfaltti\t3\n");
  for (const char* const what : {"write", "fsync", "rename"}) {
    write("tolm.ini", "asfaltti\t3\n");
    const std::vector<std::string> before = names();
    EXPECT_THAT(callWith(failing(what, ENOSPC), arguments).out,
                testing::HasSubstr("tolm.ini:ä ei pystytä kirjoittamaan."));
    EXPECT_EQ(read("tolm.ini"), "asfaltti\t3\n") << what;
    EXPECT_EQ(names(), before) << what;
  }
}

}  // namespace

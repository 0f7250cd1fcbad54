// The drawings of Debian's package librecad-data: made by many hands with many programs, and to be had by every clone.
#include <algorithm>

#include "Support.h"

using namespace tests;

namespace {

const fs::path kPackage = "/usr/share/librecad";
constexpr std::size_t kDrawings = 1335;  // of the package in Debian 12
// A process of the sanitized build takes a fifth of a second for each drawing: it tries every tenth, the release build
// all.
#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t kStep = 10;
constexpr std::size_t kUpgraded = 4;
constexpr std::size_t kRebuilt = 0;
#else
constexpr std::size_t kStep = 1;
constexpr std::size_t kUpgraded = 41;  // of version R12
constexpr std::size_t kRebuilt = 6;    // their headers end after the second variable and go on behind that
#endif

class LibraryDrawings : public Program {
 protected:
  /// Links all drawings into the folder "in" under names of their own.
  void SetUp() override {
    std::vector<fs::path> found;
    if (fs::is_directory(kPackage)) {
      for (const auto& entry : fs::recursive_directory_iterator(kPackage)) {
        if (entry.path().extension() == ".dxf") found.push_back(entry.path());
      }
    }
    ASSERT_FALSE(found.empty()) << "the package librecad-data is not installed (tools/install-deps.sh)";
    EXPECT_EQ(found.size(), kDrawings);
    std::sort(found.begin(), found.end());
    fs::create_directory(folder / "in");
    for (std::size_t i = 0; i < found.size(); i += kStep) {
      const fs::path& file = found[i];
      std::string name = file.lexically_relative(kPackage).string();
      std::replace(name.begin(), name.end(), '/', '_');
      fs::create_symlink(file, folder / "in" / name);
      drawings.push_back("in/" + name);
    }
  }

  Outcome runOnAll(const Arguments& lines, const std::string& into) const {
    Arguments arguments{"run", "--quiet", "--jobs", "2", "--out-dir", into};
    for (const std::string& line : lines) arguments.insert(arguments.end(), {"--command", line});
    arguments.insert(arguments.end(), drawings.begin(), drawings.end());
    return call(arguments);
  }

  Arguments drawings;  // paths from the test's folder
};

TEST_F(LibraryDrawings, ComeBackByteForByteWhenNothingTouchesThem) {
  const Outcome done = runOnAll({"REGEN"}, "same");
  ASSERT_EQ(done.status, 0) << done.err;
  std::size_t upgraded = 0;
  std::size_t rebuilt = 0;
  for (const std::string& drawing : drawings) {
    const fs::path saved = "same" / fs::path(drawing).filename();
    if (done.err.find(drawing + ": the drawing is of version AC1009") != std::string::npos) {
      ++upgraded;
    } else if (done.err.find(drawing + ":15: ENDSEC left out") != std::string::npos) {
      ++rebuilt;
    } else {
      EXPECT_TRUE(read(saved) == read(drawing)) << drawing;
    }
  }
  EXPECT_EQ(upgraded, kUpgraded);
  EXPECT_EQ(rebuilt, kRebuilt);
}

TEST_F(LibraryDrawings, StaySoundWithElementsAndShadowsOnEverything) {
  const Outcome done = runOnAll({"TLM_MUOK_ASFALTTI", "ALL", "", "TLM_MUOK_AITA_KIVI", "ALL", "", "TLM_MUOK_PIHALAATTA",
                                 "ALL", "", "TLM_VARJO_PAIVITA"},
                                "drawn");
  EXPECT_EQ(done.status, 0) << done.err;
  Arguments audit{fs::path(kSourceDir) / "Tests/audit/audit_dxf.py", "--originals", "in"};
  std::size_t filled = 0;
  for (const std::string& drawing : drawings) {
    const std::string drawn = "drawn/" + fs::path(drawing).filename().string();
    audit.push_back(drawn);
    if (read(drawn).find("tmv_laatta") != std::string::npos) ++filled;
  }
  EXPECT_EQ(filled, drawings.size());
  const Outcome audited = call(audit, {.program = "/usr/bin/python3"});
  EXPECT_EQ(audited.status, 0) << audited.err;
}

}  // namespace

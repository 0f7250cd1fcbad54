// What the system's twins promise alike.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "Dxf/DxfFile.h"
#include "OwnFolder.h"
#include "Platform/ChildProcess.h"
#include "Platform/Files.h"
#include "Platform/Library.h"
#include "Platform/ReplacingFile.h"
#include "Platform/Streams.h"
#include "Platform/System.h"
#ifdef _WIN32
#include "Platform/windows/Handles.h"
#endif

namespace {

namespace fs = std::filesystem;
namespace platform = host::platform;
using host::dxf::writeFileWhole;

/// Folders that need more than the 260 characters of old calls, and letters beyond ASCII.
fs::path deepFolder(const fs::path& top) {
  fs::path folder = top / fs::path(u8"Ääkköset ja välit");
  for (int i = 0; i < 6; ++i) folder /= std::string(60, static_cast<char>('a' + i));
#ifdef _WIN32
  fs::create_directories(platform::systemPath(folder));
#else
  fs::create_directories(folder);
#endif
  return folder;
}

TEST(Files, AreReplacedWholeWhateverTheirNames) {
  const tests::OwnFolder own;
  for (const fs::path& folder : {own.path, deepFolder(own.path)}) {
    const fs::path file = folder / fs::path(u8"öylätti.dxf");
    ASSERT_TRUE(writeFileWhole(file, "first")) << file;
    const std::string large(3 << 20, 'x');
    ASSERT_TRUE(writeFileWhole(file, large)) << file;
    platform::InputFile in(file);
    std::string read(large.size() + 1, 0);
    std::size_t size = 0;
    while (const auto count = in.read(read.data() + size, read.size() - size)) {
      if (*count == 0) break;
      size += *count;
    }
    EXPECT_EQ(read.substr(0, size), large);
    std::error_code error;
    EXPECT_EQ(platform::namesIn(folder, error).size(), folder == own.path ? 2U : 1U) << "a temporary file was left";
    EXPECT_FALSE(error);
  }
}

TEST(Files, AreLeftWhenTheWritingFails) {
  const tests::OwnFolder own;
  const fs::path file = own.path / "plan.dxf";
  ASSERT_TRUE(writeFileWhole(file, "old"));
  EXPECT_FALSE(writeFileWhole(file, [](const host::dxf::GiveBytes& give) { return give("half") && false; }));
  EXPECT_EQ(tests::fileText(file), "old");
  EXPECT_FALSE(writeFileWhole(own.path / "no folder" / "plan.dxf", "new"));
  std::error_code error;
  EXPECT_EQ(platform::namesIn(own.path, error), std::vector<fs::path>{"plan.dxf"});
}

#ifdef _WIN32
TEST(Files, ThatOtherProgramsHoldAreNamedAndKept) {
  const tests::OwnFolder own;
  const fs::path file = own.path / "plan.dxf";
  ASSERT_TRUE(writeFileWhole(file, "old"));
  {
    const platform::Handle held(
        ::CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    const auto refused = writeFileWhole(file, "new");
    ASSERT_FALSE(refused);
    EXPECT_NE(refused.message().find("another program has it open"), std::string::npos) << refused.message();
    EXPECT_EQ(tests::fileText(file), "old");
  }
  {
    const platform::Handle held(::CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    std::ifstream in(file, std::ios::binary);
    EXPECT_FALSE(in);
    EXPECT_EQ(platform::openingFault(), "another program has it open");
  }
  EXPECT_TRUE(writeFileWhole(file, "new"));
  ASSERT_NE(::SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY), 0);
  EXPECT_FALSE(writeFileWhole(file, "newer"));
  EXPECT_EQ(tests::fileText(file), "new");
  ::SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(Files, LongPathsTakeTheFormWithoutALimit) {
  EXPECT_EQ(platform::systemPath("C:/plan.dxf"), L"C:\\plan.dxf");
  const std::wstring deep(300, L'd');
  EXPECT_EQ(platform::systemPath(L"C:/a/./b/../" + deep), L"\\\\?\\C:\\a\\" + deep);
  EXPECT_EQ(platform::systemPath(L"\\\\server\\share\\" + deep), L"\\\\?\\UNC\\server\\share\\" + deep);
}
#endif

TEST(Files, AreTheSameByWhateverName) {
  const tests::OwnFolder own;
  const fs::path file = own.path / "plan.dxf";
  ASSERT_TRUE(writeFileWhole(file, "one"));
  const platform::FileFacts facts = platform::factsOf(file);
  EXPECT_TRUE(facts.isSameFile(platform::factsOf(own.path / "." / "plan.dxf")));
  EXPECT_EQ(facts.size, 3);
  ASSERT_TRUE(writeFileWhole(own.path / "other.dxf", "one"));
  EXPECT_FALSE(facts.isSameFile(platform::factsOf(own.path / "other.dxf")));
  EXPECT_FALSE(platform::factsOf(own.path / "none.dxf").isThere);
  EXPECT_TRUE(platform::factsOf(own.path).isThere);
}

TEST(Files, KeptOnesCanBeOpenedLikeAnyOther) {
  platform::KeptFile kept;
  ASSERT_TRUE(kept.isOpen()) << kept.fault();
  ASSERT_TRUE(kept.write("first ") && kept.write("second"));
  EXPECT_EQ(tests::fileText(kept.path()), "first second");
  EXPECT_EQ(tests::fileText(kept.path()), "first second");
  kept.drop();
}

TEST(Libraries, SayWhyTheyCannotBeLoaded) {
  const tests::OwnFolder own;
  const fs::path file = own.path / platform::libraryName("none");
  std::string reason;
  EXPECT_EQ(platform::openLibrary(file, reason), nullptr);
  EXPECT_FALSE(reason.empty());
  ASSERT_TRUE(writeFileWhole(file, "this is no library"));
  reason.clear();
  EXPECT_EQ(platform::openLibrary(file, reason), nullptr);
  EXPECT_FALSE(reason.empty());
}

TEST(Libraries, AreFoundByAnAddressInThem) {
  const auto* const here = reinterpret_cast<const void*>(&deepFolder);
  EXPECT_TRUE(fs::equivalent(platform::fileOf(here), platform::programFile()));
  EXPECT_NE(platform::baseOf(here), nullptr);
  EXPECT_EQ(platform::fileOf(nullptr), fs::path());
}

TEST(Processes, AreTalkedToAndEnded) {
  using Transfer = platform::ChildProcess::Transfer;
  platform::ChildProcess process;
  EXPECT_FALSE(process.start("no-such-program-anywhere", {}, 0));
#ifdef _WIN32
  ASSERT_TRUE(process.start("cmd", {"/q"}, std::uint64_t{1} << 30));
  const std::string request = "echo %OS%\r\n", wanted = "Windows_NT";
#else
  ASSERT_TRUE(process.start("cat", {}, std::uint64_t{1} << 30));
  const std::string request = "Windows_NT\n", wanted = request;
#endif
  const auto deadline = platform::ChildProcess::Clock::now() + std::chrono::seconds(30);
  ASSERT_EQ(process.send(request, deadline), Transfer::Done);
  std::string answer;
  while (answer.find(wanted) == std::string::npos)
    ASSERT_EQ(process.receive(answer, deadline), Transfer::Done) << answer;
  answer.clear();
  const auto soon = platform::ChildProcess::Clock::now() + std::chrono::milliseconds(50);
  while (process.receive(answer, soon) == Transfer::Done) {
  }
  const int number = process.number();
  EXPECT_FALSE(platform::processStart(number).empty());
  process.stop();
  EXPECT_TRUE(platform::processStart(number).empty());
}

}  // namespace

// Texts of DWG drawings that are kept for the next time: by whom they are believed, and what is left of them.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>

#include "../Database/Support.h"
#include "Dwg/DwgReader.h"
#include "Places.h"

namespace {

namespace fs = std::filesystem;
using host::dwg::ReaderProcess;

/// An environment variable with another value, or none, as long as it lives.
class Variable {
 public:
  Variable(const char* name, const std::optional<std::string>& value) : name_(name) {
    if (const char* const former = std::getenv(name)) former_ = former;
    set(value);
  }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;
  ~Variable() { set(former_); }

 private:
  void set(const std::optional<std::string>& value) const {
    value ? ::setenv(name_, value->c_str(), 1) : ::unsetenv(name_);
  }
  const char* name_;
  std::optional<std::string> former_;
};

/// The reader with a package in place of the real one: it tells how often it was asked, and knows one text.
class TextCache : public testing::Test {
 protected:
  void SetUp() override {
    if (std::system("node --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "node is not installed";
    const fs::path package = folder_ / "reader/node_modules/@mlightcad/libredwg-web/wasm";
    fs::create_directories(package);
    fs::create_directories(folder_ / "here");
    fs::copy_file(fs::path(kSourceDir) / "Host/Dwg/reader/reader.mjs", folder_ / "reader/reader.mjs");
    std::ofstream(package / "libredwg-web.wasm") << "";
    std::ofstream(package / "libredwg-web.js") << R"(
import fs from 'node:fs';
export default async () => ({
  FS: { writeFile() {}, readFile() { return Buffer.from(`  0\r\nSECTION\r\n${'x'.repeat(5000)}\r\nEOF\r\n`); } },
  dwg_write_dxf() { fs.appendFileSync(')" << (folder_ / "asked").string()
                                               << R"(', '.'); return 0; },
  dwg_read_file() { return {}; },
});
)";
    settings_.script = folder_ / "reader/reader.mjs";
  }
  /// Converts a drawing in a process of its own, the current folder being "here"; how often the package was asked.
  std::size_t asked(const std::string& drawing = "AC1015 a drawing") {
    fs::remove(folder_ / "asked");
    const fs::path former = fs::current_path();
    fs::current_path(folder_ / "here");
    {
      ReaderProcess reader(settings_);
      const auto result = host::dwg::convert(reader, drawing, "a.dwg");
      EXPECT_TRUE(result.ok()) << result.message();
      EXPECT_TRUE(result->text.ends_with("EOF\r\n")) << result->text.size();
      EXPECT_EQ(result->text.size(), 5021U);
    }
    fs::current_path(former);
    return tests::fileText(folder_ / "asked").size();
  }
  fs::path cache() const { return folder_ / "cache"; }
  std::vector<fs::path> kept() const {
    std::vector<fs::path> files;
    if (fs::exists(cache())) {
      for (const auto& entry : fs::directory_iterator(cache())) files.push_back(entry.path());
    }
    return files;
  }

  const tests::OwnFolder own_;
  const fs::path& folder_ = own_.path;
  host::dwg::ReaderSettings settings_;
};

TEST_F(TextCache, ATextIsTakenOnlyWhenItIsWhatWasKept) {
  const Variable place("TOLMEX_DWG_CACHE", cache());
  EXPECT_EQ(asked(), 1U);
  EXPECT_EQ(asked(), 0U);
  ASSERT_EQ(kept().size(), 1U);
  const std::string whole = tests::fileText(kept()[0]);
  std::string flipped = whole;
  flipped[3000] ^= 1;
  std::string foreign = "  0\r\nSECTION\r\n  0\r\nEOF\r\n";
  for (const std::string& content : {std::string(), whole.substr(0, 3000), whole.substr(0, 40), flipped, foreign}) {
    std::ofstream(kept()[0], std::ios::binary) << content;
    EXPECT_EQ(asked(), 1U) << content.size();
    EXPECT_EQ(tests::fileText(kept()[0]), whole);
  }
  // The text of another drawing, and a link that leads elsewhere.
  const fs::path first = kept()[0];
  EXPECT_EQ(asked("AC1015 another"), 1U);
  const fs::path other = kept()[0] == first ? kept()[1] : kept()[0];
  fs::copy_file(first, other, fs::copy_options::overwrite_existing);
  EXPECT_EQ(asked("AC1015 another"), 1U);
  fs::rename(other, folder_ / "elsewhere");
  fs::create_symlink(folder_ / "elsewhere", other);
  EXPECT_EQ(asked("AC1015 another"), 1U);
}

TEST_F(TextCache, FoldersThatOthersCanWriteToAreNotUsed) {
  const Variable place("TOLMEX_DWG_CACHE", cache());
  EXPECT_EQ(asked(), 1U);
  fs::permissions(cache(), fs::perms::all);
  EXPECT_EQ(asked(), 1U);
  EXPECT_EQ(asked("AC1015 another"), 1U);
  EXPECT_EQ(kept().size(), 1U);
  fs::permissions(cache(), fs::perms::owner_all);
  EXPECT_EQ(asked(), 0U);
  fs::permissions(kept()[0], fs::perms::all);
  EXPECT_EQ(asked(), 1U);
  if (::geteuid() != 0) return;  // only root can make a folder another user's
  ASSERT_EQ(::chown(cache().c_str(), 12345, 12345), 0);
  EXPECT_EQ(asked(), 1U);
}

TEST_F(TextCache, OnlyAbsolutePathsLeadToIt) {
  const Variable noOwn("TOLMEX_DWG_CACHE", std::nullopt), noCommon("XDG_CACHE_HOME", std::nullopt), noHome("HOME", "");
  const auto askedWith = [&](const char* name, const std::string& value) {
    const Variable place(name, value);
    return asked();
  };
  for (const char* const name : {"TOLMEX_DWG_CACHE", "XDG_CACHE_HOME", "HOME"}) {
    EXPECT_EQ(askedWith(name, "somewhere"), 1U) << name;
    EXPECT_EQ(askedWith(name, ""), 1U) << name;
    EXPECT_TRUE(fs::is_empty(folder_ / "here")) << name;
    EXPECT_EQ(askedWith(name, folder_ / name), 1U) << name;
    EXPECT_EQ(askedWith(name, folder_ / name), 0U) << name;
  }
}

TEST_F(TextCache, AFullDiskLeavesNoUnfinishedTextAndOldOnesGo) {
  const Variable place("TOLMEX_DWG_CACHE", cache());
  rlimit former{};
  ::getrlimit(RLIMIT_FSIZE, &former);
  const auto told = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{1000, former.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &small);
  EXPECT_EQ(asked(), 1U);
  ::setrlimit(RLIMIT_FSIZE, &former);
  std::signal(SIGXFSZ, told);
  EXPECT_TRUE(kept().empty());
  // What a killed process left is swept up in time; files of others stay.
  const fs::path stray = cache() / (std::string(64, 'a') + ".dxf.1234");
  for (const fs::path& file : {stray, cache() / "letter.txt"}) {
    std::ofstream(file) << "x";
    fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(2));
  }
  EXPECT_EQ(asked(), 1U);
  EXPECT_FALSE(fs::exists(stray));
  EXPECT_TRUE(fs::exists(cache() / "letter.txt"));
}

}  // namespace

// DWG drawings: read whole, refused in a sentence, never waited for.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <map>
#include <random>

#include "../Database/Support.h"
#include "Database/Store/TagEdits.h"
#include "Dwg/DwgReader.h"
#include "Text/Text.h"

namespace {

using host::database::databaseOf;
using host::database::DrawingDatabase;
using host::database::Slot;
using host::dwg::ReaderProcess;

/// Why DWG drawings cannot be read here; empty when they can.
std::string missingReader() {
  const std::filesystem::path folder = host::dwg::defaultSettings().script.parent_path();
  if (std::system("node --version >/dev/null 2>&1") != 0) return "node is not installed";
  if (!std::filesystem::exists(folder / "node_modules" / "@mlightcad")) return "the reader's package is not installed";
  return {};
}

class DwgDrawings : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const std::string missing = missingReader(); !missing.empty()) GTEST_SKIP() << missing;
    if (tests::realDrawingFolder().empty()) GTEST_SKIP() << "the folder of real drawings is missing";
    ::setenv("TOLMEX_DWG_CACHE", cache_.c_str(), 1);  // every run converts anew
  }
  static std::string bytes(const char* name) { return tests::fileText(tests::realDrawingFolder() / name); }

  const tests::OwnFolder own_;
  const std::filesystem::path cache_ = own_.path / "cache";
};

std::map<std::string, int> modelSpace(DrawingDatabase& db) {
  std::map<std::string, int> counts;
  for (const Slot* const entity : db.modelSpace().entities) ++counts[std::string(db.typeName(*entity))];
  return counts;
}

int layersOff(DrawingDatabase& db) {
  int count = 0;
  for (const Slot* const layer : db.records(host::database::DxfType::Layer)) {
    host::database::Tag tag;
    if (host::database::findTagIn(layer->tags(), "AcDbLayerTableRecord", 62, tag) && tag.integer() < 0) ++count;
  }
  return count;
}

TEST_F(DwgDrawings, EveryVersionIsReadWithItsEntities) {
  struct Expected {
    const char* file;
    std::map<std::string, int> entities;
  };
  const Expected all[] = {
      {"sym_r14.dwg", {{"LINE", 16}, {"TEXT", 1}}}, {"sym2004.dwg", {{"LWPOLYLINE", 2}, {"HATCH", 2}}},
      {"sym2007.dwg", {{"LWPOLYLINE", 1}}},         {"sym2010.dwg", {{"LWPOLYLINE", 2}, {"TEXT", 2}, {"INSERT", 3}}},
      {"sym2013.dwg", {{"LWPOLYLINE", 1}}},
  };
  for (const Expected& expected : all) {
    SCOPED_TRACE(expected.file);
    AcDbDatabase db(false, true);
    const auto result = host::dxf::readDrawing(databaseOf(&db), tests::realDrawingFolder() / expected.file);
    ASSERT_TRUE(result.ok()) << result.message();
    EXPECT_EQ(modelSpace(databaseOf(&db)), expected.entities);
    EXPECT_EQ(layersOff(databaseOf(&db)), 0);
  }
}

TEST_F(DwgDrawings, PairsGiveWhatTheirDxfGives) {
  for (const std::string name : {"ex2000", "dynblk"}) {
    SCOPED_TRACE(name);
    AcDbDatabase dwg(false, true), dxf(false, true);
    const auto folder = tests::realDrawingFolder();
    ASSERT_EQ(dwg.readDwgFile(host::text::fromUtf8((folder / (name + ".dwg")).string()).c_str()), Acad::eOk);
    ASSERT_EQ(dxf.readDwgFile(host::text::fromUtf8((folder / (name + ".dxf")).string()).c_str()), Acad::eOk);
    EXPECT_EQ(modelSpace(databaseOf(&dwg)), modelSpace(databaseOf(&dxf)));
    EXPECT_EQ(layersOff(databaseOf(&dwg)), layersOff(databaseOf(&dxf)));
    for (const Slot* const layer : databaseOf(&dxf).records(host::database::DxfType::Layer)) {
      const std::wstring wanted = databaseOf(&dxf).recordName(*layer);
      EXPECT_NE(databaseOf(&dwg).findRecord(host::database::DxfType::Layer, wanted), nullptr)
          << host::text::toUtf8(wanted);
    }
  }
}

/// Gives a class of an AC1015 drawing another name of the same length. Its section is packed: letters begin at any bit.
bool renameClass(std::string& dwg, std::string_view name, std::string_view other) {
  const auto bit = [](std::string_view bytes, std::size_t i) {
    return (static_cast<unsigned char>(bytes[i / 8]) >> (7 - i % 8) & 1U) != 0;
  };
  const std::size_t length = name.size() * 8;
  for (std::size_t at = 0; at + length <= dwg.size() * 8; ++at) {
    std::size_t i = 0;
    while (i < length && bit(dwg, at + i) == bit(name, i)) ++i;
    if (i < length) continue;
    for (i = 0; i < length; ++i) {
      const auto mask = static_cast<char>(1U << (7 - (at + i) % 8));
      char& byte = dwg[(at + i) / 8];
      byte = static_cast<char>(bit(other, i) ? byte | mask : byte & ~mask);
    }
    return true;
  }
  return false;
}

TEST_F(DwgDrawings, ObjectsOfForeignClassesAreKeptAsPicturesOrTold) {
  const auto texts = [](const DrawingDatabase& db) {
    std::vector<std::string> all;
    for (const host::database::Problem& problem : db.problems()) all.push_back(problem.text);
    return all;
  };
  AcDbDatabase map(false, true);
  ASSERT_TRUE(host::dxf::readDrawing(databaseOf(&map), tests::realDrawingFolder() / "sym2010.dwg").ok());
  EXPECT_EQ(texts(databaseOf(&map)),
            std::vector<std::string>{"left out, because the DWG reader does not give them: 3 (DMMAPMANAGER 1, "
                                     "DMSTYLECATEGORY 1, DMSTYLELIBRARY 1)"});
  // A program that nobody has here has drawn the dimension and left a picture of it.
  std::string drawing = bytes("ex2000.dwg");
  ASSERT_TRUE(renameClass(drawing, "ARC_DIMENSION", "AEC_DIMENSION"));
  AcDbDatabase foreign(false, true), known(false, true);
  ASSERT_TRUE(host::dxf::readDrawingText(databaseOf(&foreign), drawing, "plan.dwg").ok());
  ASSERT_TRUE(host::dxf::readDrawingText(databaseOf(&known), bytes("ex2000.dwg"), "plan.dwg").ok());
  EXPECT_THAT(texts(databaseOf(&foreign)),
              testing::Contains("kept as pictures of themselves, because the DWG reader does not give their data: 1 "
                                "(AEC_DIMENSION 1)"));
  EXPECT_TRUE(texts(databaseOf(&known)).empty());
  std::map<std::string, int> expected = modelSpace(databaseOf(&known));
  ASSERT_EQ(expected["ARC_DIMENSION"], 1);
  expected.erase("ARC_DIMENSION");
  expected["ACAD_PROXY_ENTITY"] = 1;
  EXPECT_EQ(modelSpace(databaseOf(&foreign)), expected);
  for (const Slot* const entity : databaseOf(&foreign).modelSpace().entities) {
    if (databaseOf(&foreign).typeName(*entity) != "ACAD_PROXY_ENTITY") continue;
    const Slot* const original = databaseOf(&known).findHandle(entity->handle);
    ASSERT_NE(original, nullptr);
    EXPECT_EQ(databaseOf(&known).typeName(*original), "ARC_DIMENSION");
    EXPECT_EQ(databaseOf(&foreign).layerName(entity->layer), databaseOf(&known).layerName(original->layer));
    host::database::Tag size;
    ASSERT_TRUE(host::database::findTagIn(entity->tags(), "AcDbEntity", 92, size));
    EXPECT_EQ(size.integer(), 1968);
  }
}

TEST_F(DwgDrawings, DamageEndsInASentenceAndTheNextDrawingIsRead) {
  ReaderProcess reader(host::dwg::defaultSettings());
  std::mt19937 random(7);
  for (const char* const name : {"ex2000.dwg", "sym2004.dwg", "sym2010.dwg", "dynblk.dwg"}) {
    const std::string whole = bytes(name);
    for (int round = 0; round < 6; ++round) {
      SCOPED_TRACE(name + std::to_string(round));
      std::string damaged = whole;
      if (round < 2) {
        damaged.resize(whole.size() * static_cast<std::size_t>(round + 1) / 4);
      } else {
        for (int i = 0; i < 300; ++i) damaged[100 + random() % (damaged.size() - 100)] = static_cast<char>(random());
      }
      const auto begin = std::chrono::steady_clock::now();
      const auto result = host::dwg::convert(reader, damaged, "torn.dwg");
      EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(70));
      if (!result.ok()) {
        EXPECT_TRUE(result.message().starts_with("torn.dwg: ")) << result.message();
      }
      if (round < 2) {
        EXPECT_FALSE(result.ok());
      }
    }
  }
  const auto after = host::dwg::convert(reader, bytes("sym2013.dwg"), "whole.dwg");
  EXPECT_TRUE(after.ok()) << after.message();
}

TEST_F(DwgDrawings, TextsDoNotDependOnWhatWasReadBefore) {
  ReaderProcess fresh(host::dwg::defaultSettings()), used(host::dwg::defaultSettings());
  const std::string drawing = bytes("ex2000.dwg");
  const auto alone = host::dwg::convert(fresh, drawing, "a");
  std::filesystem::remove_all(cache_);
  ASSERT_TRUE(host::dwg::convert(used, bytes("sym2010.dwg"), "b").ok());
  EXPECT_EQ(host::dwg::convert(used, drawing, "a")->text, alone->text);
}

TEST_F(DwgDrawings, ADeadReaderCostsOneDrawing) {
  ReaderProcess reader(host::dwg::defaultSettings());
  const std::string drawing = bytes("sym2013.dwg");
  ASSERT_TRUE(host::dwg::convert(reader, drawing, "a.dwg").ok());
  ::kill(reader.process(), SIGKILL);
  siginfo_t ended{};
  ::waitid(P_PID, static_cast<id_t>(reader.process()), &ended, WEXITED | WNOWAIT);
  EXPECT_EQ(host::dwg::convert(reader, drawing, "a.dwg").message(),
            "a.dwg: the DWG reader broke down on this drawing; save it as DXF");
  EXPECT_TRUE(host::dwg::convert(reader, drawing, "a.dwg").ok());
}

/// A reader of this test's own, run by the shell instead of node.
class ScriptedReader {
 public:
  explicit ScriptedReader(const std::string& commands) {
    std::ofstream(folder_ / "node") << "#!/bin/sh\n" << commands << "\n";
    std::ofstream(folder_ / "reader.mjs") << "\n";
    std::filesystem::permissions(folder_ / "node", std::filesystem::perms::owner_all);
    settings.program = folder_ / "node";
    settings.script = folder_ / "reader.mjs";
  }
  host::dwg::ReaderSettings settings;

 private:
  const tests::OwnFolder own_;
  const std::filesystem::path& folder_ = own_.path;
};

TEST(DwgReader, OneThatHangsLiesOrIsMissingIsToldFrom) {
  const std::string drawing = "AC1032" + std::string(1 << 20, 'x');
  struct Case {
    const char* commands;
    const char* message;
  };
  const char* const broken = "p.dwg: the DWG reader broke down on this drawing; save it as DXF";
  for (const Case& one : {Case{"sleep 30", "p.dwg: reading the DWG drawing took too long; save it as DXF"},
                          Case{"exit 3", broken}, Case{"cat >/dev/null & echo 'ok 99999999999999999999'; wait", broken},
                          Case{"head -c 1000 >/dev/null; printf 'ok 100\\nshort'", broken}}) {
    SCOPED_TRACE(one.commands);
    ScriptedReader scripted(one.commands);
    scripted.settings.timeLimit = std::chrono::milliseconds(500);
    ReaderProcess reader(scripted.settings);
    const auto result = host::dwg::convert(reader, drawing, "p.dwg");
    EXPECT_FALSE(result.ok());
    // What breaks off while it is still being sent to may also be met as slow.
    EXPECT_EQ(result.message(), one.message);
  }
  host::dwg::ReaderSettings nowhere;
  nowhere.script = "/nonexistent/reader.mjs";
  ReaderProcess reader(nowhere);
  const std::string install =
      "p.dwg: DWG drawings need Node.js and a package for it; run tools/install-dwg-reader.sh, or save the drawing as "
      "DXF";
  EXPECT_EQ(host::dwg::convert(reader, drawing, "p.dwg").message(), install);
  ScriptedReader scripted("exit 0");
  scripted.settings.program = "no-such-program-of-this-name";
  ReaderProcess withoutNode(scripted.settings);
  EXPECT_EQ(host::dwg::convert(withoutNode, drawing, "p.dwg").message(), install);
}

TEST(DwgReader, TheFirstBytesDecideWhateverTheName) {
  AcDbDatabase db(false, true);
  const auto old = host::dxf::readDrawingText(databaseOf(&db), "AC1009" + std::string(500, '\0'), "old.dwg");
  EXPECT_EQ(old.message(),
            "old.dwg: DWG version AC1009 cannot be read; only versions AC1014 (R14) to AC1032 (2018) can");
  const tests::OwnFolder own;
  const auto file = own.path / "text.dwg";
  tests::OpenDrawing drawing;
  std::ofstream(file, std::ios::binary) << drawing.text();
  AcDbDatabase read(false, true);
  EXPECT_EQ(read.readDwgFile(host::text::fromUtf8(file.string()).c_str()), Acad::eOk);
  EXPECT_EQ(read.readDwgFile(host::text::fromUtf8(file.string()).c_str()), Acad::eInvalidInput);  // not empty any more
  AcDbDatabase none(false, true);
  EXPECT_EQ(none.readDwgFile(L"/nonexistent/plan.dwg"), Acad::eFileNotFound);
}

}  // namespace

// Markers of sections, tables and blocks where none can stand: they cost nothing of the drawing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Database/ReadDrawing.h"
#include "Text/Text.h"

namespace {

using namespace host::database;
using namespace tests;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

/// The probe drawing with a block of its own, which a reference shows.
std::string drawingWithBlock() {
  std::string text = withoutComments(probeDrawing("\n"));
  const auto insert = [&](const std::string& before, const std::string& what) { text.insert(text.find(before), what); };
  const std::string front = "100\nAcDbEntity\n  8\n0\n";
  insert(
      "  0\nBLOCK_RECORD\n  5\n1B\n",
      "  0\nBLOCK_RECORD\n  5\n30\n330\n1\n100\nAcDbSymbolTableRecord\n100\nAcDbBlockTableRecord\n  2\nTALO\n340\n0\n");
  insert("  0\nBLOCK\n  5\n1C\n",
         "  0\nBLOCK\n  5\n31\n330\n30\n" + front +
             "100\nAcDbBlockBegin\n  2\nTALO\n 70\n0\n 10\n0\n 20\n0\n 30\n0\n  3\nTALO\n  1\n\n"
             "  0\nLINE\n  5\n32\n330\n30\n" +
             front + "100\nAcDbLine\n 10\n0\n 20\n0\n 11\n1\n 21\n1\n  0\nSTRANGE\n  5\n33\n330\n30\n" + front +
             "100\nAcDbStrange\n  1\nx\n  0\nENDBLK\n  5\n34\n330\n30\n" + front + "100\nAcDbBlockEnd\n");
  insert("  0\nLINE\n  5\n58\n",
         "  0\nINSERT\n  5\n40\n330\n1F\n" + front +
             "100\nAcDbBlockReference\n 66\n1\n  2\nTALO\n 10\n5\n 20\n5\n"
             "  0\nATTRIB\n  5\n41\n330\n40\n" +
             front +
             "100\nAcDbText\n 10\n0\n 20\n0\n 40\n1\n  1\nkoivu\n100\nAcDbAttribute\n  2\nLAJI\n"
             " 70\n0\n  0\nSEQEND\n  5\n42\n330\n40\n" +
             front);
  return text;
}

/// One line for every object with a handle of the file: what it is, whose it is, what it holds.
std::vector<std::string> objectsOf(const DrawingDatabase& drawing) {
  std::vector<std::string> all;
  drawing.forEachSlot([&](const Slot& slot) {
    constexpr std::uint64_t kFirstNew = 0x72;
    if (slot.handle == 0 || slot.handle >= kFirstNew || slot.type == DxfType::TableHead) return;
    std::string line = host::text::formatHandle(slot.handle) + " " + std::string(drawing.typeName(slot)) + " of ";
    line += host::text::formatHandle(slot.owner != nullptr ? slot.owner->handle : 0) + ": ";
    // Tables and the root of the dictionaries get what they lack.
    if (&slot != drawing.rootDictionary() && slot.type != DxfType::BlockRecord) line += slot.fileBytes();
    all.push_back(std::move(line));
  });
  std::sort(all.begin(), all.end());
  return all;
}

struct Stray {
  std::string marker;
  std::string text;  // of the drawing with it
  std::string where;
};

/// The drawing with the marker in front of every record, or of every seventh tag inside one, with CR LF: which ones
/// differs from marker to marker.
std::vector<Stray> withStray(const std::string& marker, bool isBetweenRecords) {
  const std::string sound = drawingWithBlock();
  std::vector<Stray> all;
  std::string_view rest = sound;
  std::string record;
  std::size_t count = 0;
  Tag tag;
  while (readTag(rest, tag)) {
    if (tag.code == 0) record = std::string(tag.trimmed());
    const auto at = static_cast<std::size_t>(tag.bytes.data() - sound.data());
    // Between a section's marker and its name, or in front of any name, nobody can tell which marker is meant.
    const bool isAmbiguous = tag.code == 2 && (record == "SECTION" || marker == "SECTION");
    if ((tag.code == 0) != isBetweenRecords || at == 0 || isAmbiguous) continue;
    if (!isBetweenRecords && (++count + marker.size()) % 7 != 0) continue;
    std::string text = sound;
    text.insert(at, "  0\n" + marker + "\n");
    if (!isBetweenRecords) text = withLineEnds(text, "\r\n");
    all.push_back({marker, std::move(text), marker + " in front of " + std::string(tag.bytes) + "of " + record});
  }
  return all;
}

class StrayMarkers : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Markers, StrayMarkers,
                         testing::Values("BLOCK", "ENDBLK", "ENDSEC", "ENDTAB", "TABLE", "EOF", "SECTION"));

TEST_P(StrayMarkers, BetweenRecordsCostNothing) {
  const std::vector<std::string> sound = objectsOf(ReadDrawing(drawingWithBlock()).drawing());
  for (const Stray& stray : withStray(GetParam(), true)) {
    SCOPED_TRACE(stray.where);
    ReadDrawing drawing(stray.text);
    EXPECT_EQ(objectsOf(drawing.drawing()), sound) << testing::PrintToString(drawing.said());
    // One end more is nothing.
    const bool isSecondEnd = stray.text.ends_with("  0\nEOF\n  0\nEOF\n");
    EXPECT_NE(drawing.said().empty(), !isSecondEnd);
  }
}

TEST_P(StrayMarkers, InsideRecordsCostNothing) {
  const std::vector<std::string> sound = objectsOf(ReadDrawing(withLineEnds(drawingWithBlock(), "\r\n")).drawing());
  for (const Stray& stray : withStray(GetParam(), false)) {
    SCOPED_TRACE(stray.where);
    ReadDrawing drawing(stray.text);
    EXPECT_EQ(objectsOf(drawing.drawing()), sound) << testing::PrintToString(drawing.said());
  }
}

}  // namespace

// Handles of all 64 bits, handles that are none, and objects without any.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

#include "Database/ReadDrawing.h"
#include "Text/Text.h"
#include "acutads.h"
#include "dbents.h"
#include "dbgroup.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "sorttab.h"

namespace {

using namespace host::database;
using namespace tests;
using host::text::formatHandle;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// The text with the values under codes that hold handles changed.
std::string withHandles(std::string_view text, const std::function<std::string(const std::string&)>& change) {
  std::string out;
  Tag tag;
  bool isSeed = false;
  while (readTag(text, tag)) {
    const bool isHandle = tag.code == 5 || tag.code == 105 || tag.code == 1005 || (tag.code >= 320 && tag.code < 370);
    const bool isChanged = isHandle && !isSeed && tag.trimmed() != "0";
    isSeed = tag.code == 9 && tag.trimmed() == "$HANDSEED";
    out += tag.bytes.substr(0, tag.bytes.find('\n') + 1);
    out += isChanged ? change(std::string(tag.trimmed())) : std::string(tag.value);
    out += '\n';
  }
  return out;
}

/// Every record of the text with a handle has one, and nobody else has it.
void expectOneHandleEach(const std::string& text) {
  std::map<std::string, int> owners;
  std::string_view rest = text;
  Tag tag;
  std::string type;
  int handles = 0;
  bool isFront = true;
  while (readTag(rest, tag)) {
    if (tag.code == 0) {
      type = tag.trimmed();
      handles = 0;
      isFront = true;
    }
    if (tag.code == 100 || tag.code == 9) isFront = false;
    if (!isFront || (tag.code != 5 && tag.code != 105)) continue;
    EXPECT_EQ(++handles, 1) << type << " " << tag.value;
    EXPECT_EQ(++owners[std::string(tag.trimmed())], 1) << type << " " << tag.value;
  }
}

AcDbObjectId addLine(DrawingDatabase& drawing) {
  AcDbObjectPointer<AcDbBlockTableRecord> space(AcDbObjectId(drawing.modelSpace().record), AcDb::kForWrite);
  auto* const line = new AcDbLine({1, 2, 0}, {3, 4, 0});
  AcDbObjectId id;
  EXPECT_EQ(space->appendAcDbEntity(id, line), Acad::eOk);
  line->close();
  return id;
}

std::uint64_t seedOf(const DrawingDatabase& drawing) {
  return host::text::parseHandle(host::text::toUtf8(drawing.headerText("$HANDSEED", 5).value_or(L"")));
}

std::vector<std::uint64_t> drawn(const DrawingDatabase& drawing) {
  std::vector<std::uint64_t> handles;
  for (const Slot* const slot : drawing.drawOrder(drawing.modelSpace())) handles.push_back(slot->handle);
  return handles;
}

/// The probe drawing with its handles moved up, some of its objects left low or not.
class WideHandles : public testing::TestWithParam<std::uint64_t> {
 protected:
  std::uint64_t wide(std::uint64_t handle) const { return GetParam() + handle; }
  std::string text(std::string seed = "") const {
    std::string all = withHandles(withoutComments(probeDrawing("\n")), [&](const std::string& handle) {
      return formatHandle(wide(host::text::parseHandle(handle)));
    });
    replaceOnce(all, "$HANDSEED\n  5\n100\n",
                "$HANDSEED\n  5\n" + (seed.empty() ? formatHandle(wide(0x72)) : seed) + "\n");
    return all;
  }
};

// Around the limits of numbers that keep fewer bits; drawings of some programs have such handles throughout.
INSTANTIATE_TEST_SUITE_P(Handles, WideHandles,
                         testing::Values(0, 0x7FFFFF00, 0x001FFFFFFFFFFF00, 0x0FFFFFFFFFFFFFA8, 0x7FFFFFFFFFFFFFA8,
                                         0xD9B071D01A0C8E23, 0xFFFFFFFFFFFFFF80, 0xFFFFFFFFFFFFFF8E));

TEST_P(WideHandles, StayThroughChangesAndSaving) {
  for (const bool isBinary : {false, true}) {
    const std::string given = isBinary ? binaryOf(text(), true) : text();
    ReadDrawing drawing(given);
    EXPECT_THAT(drawing.said(), ElementsAre());
    EXPECT_TRUE(drawing.saved() == given);
    DrawingDatabase& db = drawing.drawing();
    for (const std::uint64_t handle : {0x50, 0x54, 0x61, 0x71, 0x10}) {
      const Slot* const slot = db.findHandle(wide(handle));
      ASSERT_NE(slot, nullptr) << handle;
      EXPECT_EQ(slot->handle, wide(handle));
    }
    EXPECT_EQ(db.findHandle(wide(0x53))->firstSub()->owner, db.findHandle(wide(0x53)));
    {
      AcDbObjectPointer<AcDbEntity> entity(AcDbObjectId(db.findHandle(wide(0x51))), AcDb::kForWrite);
      EXPECT_EQ(entity->setLayer(ACRX_T("metsä")), Acad::eOk);
      AcDbObjectPointer<AcDbGroup> group(AcDbObjectId(db.findHandle(wide(0x70))), AcDb::kForRead);
      AcDbObjectIdArray members;
      group->allEntityIds(members);
      ASSERT_EQ(members.length(), 1);
      EXPECT_EQ(members[0].handle(), AcDbHandle(wide(0x51)));
    }
    const AcDbObjectId line = addLine(db);
    EXPECT_EQ(AcDbObjectId(db.findHandle(line.handle())), line);
    if (isBinary) continue;
    const std::string saved = drawing.saved();
    expectOneHandleEach(saved);
    ReadDrawing again(saved);
    EXPECT_THAT(again.said(), ElementsAre());
    EXPECT_EQ(drawn(again.drawing()), drawn(db));
    EXPECT_EQ(drawn(db).back(), line.handle());
    const Slot* const found = again.drawing().findHandle(line.handle());
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->type, DxfType::Line);
    EXPECT_GT(seedOf(again.drawing()), wide(0x71) - 1);  // there is nothing above the highest of all
  }
}

TEST_P(WideHandles, NewObjectsComeOnTopHoweverTheyAreMoved) {
  ReadDrawing drawing(text());
  DrawingDatabase& db = drawing.drawing();
  const AcDbObjectId first = addLine(db);
  db.beginUndoStep(L"MOVE");
  {
    AcDbObjectPointer<AcDbSortentsTable> table(AcDbObjectId(db.findHandle(wide(0x61))), AcDb::kForWrite);
    AcDbObjectIdArray moved;
    moved.append(AcDbObjectId(db.findHandle(wide(0x58))));
    moved.append(AcDbObjectId(db.findHandle(wide(0x52))));
    EXPECT_EQ(table->moveToTop(moved), Acad::eOk);
  }
  const AcDbObjectId second = addLine(db);
  db.endUndoStep();
  const std::vector<std::uint64_t> order = drawn(db);
  ASSERT_EQ(order.size(), 7U);
  EXPECT_EQ(std::vector(order.end() - 4, order.end()),
            (std::vector<std::uint64_t>{first.handle(), wide(0x58), wide(0x52), second.handle()}));
  EXPECT_EQ(drawn(ReadDrawing(drawing.saved()).drawing()), order);
  db.undo();
  EXPECT_EQ(drawn(db).back(), first.handle());
  EXPECT_EQ(drawn(ReadDrawing(drawing.saved()).drawing()), drawn(db));
}

TEST_P(WideHandles, StayInDamagedDrawings) {
  std::string damaged = text();
  replaceOnce(damaged, "  0\nENDSEC\n  0\nSECTION\n  2\nOBJECTS\n", "  0\nSECTION\n  2\nOBJECTS\n");
  ReadDrawing drawing(damaged);
  EXPECT_THAT(drawing.said(), Contains(HasSubstr("a section is not ended by ENDSEC")));
  EXPECT_EQ(drawing.entity(0).handle, wide(0x50));
  EXPECT_EQ(drawing.drawing().findHandle(wide(0x71))->owner, drawing.drawing().rootDictionary());
  expectOneHandleEach(drawing.saved());
  EXPECT_THAT(ReadDrawing(drawing.saved()).said(), ElementsAre());
}

TEST(HandSeed, NeverFallsAndLeavesRoom) {
  std::string text = probeDrawing("\n");
  const auto seeded = [&](const std::string& seed) {
    std::string changed = text;
    replaceOnce(changed, "$HANDSEED\n  5\n100\n", "$HANDSEED\n  5\n" + seed + "\n");
    return changed;
  };
  const auto newHandle = [](const std::string& given) {
    ReadDrawing drawing(given);
    const std::uint64_t handle = addLine(drawing.drawing()).handle();
    ReadDrawing again(drawing.saved());
    EXPECT_THAT(again.said(), ElementsAre());
    EXPECT_GT(seedOf(again.drawing()), handle);
    EXPECT_GE(seedOf(again.drawing()), seedOf(drawing.drawing()));
    return handle;
  };
  EXPECT_EQ(newHandle(seeded("5000")), 0x5000U);
  EXPECT_EQ(newHandle(seeded("A000000000000000")), 0xA000000000000000U);
  // A seed that leaves hardly a number: those below it are free.
  EXPECT_EQ(newHandle(seeded("FFFFFFFFFFFFFFFF")), 0x72U);
  EXPECT_EQ(newHandle(seeded("20")), 0x72U);
  EXPECT_EQ(newHandle(seeded("zz")), 0x72U);
  // Mending gives handles, too.
  std::string damaged = seeded("5000");
  replaceOnce(damaged, "  0\nEOF\n", "");
  ReadDrawing mended(damaged);
  mended.drawing().forEachSlot([](const Slot& slot) { EXPECT_TRUE(slot.handle < 0x72 || slot.handle >= 0x5000); });
  EXPECT_GT(seedOf(mended.drawing()), 0x5000U);
}

// Some programs number by texts of their own, as GUIDs. One handle of the probe becomes such a text wherever it stands.
TEST(OddHandles, AreReplacedWithAllThatNamesThem) {
  for (const std::string odd : {"zz", "3f2504e0-4f89-11d3-9a0c", "11112222333344445"}) {
    for (const std::string handle : {"51", "61", "60", "70", "1F", "53", "10", "C"}) {
      const std::string text = withHandles(withoutComments(probeDrawing("\n")),
                                           [&](const std::string& own) { return own == handle ? odd : own; });
      ReadDrawing drawing(text);
      ReadDrawing sound(probeDrawing("\n"));
      EXPECT_THAT(drawing.said(), Contains(HasSubstr("\"" + odd + "\" is no handle"))) << handle;
      EXPECT_THAT(drawing.said(), Not(Contains(HasSubstr("owner"))));
      EXPECT_THAT(drawing.said(), Not(Contains(HasSubstr("removed"))));
      DrawingDatabase& db = drawing.drawing();
      expectOneHandleEach(drawing.saved());
      EXPECT_THAT(drawing.saved(), Not(HasSubstr(odd)));
      // What stands for it, told by its place in the order of the file.
      const auto now = [&](std::uint64_t former) {
        if (formatHandle(former) != handle) return former;
        std::uint64_t found = 0;
        db.forEachSlot([&](const Slot& slot) {
          if (slot.handle >= 0x72 && slot.type == sound.drawing().findHandle(former)->type && found == 0) {
            found = slot.handle;
          }
        });
        return found;
      };
      EXPECT_THAT(std::string(db.findHandle(now(0x61))->fileBytes()),
                  HasSubstr("331\n50\n  5\n" + formatHandle(now(0x51)) + "\n331\n" + formatHandle(now(0x51)) + "\n"));
      ASSERT_NE(db.findHandle(now(0x70)), nullptr);
      EXPECT_THAT(std::string(db.findHandle(now(0x70))->fileBytes()),
                  HasSubstr("340\n" + formatHandle(now(0x51)) + "\n"));
      EXPECT_THAT(std::string(db.findHandle(now(0x51))->fileBytes()),
                  HasSubstr("330\n" + formatHandle(now(0x70)) + "\n"));
      EXPECT_THAT(std::string(db.findHandle(now(0x51))->fileBytes()),
                  HasSubstr("1005\n" + formatHandle(now(0x50)) + "\n"));
      EXPECT_EQ(db.findHandle(now(0x54))->owner, db.findHandle(now(0x53)));
      EXPECT_EQ(db.findHandle(now(0x71))->owner, db.findHandle(now(0xC)));
      EXPECT_EQ(db.rootDictionary(), db.findHandle(now(0xC)));
      EXPECT_THAT(ReadDrawing(drawing.saved()).said(), ElementsAre());
    }
  }
}

TEST(OddHandles, TwoOfOneObjectAreOneAndAWrongPlaceIsPutRight) {
  std::string text = probeDrawing("\n");
  replaceOnce(text, "LINE\n  5\n58\n", "LINE\n  5\n200\n  5\n58\n");
  replaceOnce(text, "  0\nSTRANGE\n  5\n52\n330\n1F\n100\nAcDbEntity\n",
              "  0\nSTRANGE\n330\n1F\n100\nAcDbEntity\n  5\n52\n");
  replaceOnce(text, "DICTIONARY\n  5\nD\n", "DICTIONARY\n  5\n0\n");
  ReadDrawing drawing(text);
  EXPECT_THAT(drawing.said(), Contains(HasSubstr("two handles")));
  EXPECT_EQ(drawing.entity(4).handle, 0x58U);
  EXPECT_EQ(drawing.entity(2).handle, 0x52U);
  EXPECT_EQ(drawn(drawing.drawing()), (std::vector<std::uint64_t>{0x52, 0x50, 0x51, 0x53, 0x58}));
  expectOneHandleEach(drawing.saved());
  EXPECT_THAT(drawing.saved(), HasSubstr("STRANGE\n  5\n52\n"));
}

TEST(MissingHandles, AreWrittenOnceSomethingElseIs) {
  std::string text = withoutComments(probeDrawing("\n"));
  for (const char* const handle : {"50", "57", "58", "60", "9"})
    replaceOnce(text, std::string("  5\n") + handle + "\n", "");
  replaceOnce(text, "GROUP\n  5\n70\n", "GROUP\n");
  replaceOnce(
      text, "  0\nTABLE\n  2\nAPPID\n",
      "  0\nTABLE\n  2\nDIMSTYLE\n  5\nA\n330\n0\n100\nAcDbSymbolTable\n 70\n1\n  0\nDIMSTYLE\n330\nA\n100\n"
      "AcDbSymbolTableRecord\n100\nAcDbDimStyleTableRecord\n  2\nOMA\n 70\n0\n  0\nENDTAB\n  0\nTABLE\n  2\nAPPID\n");
  ReadDrawing drawing(text);
  EXPECT_THAT(drawing.said(), ElementsAre());
  EXPECT_EQ(drawing.saved(), text);
  DrawingDatabase& db = drawing.drawing();
  {  // the group's one member
    AcDbObjectPointer<AcDbEntity> entity(AcDbObjectId(db.findHandle(0x51)), AcDb::kForWrite);
    EXPECT_EQ(entity->erase(), Acad::eOk);
    AcDbObjectPointer<AcDbEntity> nameless(AcDbObjectId(db.modelSpace().entities[0]), AcDb::kForWrite);
    EXPECT_EQ(nameless->setLayer(ACRX_T("metsä")), Acad::eOk);
  }
  const std::string saved = drawing.saved();
  expectOneHandleEach(saved);
  EXPECT_THAT(saved, testing::ContainsRegex("DIMSTYLE\n105\n[0-9A-F]+\n330\nA\n"));
  EXPECT_THAT(saved, Not(HasSubstr("340\n51\n")));
  ReadDrawing again(saved);
  EXPECT_THAT(again.said(), ElementsAre());
  again.drawing().forEachSlot(
      [&](const Slot& slot) { EXPECT_EQ(slot.flags & kNeedsHandle, 0) << again.drawing().typeName(slot); });
  EXPECT_EQ(again.entity(0).handle, db.modelSpace().entities[0]->handle);
}

}  // namespace

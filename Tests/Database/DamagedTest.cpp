// Drawings cut short or with bytes changed: read as far as they can be, or refused in one sentence; never a crash, and
// what is saved of them is sound.
#include <gtest/gtest.h>

#include <random>

#include "Database/Support.h"
#include "acutads.h"
#include "dbents.h"
#include "dbgroup.h"
#include "dbpl.h"
#include "sorttab.h"

namespace {

using namespace host::database;

/// Reads, opens everything, changes what can be changed, saves.
void exercise(const std::string& text) {
  AcDbDatabase db(false);
  DrawingDatabase& drawing = databaseOf(&db);
  const auto result = host::dxf::readDrawingText(drawing, text, "damaged.dxf");
  if (!result.ok) {
    EXPECT_EQ(result.message.substr(0, 11), "damaged.dxf") << result.message;
    EXPECT_EQ(result.message.find('\n'), std::string::npos);
    return;
  }
  acdbHostApplicationServices()->setWorkingDatabase(&db);
  drawing.beginUndoStep(L"TEST");
  std::vector<Slot*> slots;
  drawing.forEachSlot([&](Slot& slot) { slots.push_back(&slot); });
  for (Slot* const slot : slots) {
    AcDbObject* object = nullptr;
    if (acdbOpenAcDbObject(object, AcDbObjectId(slot), AcDb::kForWrite) != Acad::eOk) continue;
    acutRelRb(object->xData());
    if (auto* const entity = AcDbEntity::cast(object)) {
      entity->setLayer(ACRX_T("0"));
      entity->setColorIndex(2);
    }
    if (auto* const polyline = AcDbPolyline::cast(object)) polyline->setClosed(!polyline->isClosed());
    if (auto* const group = AcDbGroup::cast(object)) group->setDescription(ACRX_T("x"));
    if (auto* const table = AcDbSortentsTable::cast(object)) {
      AcDbObjectIdArray ids;
      table->getFullDrawOrder(ids);
      table->moveToTop(ids);
    }
    object->createExtensionDictionary();
    object->close();
  }
  drawing.layouts();
  drawing.drawOrder(drawing.modelSpace());
  drawing.endUndoStep();
  const std::string saved = host::dxf::drawingText(drawing);
  AcDbDatabase again(false);
  const auto reread = host::dxf::readDrawingText(databaseOf(&again), saved, "again");
  EXPECT_TRUE(reread.ok) << reread.message;
  for (const Problem& problem : databaseOf(&again).problems()) ADD_FAILURE() << problem.text;
  drawing.undo();
}

TEST(Damaged, CutShortAnywhere) {
  const std::string whole = tests::probeDrawing("\n");
  for (std::size_t length = 0; length < whole.size(); length += 3) exercise(whole.substr(0, length));
}

TEST(Damaged, LinesLeftOutAndBytesChanged) {
  const std::string whole = tests::probeDrawing("\n");
  std::mt19937 random(7);
  for (int round = 0; round < 1500; ++round) {
    std::string text = whole;
    const std::size_t at = random() % text.size();
    switch (random() % 4) {
      case 0:
        text[at] = static_cast<char>(random() % 256);
        break;
      case 1:
        text.erase(at, random() % 40);
        break;
      case 2:
        text.insert(at, text.substr(random() % text.size(), random() % 60));
        break;
      default: {  // one whole tag twice: handles, owners and markers repeat
        const std::size_t line = text.find('\n', at);
        if (line == std::string::npos) break;
        const std::size_t end = text.find('\n', text.find('\n', line + 1) + 1);
        if (end != std::string::npos) text.insert(line + 1, text.substr(line + 1, end - line));
      }
    }
    exercise(text);
  }
}

}  // namespace

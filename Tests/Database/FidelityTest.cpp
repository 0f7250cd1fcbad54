// What saving promises: nothing changes that nobody changed.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "Database/DrawingDatabase.h"
#include "Database/Support.h"
#include "Dxf/DxfFile.h"
#include "OwnFolder.h"
#include "acutads.h"
#include "dbdict.h"
#include "dbents.h"
#include "dbgroup.h"
#include "dbpl.h"
#include "dbsymtb.h"
#include "sorttab.h"

namespace {

using namespace host::database;
using tests::fileText;
using tests::lineDifference;
using tests::OpenDrawing;

std::vector<std::filesystem::path> realDrawings() {
  std::vector<std::filesystem::path> files;
  const std::filesystem::path folder = tests::realDrawingFolder();
  if (folder.empty()) return files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".dxf") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

TEST(Fidelity, UntouchedRealDrawingsComeOutByteForByte) {
  const auto files = realDrawings();
  if (files.empty()) GTEST_SKIP() << "the folder of real drawings is not here";
  int unchanged = 0;
  for (const auto& file : files) {
    AcDbDatabase db(false);
    const auto result = host::dxf::readDrawing(databaseOf(&db), file);
    ASSERT_TRUE(result.ok()) << result.message();
    const std::string saved = host::dxf::drawingText(databaseOf(&db));
    if (databaseOf(&db).problems().empty()) {
      ++unchanged;
      EXPECT_TRUE(saved == fileText(file)) << file;
      continue;
    }
    // What was rebuilt (R12, damaged) is a drawing that needs no rebuilding.
    AcDbDatabase again(false);
    ASSERT_TRUE(host::dxf::readDrawingText(databaseOf(&again), saved, "again").ok()) << file;
    EXPECT_TRUE(databaseOf(&again).problems().empty()) << databaseOf(&again).problems()[0].text;
    EXPECT_TRUE(host::dxf::drawingText(databaseOf(&again)) == saved) << file;
  }
  EXPECT_GE(unchanged, 11);
}

TEST(Fidelity, ReadingObjectsChangesNothing) {
  const auto files = realDrawings();
  if (files.empty()) GTEST_SKIP() << "the folder of real drawings is not here";
  for (const auto& file : files) {
    AcDbDatabase db(false);
    DrawingDatabase& drawing = databaseOf(&db);
    ASSERT_TRUE(host::dxf::readDrawing(drawing, file).ok()) << file;
    const std::string before = host::dxf::drawingText(drawing);
    std::size_t opened = 0;
    drawing.forEachSlot([&](Slot& slot) {
      AcDbObject* object = nullptr;
      if (acdbOpenAcDbObject(object, AcDbObjectId(&slot), AcDb::kForRead) != Acad::eOk) return;
      ++opened;
      if (auto* const polyline = AcDbPolyline::cast(object)) {
        AcGePoint3d point;
        EXPECT_EQ(polyline->getPointAt(0, point), polyline->numVerts() > 0 ? Acad::eOk : Acad::eInvalidIndex);
      }
      acutRelRb(object->xData());
      EXPECT_EQ(object->close(), Acad::eOk);
      EXPECT_EQ(object->close(), Acad::eNotOpenForRead);  // closing twice is answered, not undefined
    });
    EXPECT_EQ(drawing.releaseObjects(), 0);
    EXPECT_GT(opened, 20U) << file;
    EXPECT_TRUE(host::dxf::drawingText(drawing) == before) << file;
  }
}

// A probe with everything that must survive: odd number spellings, blanks, comments, foreign data of all kinds.
TEST(Fidelity, OneChangedEntityLeavesEveryOtherByteAlone) {
  for (const char* const lineEnd : {"\n", "\r\n"}) {
    OpenDrawing drawing(tests::probeDrawing(lineEnd));
    const std::string before = drawing.text();
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(entity, drawing.id(0x51), AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(entity->setLayer(ACRX_T("Metsä")), Acad::eOk);
    EXPECT_EQ(entity->close(), Acad::eOk);
    const std::string after = drawing.text();
    const tests::Difference difference = lineDifference(before, after);
    EXPECT_EQ(difference.removed, std::vector<std::string>{"vanha"});
    ASSERT_EQ(difference.added.size(), 1U);
    EXPECT_EQ(drawing.decoded(difference.added[0]), L"metsä");
  }
}

TEST(Fidelity, NewObjectsTouchOnlySeedCountsAndTheirOwnPlaces) {
  OpenDrawing drawing(tests::probeDrawing("\n"));
  const std::string before = drawing.text();
  {
    AcDbBlockTable* table = nullptr;
    ASSERT_EQ(drawing->getBlockTable(table, AcDb::kForRead), Acad::eOk);
    AcDbBlockTableRecord* space = nullptr;
    ASSERT_EQ(table->getAt(ACRX_T("*MODEL_SPACE"), space, AcDb::kForWrite), Acad::eOk);
    table->close();
    auto* const line = new AcDbLine({1, 2, 0}, {3, 4, 0});
    ASSERT_EQ(space->appendAcDbEntity(line), Acad::eOk);
    EXPECT_EQ(line->close(), Acad::eOk);
    space->close();
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(drawing->getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
    auto* const layer = new AcDbLayerTableRecord;
    EXPECT_EQ(layer->setName(ACRX_T("a<b")), Acad::eInvalidInput);
    ASSERT_EQ(layer->setName(ACRX_T("uusi")), Acad::eOk);
    ASSERT_EQ(layers->add(layer), Acad::eOk);
    layer->close();
    layers->close();
  }
  const tests::Difference difference = lineDifference(before, drawing.text());
  // The hand seed and the layer table's count are replaced; everything else is only added.
  EXPECT_EQ(difference.removed.size(), 2U) << testing::PrintToString(difference.removed);
  AcDbDatabase again(false);
  ASSERT_TRUE(host::dxf::readDrawingText(databaseOf(&again), drawing.text(), "again").ok());
  EXPECT_NE(databaseOf(&again).findRecord(DxfType::Layer, L"UUSI"), nullptr);
  EXPECT_EQ(databaseOf(&again).modelSpace().entities.size(), drawing.database().modelSpace().entities.size());
}

// With a sort table, a layer table and a class of the file's own; saved after every step and after every undo.
TEST(Fidelity, UndoingEverythingGivesBackTheFileSavedMeanwhileOrNot) {
  for (const bool saves : {false, true}) {
    OpenDrawing drawing(tests::probeDrawing("\n"));
    const std::string before = drawing.text();
    std::vector<std::string> texts{before};
    const auto step = [&](const auto& work) {
      drawing.database().beginUndoStep(L"STEP");
      work();
      drawing.database().endUndoStep();
      if (saves) texts.push_back(drawing.text());
    };
    const auto order = [&](auto move) {
      AcDbSortentsTable* table = nullptr;
      ASSERT_EQ(acdbOpenObject(table, drawing.id(0x61), AcDb::kForWrite), Acad::eOk);
      AcDbObjectIdArray ids;
      ids.append(drawing.id(0x50));
      EXPECT_EQ((table->*move)(ids), Acad::eOk);
      EXPECT_EQ(table->close(), Acad::eOk);
    };
    step([&] { order(&AcDbSortentsTable::moveToTop); });
    step([&] {
      AcDbLayerTable* layers = nullptr;
      ASSERT_EQ(drawing->getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
      auto* const layer = new AcDbLayerTableRecord;
      layer->setName(ACRX_T("uusi"));
      EXPECT_EQ(layers->add(layer), Acad::eOk);
      layer->close();
      layers->close();
    });
    step([&] { order(&AcDbSortentsTable::moveToBottom); });
    for (std::size_t i = 3; i-- > 0;) {
      EXPECT_TRUE(drawing.database().undo());
      if (saves) {
        EXPECT_EQ(drawing.text(), texts[i]) << i;
      }
    }
    EXPECT_EQ(drawing.text(), before);
    for (std::size_t i = 1; drawing.database().redo(); ++i) {
      if (saves) {
        EXPECT_EQ(drawing.text(), texts[i]) << i;
      }
    }
    EXPECT_NE(drawing.text(), before);
  }
}

TEST(Fidelity, ANewDrawingIsComplete) {
  AcDbDatabase db;
  EXPECT_EQ(db.measurement(), AcDb::kMetric);
  EXPECT_FALSE(db.layerZero().isNull());
  EXPECT_EQ(db.clayer(), db.layerZero());
  EXPECT_FALSE(db.continuousLinetype().isNull());
  AcDbDictionary* groups = nullptr;
  ASSERT_EQ(db.getGroupDictionary(groups, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(groups->numEntries(), 0U);
  groups->close();
  EXPECT_EQ(databaseOf(&db).layouts().size(), 2U);
}

}  // namespace

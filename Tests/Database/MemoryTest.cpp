// Memory that ends anywhere in the database: what was opened is never lost, and what was begun is done or not.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "Database/Support.h"
#include "Faults/Allocations.h"
#include "acdbads.h"
#include "acutads.h"
#include "dbdict.h"
#include "dbents.h"
#include "dbgroup.h"
#include "dbhatch.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"
#include "dbxrecrd.h"
#include "sorttab.h"

namespace {

using namespace host::database;
using namespace tests;
using faults::Lasting;
using faults::Whose;

using Work = void (*)(OpenDrawing& drawing);

struct ChainEnd {
  void operator()(resbuf* chain) const { acutRelRb(chain); }
};
using ResbufPointer = std::unique_ptr<resbuf, ChainEnd>;

void expectSame(const std::string& now, const std::string& wanted) {
  if (now == wanted) return;
  const Difference difference = lineDifference(wanted, now);
  ADD_FAILURE() << "missing: " << testing::PrintToString(difference.removed)
                << "\ntoo much: " << testing::PrintToString(difference.added);
}

void changeLayers(OpenDrawing& drawing) {
  const AcDbObjectPointer<AcDbLayerTable> table(drawing->layerTableId(), AcDb::kForWrite);
  auto layer = std::make_unique<AcDbLayerTableRecord>();
  layer->setName(L"uusi taso");
  AcDbObjectId id;
  if (table->add(id, layer.get()) == Acad::eOk) layer.release()->close();
  const AcDbObjectPointer<AcDbLayerTableRecord> old(drawing.id(0x12), AcDb::kForWrite);
  old->setName(L"lehto");
  old->setIsFrozen(true);
  AcCmColor color;
  color.setRGB(1, 2, 3);
  old->setColor(color);
  for (const std::uint64_t handle : {0x51, 0x53}) {
    const AcDbObjectPointer<AcDbEntity> entity(drawing.id(handle), AcDb::kForWrite);
    if (!id.isNull()) entity->setLayer(id);
    entity->setLinetype(L"Continuous");
    entity->setColor(color);
  }
  drawing->setClayer(drawing.id(0x11));
}

void tagEntities(OpenDrawing& drawing) {
  acdbRegApp(L"UUSI_SOVELLUS");
  const ResbufPointer chain(acutBuildList(1001, L"UUSI_SOVELLUS", 1000, L"räystäs", 1070, 3, RTNONE));
  const AcDbObjectPointer<AcDbEntity> entity(drawing.id(0x51), AcDb::kForWrite);
  if (chain != nullptr) entity->setXData(chain.get());
  const ResbufPointer all(entity->xData());
  entity->createExtensionDictionary();
}

void changeDictionaries(OpenDrawing& drawing) {
  const AcDbObjectPointer<AcDbDictionary> root(drawing->namedObjectsDictionaryId(), AcDb::kForWrite);
  for (int i = 0; i < 2; ++i) {  // the second replaces the first
    auto record = std::make_unique<AcDbXrecord>();
    AcDbObjectId id;
    if (root->setAt(L"TIEDOT", record.get(), id) != Acad::eOk) continue;
    AcDbXrecord* const resident = record.release();
    const ResbufPointer chain(acutBuildList(1, L"teksti", 40, 1.5, RTNONE));
    if (chain != nullptr) resident->setFromRbChain(*chain);
    resident->close();
  }
  root->remove(L"STRANGE_DATA");
  const AcDbObjectPointer<AcDbDictionary> groups(drawing->groupDictionaryId(), AcDb::kForWrite);
  auto group = std::make_unique<AcDbGroup>(L"uusi");
  AcDbObjectId id;
  if (groups->setAt(L"*", group.get(), id) != Acad::eOk) return;
  AcDbGroup* const resident = group.release();
  const AcDbObjectPointer<AcDbGroup> former(drawing.id(0x70), AcDb::kForWrite);
  for (const std::uint64_t handle : {0x50, 0x51, 0x53}) resident->append(drawing.id(handle));
  resident->setLayer(drawing.id(0x12));
  former->clear();
  resident->close();
}

void erase(OpenDrawing& drawing) {
  for (const std::uint64_t handle : {0x51, 0x53, 0x70, 0x62}) {
    const AcDbObjectPointer<AcDbObject> object(drawing.id(handle), AcDb::kForWrite);
    object->erase();
  }
  const AcDbObjectPointer<AcDbEntity> back(drawing.id(0x53), AcDb::kForWrite, true);
  back->erase(false);
}

void reorder(OpenDrawing& drawing) {
  const AcDbObjectPointer<AcDbSortentsTable> table(drawing.id(0x61), AcDb::kForWrite);
  AcDbObjectIdArray one, other;
  one.append(drawing.id(0x50));
  other.append(drawing.id(0x52));
  table->moveToTop(one);
  table->moveToBottom(other);
  table->moveAbove(other, drawing.id(0x51));
  table->swapOrder(drawing.id(0x50), drawing.id(0x53));
  AcDbObjectIdArray all;
  table->getFullDrawOrder(all);
}

void lookAtNewVertices(OpenDrawing& drawing) {
  AcGePoint3dArray points;
  for (const double x : {0, 9, 12}) points.append(AcGePoint3d(x, x * x, 0));
  AcDbObjectId id;
  {
    const AcDbObjectPointer<AcDbBlockTableRecord> space(AcDbObjectId(drawing.database().modelSpace().record),
                                                        AcDb::kForWrite);
    auto made = std::make_unique<AcDb3dPolyline>(AcDb::k3dSimplePoly, points, false);
    if (space.openStatus() != Acad::eOk || space->appendAcDbEntity(id, made.get()) != Acad::eOk) return;
    made.release()->close();
  }
  const AcDbObjectPointer<AcDb3dPolyline> polyline(id, AcDb::kForWrite);
  const std::unique_ptr<AcDbObjectIterator> each(polyline->vertexIterator());
  for (; !each->done(); each->step()) {
    const AcDbObjectPointer<AcDb3dPolylineVertex> vertex(each->objectId(), AcDb::kForWrite);
    vertex->setColorIndex(5);
  }
  polyline->setLayer(L"metsä");
}

std::unique_ptr<AcDbDatabase> insertionSource() {
  auto source = std::make_unique<AcDbDatabase>(false);
  std::string text = probeDrawing("\n");
  const std::size_t end = text.find("  2\nmets\xe4\n");  // a layer that has to come along
  text.replace(end + 4, 5, "puusto");
  EXPECT_TRUE(host::dxf::readDrawingText(databaseOf(source.get()), text, "source.dxf").ok());
  return source;
}

/// Handles that were given out are not given again.
std::string withoutSeed(std::string text) {
  const std::size_t value = text.find("  5\n", text.find("$HANDSEED")) + 4;
  return text.erase(value, text.find('\n', value) - value);
}

std::unique_ptr<AcDbDatabase> source;

void insert(OpenDrawing& drawing) {
  for (const wchar_t* const name : {L"puu", L"puu", L"pensas"}) {  // the second replaces the first
    const std::string before = drawing.text();
    AcDbObjectId id;
    try {
      drawing->insert(id, name, source.get());
    } catch (const std::bad_alloc&) {
      faults::off();
      expectSame(withoutSeed(drawing.text()), withoutSeed(before));  // all of it or nothing
      throw;
    }
  }
}

// The plug-in's commands make entities and groups so (Reports/FailuresTest.cpp).
const std::pair<const char*, Work> kWorks[] = {
    {"layers", changeLayers}, {"tags", tagEntities},   {"dictionaries", changeDictionaries},
    {"erasing", erase},       {"draw order", reorder}, {"new vertices", lookAtNewVertices},
    {"insertion", insert},
};

/// What was saved is a drawing in which nothing needs to be mended.
void expectReadable(const std::string& saved) {
  AcDbDatabase again(false);
  const auto read = host::dxf::readDrawingText(databaseOf(&again), saved, "saved.dxf");
  ASSERT_TRUE(read.ok()) << read.message();
  for (const Problem& problem : databaseOf(&again).problems()) ADD_FAILURE() << problem.text;
}

class Memory : public testing::TestWithParam<std::tuple<std::pair<const char*, Work>, Lasting>> {
 protected:
  void SetUp() override { source = insertionSource(); }
  void TearDown() override {
    drawing_.reset();
    source.reset();
  }

  std::unique_ptr<OpenDrawing> drawing_;
  const std::string opened_ = probeDrawing("\n");

  DrawingDatabase& db() { return drawing_->database(); }
  void open() {
    drawing_.reset();
    drawing_ = std::make_unique<OpenDrawing>(opened_);
  }
  void doWork() {
    try {
      db().beginUndoStep(L"WORK");
      std::get<0>(GetParam()).second(*drawing_);
    } catch (const std::bad_alloc&) {
    }
    db().releaseObjects();
    db().endUndoStep();
  }
  int forEach(const std::function<void()>& prepare, const std::function<void()>& work,
              const std::function<void(int)>& look) {
    return faults::forEachAllocation(std::get<1>(GetParam()), Whose::Everybody, prepare, work, [&](int n) {
      SCOPED_TRACE(n);
      if (!HasFailure()) look(n);
    });
  }
};

TEST_P(Memory, ThatEndsInWorkLeavesADrawingThatSavesAndIsUndone) {
  const int failures = forEach([&] { open(); }, [&] { doWork(); },
                               [&](int) {
                                 const std::string saved = drawing_->text();
                                 expectReadable(saved);
                                 expectSame(drawing_->text(), saved);
                                 while (db().undo()) {
                                 }
                                 expectSame(drawing_->text(), opened_);
                                 while (db().redo()) {
                                 }
                                 expectSame(drawing_->text(), saved);
                               });
  EXPECT_GT(failures, 10);
}

TEST_P(Memory, ThatEndsInUndoOrRedoLeavesTheStep) {
  std::string done;
  const auto prepare = [&] {
    open();
    doWork();
    done = drawing_->text();
  };
  const auto tried = [](const std::function<void()>& work) {
    try {
      work();
    } catch (const std::bad_alloc&) {
    }
  };
  for (const bool isRedo : {false, true}) {
    const auto step = [&] { return isRedo ? db().redo() : db().undo(); };
    const auto prepareStep = [&] {
      prepare();
      if (isRedo) db().undo();
    };
    EXPECT_GT(forEach(
                  prepareStep, [&] { tried([&] { step(); }); },
                  [&](int) {
                    const std::string now = drawing_->text();
                    EXPECT_TRUE(now == done || now == opened_);
                    step();
                    expectSame(drawing_->text(), isRedo ? done : opened_);
                  }),
              0);
  }
}

TEST_P(Memory, ThatEndsInSavingLeavesTheOldFileAndTheDrawing) {
  const OwnFolder own;
  const auto& folder = own.path;
  const auto file = folder / "plan.dxf";
  open();
  doWork();
  const std::string done = drawing_->text();
  host::Result<> result;
  const int failures = forEach([&] { std::ofstream(file) << "old"; },
                               [&] {
                                 try {
                                   result = host::dxf::saveDrawing(db(), file);
                                 } catch (const std::bad_alloc&) {  // not even the sentence could be made
                                   result = host::problemOf(host::Code::OutputFailed, "memory");
                                 }
                               },
                               [&](int) {
                                 EXPECT_EQ(fileText(file), result.ok() ? done : "old");
                                 expectSame(drawing_->text(), done);
                                 const std::filesystem::directory_iterator all(folder);
                                 EXPECT_EQ(std::distance(begin(all), end(all)), 1);
                               });
  EXPECT_GT(failures, 5);
}

INSTANTIATE_TEST_SUITE_P(Everywhere, Memory,
                         testing::Combine(testing::ValuesIn(kWorks),
                                          testing::Values(Lasting::One, Lasting::AllFromThere)),
                         [](const auto& test) {
                           std::string name = std::get<0>(test.param).first;
                           std::replace(name.begin(), name.end(), ' ', '_');
                           return name + (std::get<1>(test.param) == Lasting::One ? "_once" : "_for_good");
                         });

TEST(MemoryOfReading, ThatEndsLeavesNothingBehind) {
  const std::string text = probeDrawing("\n");
  std::string damaged = text;
  damaged.erase(damaged.find("  0\nENDTAB"), 10);
  for (const std::string& drawing : {text, damaged}) {
    std::unique_ptr<AcDbDatabase> db;
    bool ok = false;
    const int failures = faults::forEachAllocation(
        Lasting::One, Whose::Everybody, [&] { db = std::make_unique<AcDbDatabase>(false); },
        [&] {
          try {
            ok = host::dxf::readDrawingText(databaseOf(db.get()), drawing, "a.dxf").ok();
          } catch (const std::bad_alloc&) {
            ok = false;
          }
        },
        [&](int n) {
          if (ok) return;
          EXPECT_EQ(databaseOf(db.get()).slotCount(), 0U) << n;
          EXPECT_TRUE(host::dxf::readDrawingText(databaseOf(db.get()), drawing, "a.dxf").ok()) << n;
        });
    EXPECT_GT(failures, 50);
  }
}

// An object whose values cannot be written when it is closed is as it was, and somebody hears of it.
TEST(MemoryOfClosing, ThatEndsKeepsTheFormerValues) {
  OpenDrawing drawing(probeDrawing("\n"));
  const std::string before = drawing.text();
  AcDbPolyline* polyline = nullptr;
  ASSERT_EQ(acdbOpenObject(polyline, drawing.id(0x50), AcDb::kForWrite), Acad::eOk);
  ASSERT_EQ(polyline->setBulgeAt(0, 0.5), Acad::eOk);
  faults::failAllocation(1, Lasting::AllFromThere, Whose::Everybody);
  const Acad::ErrorStatus status = polyline->close();
  faults::off();
  EXPECT_EQ(status, Acad::eOutOfMemory);
  EXPECT_EQ(drawing.database().takeLostChanges(), 1);
  EXPECT_EQ(drawing.database().takeLostChanges(), 0);
  expectSame(drawing.text(), before);
  const AcDbObjectPointer<AcDbPolyline> again(drawing.id(0x50), AcDb::kForWrite);
  double bulge = 1;
  EXPECT_EQ(again->getBulgeAt(0, bulge), Acad::eOk);
  EXPECT_EQ(bulge, 0);
}

TEST(MemoryOfClearing, GoesWithObjectsThatWereChanged) {
  OpenDrawing drawing(probeDrawing("\n"));
  changeLayers(drawing);
  drawing.database().clear();
  EXPECT_EQ(drawing.database().slotCount(), 0U);
  EXPECT_TRUE(host::dxf::readDrawingText(drawing.database(), probeDrawing("\n"), "again").ok());
}

}  // namespace

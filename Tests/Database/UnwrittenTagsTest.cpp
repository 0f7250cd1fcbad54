// New entities whose tags and vertices are made only when somebody asks for them: nobody can tell.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "Database/Store/Parts.h"
#include "Database/Support.h"
#include "Text/Text.h"
#include "dbdict.h"
#include "dbents.h"
#include "dbgroup.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"

namespace {

using namespace host::database;
using tests::OpenDrawing;

class NewPolyline : public testing::Test {
 protected:
  OpenDrawing drawing;
  AcDbObjectId id;

  void SetUp() override {
    drawing.database().beginUndoStep(L"MAKE");
    id = append();
    append();  // handles go on behind those of the vertices
    drawing.database().endUndoStep();
  }

  AcDbObjectId append() {
    AcDbObjectPointer<AcDbBlockTableRecord> space(AcDbObjectId(drawing.database().modelSpace().record),
                                                  AcDb::kForWrite);
    AcGePoint3dArray points;
    points.append({0, 0, 1});
    points.append({27496000.123456789, 6713000.5, 2});
    points.append({5, 5, 3});
    auto* const polyline = new AcDb3dPolyline(AcDb::k3dSimplePoly, points, true);
    EXPECT_EQ(polyline->setColorIndex(34), Acad::eOk);
    EXPECT_EQ(polyline->setLayer(L"0"), Acad::eOk);
    EXPECT_EQ(space->appendAcDbEntity(polyline), Acad::eOk);
    EXPECT_EQ(polyline->close(), Acad::eOk);
    return polyline->objectId();
  }

  void inStep(const std::function<void()>& work) {
    drawing.database().beginUndoStep(L"WORK");
    work();
    drawing.database().endUndoStep();
    drawing.database().releaseObjects();
  }
  template <class T = AcDb3dPolyline, class Work>
  void change(AcDbObjectId which, const Work& work) {
    const AcDbObjectPointer<T> object(which, AcDb::kForWrite);
    ASSERT_EQ(object.openStatus(), Acad::eOk);
    work(*object);
  }
  std::vector<AcDbObjectId> vertices() {
    const AcDbObjectPointer<AcDb3dPolyline> polyline(id, AcDb::kForRead, true);
    std::vector<AcDbObjectId> found;
    const std::unique_ptr<AcDbObjectIterator> each(polyline->vertexIterator());
    for (; !each->done(); each->step()) found.push_back(each->objectId());
    return found;
  }
  /// The tags of the polyline and its vertices in the saved text.
  std::string saved() {
    const std::string all = drawing.text();
    const std::size_t begin = all.find("  0\nPOLYLINE\n");
    return begin == std::string::npos ? std::string() : all.substr(begin, all.find("  0\nENDSEC", begin) - begin);
  }
};

TEST_F(NewPolyline, IsSavedTheSameWhoeverLookedAtIt) {
  const std::string unseen = drawing.text();
  EXPECT_TRUE(id.slot()->unmadeVertices() != nullptr);
  EXPECT_TRUE(id.slot()->live->record.unwritten() != nullptr);

  ASSERT_EQ(vertices().size(), 3U);
  AcDb3dPolylineVertex* corner = nullptr;
  ASSERT_EQ(acdbOpenObject(corner, vertices()[1], AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(corner->position(), AcGePoint3d(27496000.123456789, 6713000.5, 2));
  EXPECT_EQ(corner->ownerId(), id);
  EXPECT_EQ(corner->colorIndex(), 34);
  corner->close();
  EXPECT_EQ(drawing.text(), unseen);
}

TEST_F(NewPolyline, VerticesAreFoundByHandlesOfTheirOwn) {
  const std::uint64_t first = id.handle();
  const Slot* const end = drawing.database().findHandle(first + 4);
  ASSERT_NE(end, nullptr);
  EXPECT_EQ(end->type, DxfType::SeqEnd);
  EXPECT_EQ(AcDbObjectId(drawing.database().findHandle(first + 2)), vertices()[1]);
  ASSERT_NE(drawing.database().findHandle(first + 5), nullptr);
  EXPECT_EQ(drawing.database().findHandle(first + 5)->type, DxfType::Polyline3d);
  EXPECT_EQ(drawing.database().findHandle(first + 10), nullptr);

  const std::string text = drawing.text();
  AcDbDatabase again(false);
  ASSERT_TRUE(host::dxf::readDrawingText(databaseOf(&again), text, "again").ok());
  for (std::uint64_t handle = first; handle < first + 10; ++handle) {
    ASSERT_NE(databaseOf(&again).findHandle(handle), nullptr) << handle - first;
  }
  const AcDbObjectPointer<AcDb3dPolylineVertex> corner(AcDbObjectId(databaseOf(&again).findHandle(first + 2)),
                                                       AcDb::kForRead);
  EXPECT_EQ(corner->position(), AcGePoint3d(27496000.123456789, 6713000.5, 2));  // to the last bit
  EXPECT_GT(host::text::parseHandle(host::text::toUtf8(*databaseOf(&again).headerText("$HANDSEED", 5))), first + 9);
}

TEST_F(NewPolyline, VerticesFollowItThroughErasingAndUndo) {
  const std::string before = saved();
  // Made between the steps, they belong to none.
  inStep([&] { EXPECT_EQ(vertices().size(), 3U); });
  const AcDbObjectId corner = vertices()[0];
  inStep([&] { change(id, [](AcDb3dPolyline& polyline) { polyline.erase(); }); });
  EXPECT_TRUE(corner.isErased());
  EXPECT_EQ(saved().find("VERTEX\n  5\n" + host::text::formatHandle(corner.handle()) + "\n"), std::string::npos);
  drawing.database().undo();
  EXPECT_FALSE(corner.isErased());
  EXPECT_EQ(saved(), before);
  drawing.database().undo();  // the making
  EXPECT_TRUE(id.isErased());
  EXPECT_TRUE(corner.isErased());
  EXPECT_EQ(saved(), "");
  drawing.database().redo();
  EXPECT_FALSE(corner.isErased());
  EXPECT_EQ(saved(), before);
  drawing.database().redo();
  EXPECT_TRUE(corner.isErased());
}

TEST_F(NewPolyline, VerticesAskedForWhileItIsErasedComeBackWithIt) {
  const std::string before = saved();
  inStep([&] { change(id, [](AcDb3dPolyline& polyline) { polyline.erase(); }); });
  Slot* const corner = drawing.database().findHandle(id.handle() + 1);
  ASSERT_NE(corner, nullptr);
  EXPECT_TRUE(corner->isErased());
  drawing.database().undo();
  EXPECT_FALSE(corner->isErased());
  EXPECT_EQ(saved(), before);
}

TEST_F(NewPolyline, AChangedVertexGoesItsOwnWay) {
  const std::string before = saved();
  const AcDbObjectId corner = vertices()[1];
  inStep([&] { change<AcDb3dPolylineVertex>(corner, [](AcDb3dPolylineVertex& vertex) { vertex.erase(); }); });
  const std::string without = saved();
  EXPECT_NE(without, before);
  EXPECT_EQ(vertices().size(), 2U);
  inStep([&] { change(id, [](AcDb3dPolyline& polyline) { polyline.erase(); }); });
  drawing.database().undo();
  EXPECT_EQ(saved(), without);  // still gone
  EXPECT_TRUE(corner.isErased());
  drawing.database().undo();
  EXPECT_EQ(saved(), before);
  drawing.database().redo();
  EXPECT_EQ(saved(), without);
}

TEST_F(NewPolyline, ChangesAndUndoReachWhatWasNotSpelled) {
  const std::string before = saved();
  AcDbObjectId layer;
  {
    AcDbObjectPointer<AcDbLayerTable> table(drawing->layerTableId(), AcDb::kForWrite);
    auto* const record = new AcDbLayerTableRecord;
    record->setName(L"reuna");
    ASSERT_EQ(table->add(layer, record), Acad::eOk);
    record->close();
  }
  inStep([&] {
    change(id, [&](AcDb3dPolyline& polyline) {
      EXPECT_EQ(polyline.setLayer(layer), Acad::eOk);
      EXPECT_EQ(polyline.makeOpen(), Acad::eOk);
    });
  });
  EXPECT_EQ(drawing.database().findHandle(id.handle() + 1)->layer, id.slot()->layer);
  EXPECT_NE(saved().find("  8\nreuna\n100\nAcDbVertex"), std::string::npos);
  drawing.database().undo();
  EXPECT_EQ(saved(), before);
}

TEST_F(NewPolyline, AReactorOfALaterStepIsUndone) {
  AcDbObjectId group;
  {
    AcDbObjectPointer<AcDbDictionary> groups(drawing->groupDictionaryId(), AcDb::kForWrite);
    auto* const made = new AcDbGroup(L"rest");
    ASSERT_EQ(groups->setAt(L"G", made, group), Acad::eOk);
    made->close();
  }
  const std::string before = saved();
  inStep([&] { change<AcDbGroup>(group, [&](AcDbGroup& open) { EXPECT_EQ(open.append(id), Acad::eOk); }); });
  const std::string reactor = "102\n{ACAD_REACTORS\n330\n" + host::text::formatHandle(group.handle()) + "\n102\n}\n";
  EXPECT_NE(saved().find(reactor), std::string::npos);
  drawing.database().undo();
  EXPECT_EQ(saved(), before);

  // One that is planted as the polyline is made is spelled with it.
  drawing.database().beginUndoStep(L"MAKE");
  const AcDbObjectId other = append();
  change<AcDbGroup>(group, [&](AcDbGroup& open) {
    EXPECT_EQ(open.append(other), Acad::eOk);
    EXPECT_EQ(open.append(other), Acad::eAlreadyInGroup);
  });
  drawing.database().endUndoStep();
  EXPECT_NE(saved().find("  5\n" + host::text::formatHandle(other.handle()) + "\n" + reactor), std::string::npos);
}

TEST_F(NewPolyline, LaterOnesTakeTheLayersAndDefaultsOfTheirMoment) {
  change<AcDbLayerTableRecord>(drawing->layerZero(), [](AcDbLayerTableRecord& layer) { layer.setIsLocked(true); });
  AcDb3dPolyline* polyline = nullptr;
  EXPECT_EQ(acdbOpenObject(polyline, id, AcDb::kForWrite), Acad::eOnLockedLayer);
  change<AcDbLayerTableRecord>(drawing->layerZero(), [](AcDbLayerTableRecord& layer) { layer.setIsLocked(false); });
  EXPECT_EQ(acdbOpenObject(polyline, id, AcDb::kForWrite), Acad::eOk);
  polyline->close();

  drawing.database().setHeaderInteger("$CELWEIGHT", 370, 50);
  const AcDbObjectId heavy = append();
  EXPECT_EQ(entityProperties(*id.slot()).lineweight, -1);
  EXPECT_EQ(entityProperties(*heavy.slot()).lineweight, 50);
}

TEST_F(NewPolyline, OutlivesTheDrawingOfItsLayer) {
  AcGePoint3dArray points;
  points.append({0, 0, 0});
  points.append({1, 1, 0});
  auto spelled = std::make_unique<AcDb3dPolyline>(AcDb::k3dSimplePoly, points, false);
  auto added = std::make_unique<AcDb3dPolyline>(AcDb::k3dSimplePoly, points, false);
  {
    OpenDrawing other;
    EXPECT_EQ(spelled->setLayer(other->layerZero()), Acad::eOk);
    EXPECT_EQ(added->setLayer(other->layerZero()), Acad::eOk);
  }
  acdbHostApplicationServices()->setWorkingDatabase(drawing.facade());
  EXPECT_TRUE(spelled->layerId().isNull());
  AcDbObjectPointer<AcDbBlockTableRecord> space(AcDbObjectId(drawing.database().modelSpace().record), AcDb::kForWrite);
  for (auto* const polyline : {&spelled, &added}) {
    ASSERT_EQ(space->appendAcDbEntity(polyline->get()), Acad::eOk);
    EXPECT_EQ((*polyline)->layerId(), drawing->clayer());
    polyline->release()->close();
  }
}

TEST(ClosedObjects, TellWhatTheirRecordsSayNow) {
  OpenDrawing drawing(tests::probeDrawing("\n"));
  const auto elevation = [&] {
    const AcDbObjectPointer<AcDbPolyline> open(drawing.id(0x50), AcDb::kForRead);
    return open->elevation();
  };
  EXPECT_EQ(elevation(), 0);
  drawing.database().beginUndoStep(L"RAISE");
  drawing.database().parts().editor.setTag(*drawing.id(0x50).slot(), "AcDbPolyline", 38, "5.0");
  EXPECT_EQ(elevation(), 5);
  {
    const AcDbObjectPointer<AcDbPolyline> open(drawing.id(0x50), AcDb::kForWrite);
    EXPECT_EQ(open->setElevation(6), Acad::eOk);
  }
  EXPECT_EQ(elevation(), 6);
  drawing.database().endUndoStep();
  drawing.database().undo();
  EXPECT_EQ(elevation(), 0);
  EXPECT_EQ(drawing.database().releaseObjects(), 0);
}

}  // namespace

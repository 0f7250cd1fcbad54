// Opening, changing, extended data, groups, dictionaries, draw order, undo: the answers plug-ins rely on.
#include <gtest/gtest.h>

#include "Database/Support.h"
#include "acdbads.h"
#include "acutads.h"
#include "dbdict.h"
#include "dbents.h"
#include "dbgroup.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"
#include "dbxrecrd.h"
#include "sorttab.h"

namespace {

using namespace host::database;
using tests::OpenDrawing;

/// A chain that frees itself.
struct Chain {
  resbuf* head;
  explicit Chain(resbuf* chain) : head(chain) {}
  Chain(const Chain&) = delete;
  Chain& operator=(const Chain&) = delete;
  ~Chain() { acutRelRb(head); }
};

class Probe : public testing::Test {
 protected:
  OpenDrawing drawing{tests::probeDrawing("\n")};

  AcDbEntity* open(std::uint64_t handle, AcDb::OpenMode mode) {
    AcDbEntity* entity = nullptr;
    EXPECT_EQ(acdbOpenAcDbEntity(entity, drawing.id(handle), mode), Acad::eOk) << std::hex << handle;
    return entity;
  }
};

TEST_F(Probe, OpenStatesAnswerAsTheHostDoes) {
  AcDbObject* object = nullptr;
  EXPECT_EQ(acdbOpenAcDbObject(object, AcDbObjectId::kNull, AcDb::kForRead), Acad::eNullObjectId);
  AcDbEntity* const reader = open(0x50, AcDb::kForRead);
  EXPECT_EQ(acdbOpenAcDbObject(object, drawing.id(0x50), AcDb::kForWrite), Acad::eWasOpenForRead);
  AcDbEntity* const second = open(0x50, AcDb::kForRead);
  EXPECT_EQ(reader->upgradeOpen(), Acad::eHadMultipleReaders);
  EXPECT_EQ(reader->setColorIndex(1), Acad::eNotOpenForWrite);
  EXPECT_EQ(second->close(), Acad::eOk);
  EXPECT_EQ(reader->upgradeOpen(), Acad::eOk);
  EXPECT_EQ(reader->upgradeOpen(), Acad::eWasOpenForWrite);
  EXPECT_EQ(acdbOpenAcDbObject(object, drawing.id(0x50), AcDb::kForRead), Acad::eWasOpenForWrite);
  EXPECT_EQ(reader->downgradeOpen(), Acad::eOk);
  EXPECT_EQ(reader->downgradeOpen(), Acad::eNotOpenForWrite);
  EXPECT_EQ(reader->close(), Acad::eOk);
  EXPECT_EQ(reader->close(), Acad::eNotOpenForRead);
  for (int i = 0; i < 256; ++i) ASSERT_EQ(acdbOpenAcDbObject(object, drawing.id(0x50), AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(acdbOpenAcDbObject(object, drawing.id(0x50), AcDb::kForRead), Acad::eAtMaxReaders);
  EXPECT_EQ(drawing.database().releaseObjects(), 1);  // whoever leaves objects open is found out

  AcDbLine* line = nullptr;
  EXPECT_EQ(acdbOpenObject(line, drawing.id(0x50)), Acad::eNotThatKindOfClass);
  AcDbEntity* entity = nullptr;
  EXPECT_EQ(acdbOpenAcDbEntity(entity, drawing.id(0x70), AcDb::kForRead), Acad::eNotAnEntity);
  // Locked layers refuse writing, not reading.
  EXPECT_EQ(acdbOpenAcDbEntity(entity, drawing.id(0x58), AcDb::kForWrite), Acad::eOnLockedLayer);
  entity = open(0x58, AcDb::kForRead);
  EXPECT_EQ(entity->upgradeOpen(), Acad::eOnLockedLayer);
  entity->close();
}

TEST_F(Probe, ErasedObjectsAreGoneUntilUndone) {
  drawing.database().beginUndoStep(L"ERASE");
  AcDbEntity* entity = open(0x53, AcDb::kForWrite);  // a polyline with vertices
  EXPECT_EQ(entity->erase(), Acad::eOk);
  entity->close();
  drawing.database().endUndoStep();
  EXPECT_EQ(acdbOpenAcDbEntity(entity, drawing.id(0x53), AcDb::kForRead), Acad::eWasErased);
  EXPECT_TRUE(drawing.id(0x55).isErased());
  EXPECT_EQ(acdbOpenAcDbEntity(entity, drawing.id(0x53), AcDb::kForRead, true), Acad::eOk);
  entity->close();
  EXPECT_EQ(drawing.text().find("VERTEX"), std::string::npos);
  EXPECT_EQ(drawing.database().undo(), L"ERASE");
  EXPECT_EQ(drawing.text(), tests::probeDrawing("\n"));
  EXPECT_EQ(drawing.database().redo(), L"ERASE");
  EXPECT_TRUE(drawing.id(0x57).isErased());
  EXPECT_FALSE(drawing.database().redo().has_value());
}

TEST_F(Probe, LayersFollowTheHostsRules) {
  AcDbEntity* const polyline = open(0x53, AcDb::kForWrite);
  EXPECT_EQ(polyline->setLayer(ACRX_T("ei ole")), Acad::eKeyNotFound);
  EXPECT_EQ(polyline->setLayer(drawing.id(0x16)), Acad::eWrongObjectType);
  {
    AcDbObjectPointer<AcDbLayerTableRecord> layer(drawing.id(0x12), AcDb::kForWrite);
    EXPECT_EQ(polyline->setLayer(drawing.id(0x12)), Acad::eWasOpenForWrite);
    EXPECT_FALSE(layer->isOff());
    layer->setIsOff(true);
    EXPECT_EQ(layer->color().colorIndex(), 3);
  }
  EXPECT_EQ(polyline->setLayer(ACRX_T("METSÄ")), Acad::eOk);
  polyline->close();
  for (const std::uint64_t handle : {0x53, 0x54, 0x57}) {  // vertices and the end go along
    AcDbEntity* const part = open(handle, AcDb::kForRead);
    EXPECT_EQ(part->layerId(), drawing.id(0x12));
    part->close();
  }
  AcDbObjectPointer<AcDbLayerTableRecord> off(drawing.id(0x11), AcDb::kForWrite);
  EXPECT_TRUE(off->isOff());
  AcCmColor red;
  red.setColorIndex(1);
  off->setColor(red);  // stays off, loses its true colour
  EXPECT_TRUE(off->isOff());
  EXPECT_EQ(off->color(), red);
  EXPECT_EQ(red.setColorIndex(257), Acad::eBadColorIndex);
}

TEST_F(Probe, ExtendedDataIsCheckedReplacedAndRemoved) {
  AcDbEntity* const entity = open(0x51, AcDb::kForWrite);
  Chain before(entity->xData(ACRX_T("vieras")));
  ASSERT_NE(before.head, nullptr);
  EXPECT_STREQ(before.head->resval.rstring, L"VIERAS");
  EXPECT_STREQ(before.head->rbnext->resval.rstring, L"  text with blanks  ");
  // The very same chain written back is read back the same.
  EXPECT_EQ(entity->setXData(before.head), Acad::eOk);
  Chain after(entity->xData());
  const resbuf *a = before.head, *b = after.head;
  int items = 0;
  for (; a != nullptr && b != nullptr; a = a->rbnext, b = b->rbnext, ++items) {
    EXPECT_EQ(a->restype, b->restype);
    if (a->restype == 1010 || a->restype == 1011) {
      EXPECT_EQ(a->resval.rpoint[2], b->resval.rpoint[2]);
    }
    if (a->restype == 1070) {
      EXPECT_EQ(b->resval.rint, -7);
    }
    if (a->restype == 1071) {
      EXPECT_EQ(b->resval.rlong, 70000);
    }
    if (a->restype == 1005) {
      EXPECT_STREQ(b->resval.rstring, L"50");
    }
  }
  EXPECT_EQ(a, nullptr);
  EXPECT_EQ(b, nullptr);
  EXPECT_EQ(items, 15);

  const auto set = [&](resbuf* chain) {
    Chain owned(chain);
    return entity->setXData(owned.head);
  };
  EXPECT_EQ(set(acutBuildList(1001, L"UUSI", 1000, L"x", RTNONE)), Acad::eRegappIdNotFound);
  EXPECT_EQ(acdbRegApp(ACRX_T("UUSI")), RTNORM);
  EXPECT_EQ(acdbRegApp(ACRX_T("uusi")), RTERROR);
  EXPECT_EQ(set(acutBuildList(1001, L"UUSI", 1000, L"x", RTNONE)), Acad::eOk);
  EXPECT_EQ(set(acutBuildList(1000, L"x", RTNONE)), Acad::eBadDxfSequence);
  EXPECT_EQ(set(acutBuildList(1001, L"UUSI", 70, 1, RTNONE)), Acad::eInvalidDxfCode);
  EXPECT_EQ(set(acutBuildList(1001, L"UUSI", 1002, L"{", RTNONE)), Acad::eBadDxfSequence);
  EXPECT_EQ(set(acutBuildList(1001, L"UUSI", 1000, std::wstring(256, L'x').c_str(), RTNONE)), Acad::eXdataSizeExceeded);
  resbuf* big = acutBuildList(1001, L"UUSI", RTNONE);
  for (int i = 0; i < 64; ++i) {  // 64 x 259 bytes do not fit beside the other application's data
    resbuf* const item = acutBuildList(1000, std::wstring(255, L'y').c_str(), RTNONE);
    item->rbnext = big->rbnext;
    big->rbnext = item;
  }
  EXPECT_EQ(set(big), Acad::eXdataSizeExceeded);
  Chain kept(entity->xData(ACRX_T("UUSI")));
  EXPECT_STREQ(kept.head->rbnext->resval.rstring, L"x");  // refused data changed nothing
  // A bare name removes that application's data and leaves the others.
  EXPECT_EQ(set(acutBuildList(1001, L"UUSI", RTNONE)), Acad::eOk);
  EXPECT_EQ(entity->xData(ACRX_T("UUSI")), nullptr);
  Chain others(entity->xData(ACRX_T("VIERAS")));
  EXPECT_NE(others.head, nullptr);
  entity->close();
}

TEST_F(Probe, GroupsPlantReactorsAndFollowTheirMembers) {
  AcDbDictionary* groups = nullptr;
  ASSERT_EQ(drawing->getGroupDictionary(groups, AcDb::kForWrite), Acad::eOk);
  EXPECT_TRUE(groups->has(ACRX_T("ryhmä")));
  auto* const group = new AcDbGroup(ACRX_T("uusi"));
  EXPECT_EQ(group->append(drawing.id(0x50)), Acad::eNotInDatabase);
  AcDbObjectId id;
  ASSERT_EQ(groups->setAt(ACRX_T("Toinen"), group, id), Acad::eOk);
  groups->close();
  EXPECT_EQ(group->append(drawing.id(0x50)), Acad::eOk);
  EXPECT_EQ(group->append(drawing.id(0x50)), Acad::eAlreadyInGroup);
  AcDbEntity* const held = open(0x52, AcDb::kForWrite);
  EXPECT_EQ(group->append(drawing.id(0x52)), Acad::eWasOpenForWrite);
  held->close();
  EXPECT_EQ(group->append(drawing.id(0x52)), Acad::eOk);
  EXPECT_EQ(group->setLayer(ACRX_T("metsä")), Acad::eOk);
  group->close();
  AcDbEntity* member = open(0x50, AcDb::kForWrite);
  EXPECT_TRUE(member->hasPersistentReactor(id));
  EXPECT_EQ(member->layerId(), drawing.id(0x12));
  member->erase();
  member->close();

  AcDbDatabase again(false);
  ASSERT_TRUE(host::dxf::readDrawingText(databaseOf(&again), drawing.text(), "again").ok());
  ASSERT_EQ(again.getGroupDictionary(groups, AcDb::kForRead), Acad::eOk);
  AcDbObjectPointer<AcDbGroup> stored;
  AcDbObjectId storedId;
  ASSERT_EQ(groups->getAt(ACRX_T("TOINEN"), storedId), Acad::eOk);
  groups->close();
  ASSERT_EQ(stored.open(storedId, AcDb::kForRead), Acad::eOk);
  EXPECT_STREQ(stored->description(), L"uusi");
  EXPECT_EQ(stored->numEntities(), 1U);
}

TEST_F(Probe, DictionariesReplaceRemoveAndNameAnonymously) {
  AcDbDictionary* root = nullptr;
  ASSERT_EQ(drawing->getNamedObjectsDictionary(root, AcDb::kForWrite), Acad::eOk);
  const auto put = [&](const ACHAR* key, const ACHAR* text) {
    auto* const record = new AcDbXrecord;
    AcDbObjectId id;
    EXPECT_EQ(root->setAt(key, record, id), Acad::eOk);
    Chain chain(acutBuildList(1, text, 40, 0.5, 70, -3, RTNONE));
    EXPECT_EQ(record->setFromRbChain(*chain.head), Acad::eOk);
    record->close();
    return id;
  };
  const AcDbObjectId first = put(ACRX_T("Tieto"), L"yksi");
  const AcDbObjectId second = put(ACRX_T("TIETO"), L"kaksi");
  EXPECT_TRUE(first.isErased());
  AcDbObjectId found;
  EXPECT_EQ(root->getAt(ACRX_T("tieto"), found), Acad::eOk);
  EXPECT_EQ(found, second);
  const AcDbObjectId anonymous = put(ACRX_T("*"), L"nimetön");
  ACHAR* name = nullptr;
  ASSERT_EQ(root->nameAt(anonymous, name), Acad::eOk);
  EXPECT_EQ(std::wstring(name).substr(0, 2), L"*A");
  acutDelString(name);
  EXPECT_EQ(root->remove(ACRX_T("tieto")), Acad::eOk);
  EXPECT_EQ(root->getAt(ACRX_T("tieto"), found), Acad::eKeyNotFound);
  AcDbXrecord* const refused = new AcDbXrecord;
  Chain bad(acutBuildList(1, L"x", 1000, L"xdata", RTNONE));
  EXPECT_EQ(refused->setFromRbChain(*bad.head), Acad::eInvalidDxfCode);
  delete refused;
  root->close();
  AcDbObjectPointer<AcDbXrecord> foreign(drawing.id(0x62), AcDb::kForRead);
  resbuf* chain = nullptr;
  ASSERT_EQ(foreign->rbChain(&chain), Acad::eOk);
  Chain owned(chain);
  EXPECT_STREQ(chain->resval.rstring, L"TEXT");
  EXPECT_EQ(chain->rbnext->resval.rreal, 1.5);
  EXPECT_EQ(chain->rbnext->rbnext->rbnext->resval.rpoint[2], 3.0);
}

std::vector<std::uint64_t> order(DrawingDatabase& db) {
  std::vector<std::uint64_t> handles;
  for (const Slot* const slot : db.drawOrder(db.modelSpace())) handles.push_back(slot->handle);
  return handles;
}

TEST_F(Probe, DrawOrderMovesInConstantTimeAndIsStoredAsAPermutation) {
  using Handles = std::vector<std::uint64_t>;
  EXPECT_EQ(order(drawing.database()), (Handles{0x52, 0x50, 0x51, 0x53, 0x58}));
  AcDbSortentsTable* table = nullptr;
  ASSERT_EQ(acdbOpenObject(table, drawing.id(0x61), AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(table->blockId(), drawing.id(0x1F));
  AcDbObjectIdArray ids;
  ids.append(drawing.id(0x51));
  ids.append(drawing.id(0x52));
  EXPECT_EQ(table->moveToTop(ids), Acad::eOk);  // keeps their mutual order
  EXPECT_EQ(order(drawing.database()), (Handles{0x50, 0x53, 0x58, 0x51, 0x52}));
  ids.removeAll();
  ids.append(drawing.id(0x58));
  EXPECT_EQ(table->moveToBottom(ids), Acad::eOk);
  EXPECT_EQ(table->moveAbove(ids, drawing.id(0x53)), Acad::eOk);
  EXPECT_EQ(table->moveBelow(ids, drawing.id(0x50)), Acad::eOk);
  EXPECT_EQ(table->swapOrder(drawing.id(0x50), drawing.id(0x52)), Acad::eOk);
  const Handles expected{0x58, 0x52, 0x53, 0x51, 0x50};
  EXPECT_EQ(order(drawing.database()), expected);
  ids.append(drawing.id(0x54));  // a vertex is nobody's to order
  EXPECT_EQ(table->moveToTop(ids), Acad::eNotInBlock);
  EXPECT_EQ(order(drawing.database()), expected);
  table->close();
  // What is made later comes on top, as in the file.
  {
    AcDbObjectPointer<AcDbBlockTableRecord> space(drawing.id(0x1F), AcDb::kForWrite);
    auto* const line = new AcDbLine({0, 0, 0}, {1, 0, 0});
    ASSERT_EQ(space->appendAcDbEntity(line), Acad::eOk);
    line->close();
  }
  Handles withNew = expected;
  withNew.push_back(0x100);
  EXPECT_EQ(order(drawing.database()), withNew);
  const std::string saved = drawing.text();
  AcDbDatabase again(false);
  ASSERT_TRUE(host::dxf::readDrawingText(databaseOf(&again), saved, "again").ok());
  EXPECT_EQ(order(databaseOf(&again)), withNew);
}

TEST(NewEntities, TakeTheDrawingsCurrentValues) {
  OpenDrawing drawing;
  drawing.database().setHeaderInteger("$CECOLOR", 62, 3);
  AcDbObjectPointer<AcDbBlockTableRecord> space(AcDbObjectId(drawing.database().modelSpace().record), AcDb::kForWrite);
  const auto append = [&](AcDbEntity* entity) {
    EXPECT_EQ(space->appendAcDbEntity(entity), Acad::eOk);
    entity->close();
    return entity;
  };
  auto* const plain = new AcDbLine({0, 0, 0}, {1, 0, 0});
  EXPECT_EQ(plain->colorIndex(), 257);
  EXPECT_EQ(plain->setColorIndex(65535), Acad::eBadColorIndex);
  append(plain);
  EXPECT_EQ(plain->colorIndex(), 3);
  auto* const byLayer = new AcDbLine({0, 0, 0}, {1, 0, 0});
  EXPECT_EQ(byLayer->setColorIndex(256), Acad::eOk);
  append(byLayer);
  EXPECT_EQ(byLayer->colorIndex(), 256);
  EXPECT_EQ(byLayer->layerId(), drawing->layerZero());
}

TEST(NewEntities, MirroredPolylinesGiveWorldPoints) {
  OpenDrawing drawing;
  AcDbObjectPointer<AcDbBlockTableRecord> space(AcDbObjectId(drawing.database().modelSpace().record), AcDb::kForWrite);
  auto* const polyline = new AcDbPolyline(2);
  polyline->addVertexAt(0, {1, 2}, 0.5);
  polyline->addVertexAt(1, {3, 4});
  polyline->setNormal({0, 0, -1});
  ASSERT_EQ(space->appendAcDbEntity(polyline), Acad::eOk);
  polyline->close();
  AcDbObjectPointer<AcDbPolyline> again(polyline->objectId(), AcDb::kForRead);
  AcGePoint3d world;
  ASSERT_EQ(again->getPointAt(0, world), Acad::eOk);
  EXPECT_EQ(world, AcGePoint3d(-1, 2, 0));
  double bulge = 0;
  again->getBulgeAt(0, bulge);
  EXPECT_EQ(bulge, 0.5);
  EXPECT_EQ(again->getPointAt(2, world), Acad::eInvalidIndex);
}

TEST(CodePages, NewNamesAreSpelledInTheDrawingsEncoding) {
  OpenDrawing drawing(tests::probeDrawing("\r\n"));
  EXPECT_EQ(acdbRegApp(ACRX_T("Tieto €")), RTNORM);
  EXPECT_EQ(acdbRegApp(ACRX_T("Lähde 漢")), RTNORM);
  const std::string text = drawing.text();
  EXPECT_NE(text.find("Tieto \x80\r\n"), std::string::npos);
  EXPECT_NE(text.find("L\xe4hde \\U+6F22\r\n"), std::string::npos);
  EXPECT_NE(drawing.database().findRecord(DxfType::AppId, L"LÄHDE 漢"), nullptr);
}

// Some writers put layer, colour and linetype behind the entity's own marker.
TEST(Misplaced, CommonValuesAreFoundAndChangedWhereTheyStand) {
  std::string text = tests::probeDrawing("\n");
  const std::string right = "100\nAcDbEntity\n  8\nvanha\n  6\nContinuous\n 62\n 3\n420\n1193046\n100\nAcDbPolyline\n";
  const std::size_t at = text.find(right);
  ASSERT_NE(at, std::string::npos);
  text.replace(at, right.size(), "100\nAcDbEntity\n100\nAcDbPolyline\n  8\nvanha\n 62\n 5\n");
  OpenDrawing drawing(text);
  Slot& slot = *drawing.database().findHandle(0x51);
  EXPECT_EQ(drawing.database().layerName(slot.layer), L"vanha");
  EXPECT_EQ(entityProperties(slot).color, 5);
  AcDbEntity* entity = nullptr;
  ASSERT_EQ(acdbOpenAcDbEntity(entity, drawing.id(0x51), AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(entity->colorIndex(), 5);
  EXPECT_EQ(entity->setLayer(ACRX_T("metsä")), Acad::eOk);
  entity->close();
  const tests::Difference difference = tests::lineDifference(text, drawing.text());
  EXPECT_EQ(difference.removed, std::vector<std::string>{"vanha"});
  EXPECT_EQ(difference.added.size(), 1U);
}

}  // namespace

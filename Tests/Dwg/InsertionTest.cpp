// Drawings as blocks of others.
#include <gtest/gtest.h>

#include <cstdlib>

#include "../Database/ReadDrawing.h"
#include "Database/Objects/Ownership.h"
#include "Database/Store/Parts.h"
#include "Database/Store/TagEdits.h"
#include "Places.h"
#include "Text/Text.h"

namespace {

using host::database::BlockContents;
using host::database::databaseOf;
using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Slot;
using host::database::Tag;

/// Puts records in front of the end of a section of a drawing's text.
std::string with(std::string text, const std::string& section, const std::string& records) {
  const std::size_t begin = text.find("\n" + section + "\n");
  text.insert(text.find("  0\nENDSEC\n", begin), records);
  return text;
}

/// A symbol AC1018 in code page 1252: a boundary, its hatch tagged with the boundary's handle, a layer with a letter
/// beyond ASCII, a nested block "sub" of one circle, base point (5, 6).
std::string symbolText() {
  tests::OpenDrawing empty;
  std::string text = empty.text();
  text.replace(text.find("AC1027"), 6, "AC1018");
  const std::size_t base = text.find("$INSBASE");
  text.replace(text.find("0.0", base), 3, "5.0");
  text.replace(text.find("0.0", text.find(" 20", base)), 3, "6.0");
  text =
      with(text, "BLOCKS",
           tests::tags(
               "0 BLOCK | 5 A2 | 330 A1 | 100 AcDbEntity | 8 0 | 100 AcDbBlockBegin | 2 sub | 70 0 | 10 1.0 | 20 2.0 | "
               "30 0.0 | 3 sub | 1  | 0 CIRCLE | 5 A4 | 330 A1 | 100 AcDbEntity | 8 0 | 100 AcDbCircle | 10 1.0 | 20 "
               "2.0 | 30 0.0 | 40 3.0 | 0 ENDBLK | 5 A3 | 330 A1 | 100 AcDbEntity | 8 0 | 100 AcDbBlockEnd | "));
  text.insert(
      text.find("  0\nENDTAB\n", text.find("\nBLOCK_RECORD\n")),
      tests::tags(
          "0 BLOCK_RECORD | 5 A1 | 330 1 | 100 AcDbSymbolTableRecord | 100 AcDbBlockTableRecord | 2 sub | 340 0 | "));
  text.insert(
      text.find("  0\nENDTAB\n", text.find("\nAPPID\n")),
      tests::tags(
          "0 APPID | 5 A5 | 330 9 | 100 AcDbSymbolTableRecord | 100 AcDbRegAppTableRecord | 2 kaava | 70 0 | "));
  return with(
      text, "ENTITIES",
      tests::tags(
          "0 LWPOLYLINE | 5 B1 | 102 {ACAD_REACTORS | 330 B2 | 330 FFF | 102 } | 330 1F | 100 AcDbEntity | 8 "
          "pensas\xE4 | 420 255 | 100 AcDbPolyline | 90 3 | 70 1 | 10 0.0 | 20 0.0 | 10 4.0 | 20 0.0 | 10 4.0 | 20 4.0 "
          "| 1001 kaava | 1000 HATCH_HANDLE | 1005 B2 | 0 HATCH | 5 B2 | 330 1F | 100 AcDbEntity | 8 pensas\xE4 | 100 "
          "AcDbHatch | 10 0.0 | 20 0.0 | 30 0.0 | 210 0.0 | 220 0.0 | 230 1.0 | 2 SOLID | 70 1 | 71 1 | 91 1 | 92 3 | "
          "72 0 | 73 1 | 93 3 | 10 0.0 | 20 0.0 | 10 4.0 | 20 0.0 | 10 4.0 | 20 4.0 | 97 2 | 330 B1 | 330 EEE | 75 0 | "
          "76 1 | 98 0 | 1001 kaava | 1005 B1 | 1005 DDD | 0 INSERT | 5 B3 | 330 1F | 100 AcDbEntity | 8 0 | 100 "
          "AcDbBlockReference | 2 sub | 10 1.0 | 20 1.0 | 30 0.0 | 0 INSERT | 5 B4 | 330 1F | 100 AcDbEntity | 8 0 | "
          "100 AcDbBlockReference | 2 none | 10 1.0 | 20 1.0 | 30 0.0 | "));
}

struct Symbol {
  AcDbDatabase db{false, true};
  explicit Symbol(const std::string& text) {
    const auto result = host::dxf::readDrawingText(databaseOf(&db), text, "symbol.dxf");
    if (!result.ok()) throw std::runtime_error(result.message());
  }
};

std::vector<Slot*> living(DrawingDatabase& db, const wchar_t* block) {
  const BlockContents* const contents = db.findBlock(block);
  return contents != nullptr ? db.drawOrder(*contents) : std::vector<Slot*>();
}

/// Status of the independent auditor for the drawing as it is saved.
int audit(tests::OpenDrawing& drawing) {
  const tests::OwnFolder own;
  const auto file = own.path / "insert.dxf";
  EXPECT_TRUE(host::dxf::saveDrawing(drawing.database(), file).ok());
  const std::string call = "/usr/bin/python3 " + std::string(kSourceDir) + "/Tests/audit/audit_dxf.py " + file.string();
  return std::system(call.c_str());
}

std::int64_t handleAfter(const std::string& tags, const std::string& before) {
  const std::size_t at = tags.find(before);
  return at == std::string::npos
             ? -1
             : static_cast<std::int64_t>(host::text::parseHandle(tags.substr(at + before.size(), 16)));
}

TEST(Insertion, BringsWhatItNamesAndTranslatesHandles) {
  for (const char* const version : {"AC1015", "AC1018", "AC1027", "AC1032"}) {
    SCOPED_TRACE(version);
    std::string text = tests::OpenDrawing().text();
    text.replace(text.find("AC1027"), 6, version);
    tests::OpenDrawing drawing(text);
    Symbol symbol(symbolText());
    AcDbObjectId id;
    ASSERT_EQ(drawing->insert(id, L"puu_2v.dwg", &symbol.db), Acad::eOk);

    DrawingDatabase& db = drawing.database();
    EXPECT_NE(db.findRecord(DxfType::Layer, L"pensas\u00e4"), nullptr);
    EXPECT_NE(db.findRecord(DxfType::AppId, L"kaava"), nullptr);
    EXPECT_EQ(living(db, L"sub").size(), 1U);
    const std::vector<Slot*> entities = living(db, L"puu_2v.dwg");
    ASSERT_EQ(entities.size(), 3U);  // the reference without a block stays behind, and that is told
    ASSERT_FALSE(db.problems().empty());
    EXPECT_NE(db.problems().back().text.find("INSERT B4"), std::string::npos);
    EXPECT_EQ(db.layerName(entities[0]->layer), L"pensas\u00e4");

    const std::string outline = entities[0]->record().bytes();
    const std::string hatch = entities[1]->record().bytes();
    const auto outlineHandle = static_cast<std::int64_t>(entities[0]->handle);
    const auto hatchHandle = static_cast<std::int64_t>(entities[1]->handle);
    EXPECT_EQ(handleAfter(outline, "HATCH_HANDLE\n1005\n"), hatchHandle);
    EXPECT_EQ(handleAfter(outline, "{ACAD_REACTORS\n330\n"), hatchHandle);
    EXPECT_EQ(outline.find("FFF"), std::string::npos);
    EXPECT_EQ(outline.find("420\n") != std::string::npos, std::string(version) != "AC1015");
    EXPECT_EQ(handleAfter(hatch, " 97\n     1\n330\n") + handleAfter(hatch, " 97\n        1\n330\n") + 1,
              outlineHandle);
    EXPECT_EQ(handleAfter(hatch, "kaava\n1005\n"), outlineHandle);
    EXPECT_NE(hatch.find("1005\n0\n"), std::string::npos);

    Tag tag;
    ASSERT_TRUE(host::database::findTagIn(db.findBlock(L"puu_2v.dwg")->begin->tags(), "AcDbBlockBegin", 20, tag));
    EXPECT_EQ(tag.real(), 6.0);
    EXPECT_EQ(audit(drawing), 0);
  }
}

TEST(Insertion, NamesOfTheTargetStayAndTheBlockIsRedefined) {
  tests::OpenDrawing drawing;
  DrawingDatabase& db = drawing.database();
  Symbol symbol(symbolText());
  AcDbObjectId first, again;
  ASSERT_EQ(drawing->insert(first, L"a", &symbol.db), Acad::eOk);
  const Slot* const circle = living(db, L"sub").front();
  db.beginUndoStep(L"again");
  ASSERT_EQ(drawing->insert(again, L"A", &symbol.db), Acad::eOk);
  db.endUndoStep();
  EXPECT_EQ(first, again);
  ASSERT_EQ(living(db, L"sub").size(), 1U);
  EXPECT_EQ(living(db, L"sub").front(), circle);
  const std::vector<Slot*> redefined = living(db, L"a");
  EXPECT_EQ(redefined.size(), 3U);
  EXPECT_EQ(audit(drawing), 0);

  db.undo();
  EXPECT_EQ(living(db, L"a").size(), 3U);
  EXPECT_NE(living(db, L"a"), redefined);
  db.beginUndoStep(L"new");
  ASSERT_EQ(drawing->insert(again, L"b", &symbol.db), Acad::eOk);
  db.endUndoStep();
  db.undo();
  EXPECT_EQ(db.findBlock(L"b"), nullptr);
  EXPECT_EQ(audit(drawing), 0);
}

/// The symbol with an extension dictionary on its model space: a record that names the boundary, a record of another
/// kind that owns one more, a draw order; extended data on the block "sub"; an attribute's definition.
std::string extendedSymbolText() {
  std::string text = symbolText();
  const std::size_t space = text.find("\n  5\n1F\n", text.find("\nBLOCK_RECORD\n")) + 8;
  text.insert(space, "102\n{ACAD_XDICTIONARY\n360\nC1\n102\n}\n");
  text.insert(text.find("\n2\nsub\n340\n0\n") + 13, "1001\nkaava\n1000\nmark\n1005\nA4\n");
  text = with(text, "ENTITIES",
              tests::tags("0 ATTDEF | 5 B5 | 330 1F | 100 AcDbEntity | 8 0 | 100 AcDbText | 10 0.0 | 20 0.0 | 30 0.0 | "
                          "40 1.0 | 1 oletus | 7 Standard | 100 AcDbAttributeDefinition | 3 Nimi | 2 NIMI | 70 0 | "));
  return with(
      text, "OBJECTS",
      tests::tags(
          "0 DICTIONARY | 5 C1 | 330 1F | 100 AcDbDictionary | 280 1 | 281 1 | 3 ACAD_SORTENTS | 360 C2 | 3 EXTRA | "
          "360 C3 | 3 GRAPH | 360 C4 | 0 SORTENTSTABLE | 5 C2 | 330 C1 | 100 AcDbSortentsTable | 330 1F | 0 XRECORD | "
          "5 C3 | 330 C1 | 100 AcDbXrecord | 280 1 | 1 text | 330 B1 | 330 EEE | 0 OTHERGRAPH | 5 C4 | 330 C1 | 100 "
          "Other | 360 C5 | 0 OTHERNODE | 5 C5 | 330 C4 | 100 Other | 360 C4 | 1 node | "));
}

TEST(Insertion, ExtensionDictionariesAndDataOfBlocksComeAlong) {
  for (const char* const version : {"AC1015", "AC1027"}) {
    SCOPED_TRACE(version);
    std::string text = tests::OpenDrawing().text();
    text.replace(text.find("AC1027"), 6, version);
    tests::OpenDrawing drawing(text);
    DrawingDatabase& db = drawing.database();
    const std::string extended = extendedSymbolText();
    Symbol symbol(extended);
    AcDbObjectId id;
    std::size_t objects = 0;
    for (int time = 0; time < 3; ++time) {
      ASSERT_EQ(drawing->insert(id, L"a", &symbol.db), Acad::eOk);
      const Slot* const extension = host::database::extensionDictionary(*id.slot());
      ASSERT_NE(extension, nullptr);
      const auto owned = host::database::ownedObjects(*extension);
      ASSERT_EQ(owned.size(), std::string(version) == "AC1015" ? 1U : 2U);  // old drawings know no such graph
      const std::string extra = owned[0]->record().bytes();
      EXPECT_EQ(handleAfter(extra, "text\n330\n"), static_cast<std::int64_t>(living(db, L"a").front()->handle));
      EXPECT_NE(extra.find("330\n0\n"), std::string::npos);
      if (owned.size() > 1) {
        const auto nodes = host::database::ownedObjects(*owned[1]);
        ASSERT_EQ(nodes.size(), 1U);
        EXPECT_EQ(host::database::ownedObjects(*nodes[0]), std::vector<Slot*>{owned[1]});  // a circle of two
      }
      const std::string sub = db.findRecord(DxfType::BlockRecord, L"sub")->record().bytes();
      EXPECT_NE(sub.find("1001\nkaava\n1000\nmark\n1005\n"), std::string::npos);
      EXPECT_EQ(handleAfter(sub, "mark\n1005\n"), static_cast<std::int64_t>(living(db, L"sub").front()->handle));
      Tag flags;
      ASSERT_TRUE(host::database::findTagIn(db.findBlock(L"a")->begin->tags(), "AcDbBlockBegin", 70, flags));
      EXPECT_EQ(flags.integer(), 2);  // it has attributes
      EXPECT_EQ(living(db, L"a").back()->type, DxfType::AttDef);
      EXPECT_EQ(audit(drawing), 0);
      // Objects of former contents do not pile up in the file.
      const std::string saved = drawing.text();
      const std::size_t count = static_cast<std::size_t>(std::count(saved.begin(), saved.end(), '\n'));
      EXPECT_TRUE(time == 0 || count == objects) << count;
      objects = count;
    }
  }
}

TEST(Insertion, LayersOfEntitiesWithoutMarkersComeAlong) {
  tests::OpenDrawing drawing;
  Symbol symbol(with(symbolText(), "ENTITIES",
                     tests::tags("0 LINE | 5 B6 | 8 el\xE4in | 6 Continuous | 10 0.0 | 20 0.0 | 30 0.0 | 11 1.0 | 21 "
                                 "1.0 | 31 0.0 | 0 INSERT | 5 B7 | 8 el\xE4in | 2 sub | 10 1.0 | 20 1.0 | 30 0.0 | ")));
  AcDbObjectId id;
  ASSERT_EQ(drawing->insert(id, L"a", &symbol.db), Acad::eOk);
  DrawingDatabase& db = drawing.database();
  EXPECT_NE(db.findRecord(DxfType::Layer, L"el\u00e4in"), nullptr);
  const std::vector<Slot*> entities = living(db, L"a");
  ASSERT_EQ(entities.size(), 5U);
  EXPECT_EQ(db.layerName(entities[3]->layer), L"el\u00e4in");
  EXPECT_EQ(db.layerName(entities[4]->layer), L"el\u00e4in");
}

TEST(Insertion, RefusesBlocksThatWouldHoldThemselves) {
  tests::OpenDrawing drawing;
  Symbol symbol(symbolText());
  const std::string before = drawing.text();
  AcDbObjectId id;
  EXPECT_EQ(drawing->insert(id, L"SUB", &symbol.db), Acad::eSelfReference);
  for (const wchar_t* const name : {L"", L"*Model_Space", L"a/b", L"a|b"}) {
    EXPECT_EQ(drawing->insert(id, name, &symbol.db), Acad::eInvalidInput);
  }
  EXPECT_EQ(drawing->insert(id, L"none", L"x", &symbol.db), Acad::eKeyNotFound);
  EXPECT_EQ(drawing.text(), before);
}

/// A symbol whose one reference shows another block of it than "sub"; that block is empty.
std::string symbolShowing(const std::string& name) {
  std::string text = symbolText();
  for (const std::string before :
       {"\nAcDbBlockBegin\n2\n", "\nAcDbBlockTableRecord\n2\n", "\nAcDbBlockReference\n2\n"}) {
    const std::size_t at = text.find(before + "sub\n");
    text.replace(at + before.size(), 3, name);
  }
  return text;
}

TEST(Insertion, RefusesCirclesThroughBlocksOfTheTarget) {
  tests::OpenDrawing drawing;
  Symbol showsSub(symbolText());
  Symbol showsTree(symbolShowing("tree"));
  AcDbObjectId id;
  // In the target "tree" shows "sub" and "wood" shows "tree".
  ASSERT_EQ(drawing->insert(id, L"tree", &showsSub.db), Acad::eOk);
  ASSERT_EQ(drawing->insert(id, L"wood", &showsTree.db), Acad::eOk);
  const std::string before = drawing.text();
  // What comes in under the name "sub" may show neither: "tree" keeps its meaning and would close the circle.
  EXPECT_EQ(drawing->insert(id, L"SUB", &showsTree.db), Acad::eSelfReference);
  Symbol showsWood(symbolShowing("wood"));
  EXPECT_EQ(drawing->insert(id, L"sub", &showsWood.db), Acad::eSelfReference);
  EXPECT_EQ(drawing->insert(id, L"tree", &showsWood.db), Acad::eSelfReference);
  EXPECT_EQ(drawing.text(), before);
  EXPECT_EQ(drawing->insert(id, L"wood", &showsSub.db), Acad::eOk);
  EXPECT_EQ(drawing->insert(id, L"tree", &showsWood.db), Acad::eOk);  // "wood" does not show it any more
  EXPECT_EQ(audit(drawing), 0);
}

}  // namespace

// Drawings as blocks of others.
#include <gtest/gtest.h>

#include <cstdlib>

#include "../Database/Support.h"
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
  text = with(
      text, "BLOCKS",
      "  0\nBLOCK\n  5\nA2\n330\nA1\n100\nAcDbEntity\n  8\n0\n100\nAcDbBlockBegin\n  2\nsub\n 70\n0\n 10\n1.0\n"
      " 20\n2.0\n 30\n0.0\n  3\nsub\n  1\n\n  0\nCIRCLE\n  5\nA4\n330\nA1\n100\nAcDbEntity\n  8\n0\n100\nAcDbCircle\n"
      " 10\n1.0\n 20\n2.0\n 30\n0.0\n 40\n3.0\n  0\nENDBLK\n  5\nA3\n330\nA1\n100\nAcDbEntity\n  8\n0\n100\n"
      "AcDbBlockEnd\n");
  text.insert(
      text.find("  0\nENDTAB\n", text.find("\nBLOCK_RECORD\n")),
      "  0\nBLOCK_RECORD\n  5\nA1\n330\n1\n100\nAcDbSymbolTableRecord\n100\nAcDbBlockTableRecord\n  2\nsub\n340\n0\n");
  text.insert(
      text.find("  0\nENDTAB\n", text.find("\nAPPID\n")),
      "  0\nAPPID\n  5\nA5\n330\n9\n100\nAcDbSymbolTableRecord\n100\nAcDbRegAppTableRecord\n  2\nkaava\n 70\n0\n");
  return with(
      text, "ENTITIES",
      "  0\nLWPOLYLINE\n  5\nB1\n102\n{ACAD_REACTORS\n330\nB2\n330\nFFF\n102\n}\n330\n1F\n100\nAcDbEntity\n  8\n"
      "pensas\xE4\n420\n255\n100\nAcDbPolyline\n 90\n3\n 70\n1\n 10\n0.0\n 20\n0.0\n 10\n4.0\n 20\n0.0\n 10\n4.0\n"
      " 20\n4.0\n1001\nkaava\n1000\nHATCH_HANDLE\n1005\nB2\n"
      "  0\nHATCH\n  5\nB2\n330\n1F\n100\nAcDbEntity\n  8\npensas\xE4\n100\nAcDbHatch\n 10\n0.0\n 20\n0.0\n 30\n0.0\n"
      "210\n0.0\n220\n0.0\n230\n1.0\n  2\nSOLID\n 70\n1\n 71\n1\n 91\n1\n 92\n3\n 72\n0\n 73\n1\n 93\n3\n 10\n0.0\n "
      "20\n0.0\n"
      " 10\n4.0\n 20\n0.0\n 10\n4.0\n 20\n4.0\n 97\n2\n330\nB1\n330\nEEE\n 75\n0\n 76\n1\n 98\n0\n"
      "1001\nkaava\n1005\nB1\n1005\nDDD\n"
      "  0\nINSERT\n  5\nB3\n330\n1F\n100\nAcDbEntity\n  8\n0\n100\nAcDbBlockReference\n  2\nsub\n 10\n1.0\n 20\n1.0\n"
      " 30\n0.0\n"
      "  0\nINSERT\n  5\nB4\n330\n1F\n100\nAcDbEntity\n  8\n0\n100\nAcDbBlockReference\n  2\nnone\n 10\n1.0\n 20\n1.0\n"
      " 30\n0.0\n");
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
  const auto file = std::filesystem::temp_directory_path() / ("insert-" + std::to_string(::getpid()) + ".dxf");
  EXPECT_TRUE(host::dxf::saveDrawing(drawing.database(), file).ok());
  const std::string call = "/usr/bin/python3 " + std::string(kSourceDir) + "/Tests/audit/audit_dxf.py " + file.string();
  const int status = std::system(call.c_str());
  std::filesystem::remove(file);
  return status;
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
  text.insert(text.find("  2\nsub\n340\n0\n") + 14, "1001\nkaava\n1000\nmark\n1005\nA4\n");
  text = with(text, "ENTITIES",
              "  0\nATTDEF\n  5\nB5\n330\n1F\n100\nAcDbEntity\n  8\n0\n100\nAcDbText\n 10\n0.0\n 20\n0.0\n 30\n0.0\n"
              " 40\n1.0\n  1\noletus\n  7\nStandard\n100\nAcDbAttributeDefinition\n  3\nNimi\n  2\nNIMI\n 70\n0\n");
  return with(text, "OBJECTS",
              "  0\nDICTIONARY\n  5\nC1\n330\n1F\n100\nAcDbDictionary\n280\n1\n281\n1\n  3\nACAD_SORTENTS\n360\nC2\n"
              "  3\nEXTRA\n360\nC3\n  3\nGRAPH\n360\nC4\n"
              "  0\nSORTENTSTABLE\n  5\nC2\n330\nC1\n100\nAcDbSortentsTable\n330\n1F\n"
              "  0\nXRECORD\n  5\nC3\n330\nC1\n100\nAcDbXrecord\n280\n1\n  1\ntext\n330\nB1\n330\nEEE\n"
              "  0\nOTHERGRAPH\n  5\nC4\n330\nC1\n100\nOther\n360\nC5\n"
              "  0\nOTHERNODE\n  5\nC5\n330\nC4\n100\nOther\n360\nC4\n  1\nnode\n");
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
                     "  0\nLINE\n  5\nB6\n  8\nel\xE4in\n  6\nContinuous\n 10\n0.0\n 20\n0.0\n 30\n0.0\n 11\n1.0\n"
                     " 21\n1.0\n 31\n0.0\n"
                     "  0\nINSERT\n  5\nB7\n  8\nel\xE4in\n  2\nsub\n 10\n1.0\n 20\n1.0\n 30\n0.0\n"));
  AcDbObjectId id;
  ASSERT_EQ(drawing->insert(id, L"a", &symbol.db), Acad::eOk);
  DrawingDatabase& db = drawing.database();
  EXPECT_NE(db.findRecord(DxfType::Layer, L"el\u00e4in"), nullptr);
  const std::vector<Slot*> entities = living(db, L"a");
  ASSERT_EQ(entities.size(), 5U);
  EXPECT_EQ(db.layerName(entities[3]->layer), L"el\u00e4in");
  EXPECT_EQ(db.layerName(entities[4]->layer), L"el\u00e4in");
}

TEST(Insertion, RealDrawingsPassTheAuditor) {
  const std::filesystem::path folder = tests::realDrawingFolder();
  if (folder.empty()) GTEST_SKIP() << "the folder of real drawings is missing";
  for (const char* const name :
       {"tree21.dxf", "hatchpat.dxf", "dynblk.dxf", "ex2000.dxf", "frame_a4.dxf", "floor04.dxf"}) {
    SCOPED_TRACE(name);
    AcDbDatabase source(false, true);
    ASSERT_EQ(source.readDwgFile(host::text::fromUtf8((folder / name).string()).c_str()), Acad::eOk);
    tests::OpenDrawing drawing;
    AcDbObjectId id;
    ASSERT_EQ(drawing->insert(id, L"symbol", &source), Acad::eOk);
    const std::size_t leftOut = drawing.database().problems().size();
    EXPECT_EQ(living(drawing.database(), L"symbol").size() + leftOut,
              databaseOf(&source).drawOrder(databaseOf(&source).modelSpace()).size());
    EXPECT_EQ(audit(drawing), 0);
  }
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
       {"\nAcDbBlockBegin\n  2\n", "\nAcDbBlockTableRecord\n  2\n", "\nAcDbBlockReference\n  2\n"}) {
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

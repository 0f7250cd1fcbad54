// MOVE, COPY, ROTATE, JOIN, CHPROP, TEXT and what they leave in the drawing, on map coordinates; undone byte for byte.
#include <cmath>
#include <filesystem>
#include <fstream>

#include "Geometry/EntityPaths.h"
#include "OwnFolder.h"
#include "Support.h"

namespace {

using host::geometry::entityPaths;
using host::geometry::Path;
using test::Slot;

class Changes : public test::Host {
 protected:
  std::string saved() { return host::dxf::drawingText(*app.drawing()); }

  /// Runs the script, then takes all of it back, which gives the former bytes, and does it again.
  void expectUndoable(const std::string& script) {
    const std::string before = saved();
    const std::size_t steps = app.undoNames().size();
    expectDone(script);
    const std::string after = saved();
    const std::size_t made = app.undoNames().size() - steps;
    for (std::size_t i = 0; i < made; ++i) expectDone("U\n");
    EXPECT_TRUE(saved() == before) << script;
    for (std::size_t i = 0; i < made; ++i) expectDone("REDO\n");
    EXPECT_TRUE(saved() == after) << script;
  }

  /// Opens a drawing of these entities, "0\nLINE\n8\n0\n10\n..." each; handles are 100, 101 ...
  void open(const std::vector<std::string>& entities, const std::string& blocks = {}) {
    std::string text = "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n9\n$HANDSEED\n5\nFFF\n0\nENDSEC\n";
    if (!blocks.empty()) text += "0\nSECTION\n2\nBLOCKS\n" + blocks + "0\nENDSEC\n";
    text += "0\nSECTION\n2\nENTITIES\n";
    for (const std::string& entity : entities) text += entity;
    text += "0\nENDSEC\n0\nEOF\n";
    const std::filesystem::path file = folder_.path / "plan.dxf";
    std::ofstream(file, std::ios::binary) << text;
    const host::Result<> opened = app.openDrawing(file);
    ASSERT_TRUE(opened) << opened.message();
  }
  Slot& entity(std::uint64_t handle) const { return *app.drawing()->findHandle(handle); }

 private:
  tests::OwnFolder folder_;
};

TEST_F(Changes, MovesAndCopiesOnMapCoordinates) {
  expectDone("PLINE 25496000.123,6672000.456 @10,0 A @0,4 L @-10,0 C\nLINE 25496000,6672000 @1,1\n\n");
  Slot& polyline = *entities()[0];
  const std::vector<std::string> bulges = values(polyline, 42);
  expectUndoable("MOVE L\n\n25496000,6672000 25496001,6672000.5\n");
  EXPECT_TRUE(said(L"REDO"));
  EXPECT_EQ(values(*entities()[1], 10), std::vector<std::string>{"25496001.0"});
  EXPECT_EQ(values(*entities()[1], 20), std::vector<std::string>{"6672000.5"});
  expectUndoable("M ALL\n\n\n-0.123,-0.456\n");
  EXPECT_EQ(values(polyline, 10)[0], "25496000.0");
  EXPECT_EQ(values(polyline, 42), bulges);

  expectUndoable("COPY " + handent(polyline) + "\n\n25496000,6672000 25496100,6672000 @100,0 U 25496300,6672000\n\n");
  ASSERT_EQ(entities().size(), 4U);  // what U took back within the command is gone
  EXPECT_EQ(values(*entities()[2], 10)[0], "25496100.0");
  EXPECT_EQ(values(*entities()[3], 10)[0], "25496300.0");
  EXPECT_EQ(values(*entities()[3], 42), bulges);
  expectUndoable("CO L\n\nD 5,0\n");
  EXPECT_EQ(values(*entities()[4], 10)[0], "25496305.0");
}

TEST_F(Changes, TurnsQuartersExactlyAndByDirections) {
  expectDone("PLINE 25496000,6672000 @10,0 A @0,4 L @-10,0 C\n");
  expectUndoable("ROTATE ALL\n\n25496000,6672000 90\n");
  EXPECT_EQ(values(*entities()[0], 10),
            (std::vector<std::string>{"25496000.0", "25496000.0", "25495996.0", "25495996.0"}));
  EXPECT_EQ(values(*entities()[0], 20), (std::vector<std::string>{"6672000.0", "6672010.0", "6672010.0", "6672000.0"}));
  expectDone("RO ALL\n\n25496000,6672000 R 25496000,6672010 0\n");  // from north to east
  EXPECT_EQ(values(*entities()[0], 10)[1], "25496010.0");
  expectUndoable("RO ALL\n\n25496000,6672000 C 25496000,6672001\n");
  ASSERT_EQ(entities().size(), 2U);
  EXPECT_EQ(values(*entities()[1], 20)[1], "6672010.0");
  const std::string before = saved();
  expectDone("ROTATE ALL\n\n25496000,6672000 360\nMOVE ALL\n\n1,1 1,1\n");
  EXPECT_TRUE(saved() == before);
  expectFailure("ROTATE ALL\n\n0,0 east\n", "Requires valid numeric angle or second point.");
}

TEST_F(Changes, LeftAtAnyQuestionTheDrawingStays) {
  expectDone("LINE 0,0 1,0\n\nLINE 1,0 1,1\n\nTEXT 0,0 1 0 here\n\n");
  const std::string before = saved();
  for (const char* const script : {"MOVE ^C\n",
                                   "MOVE ALL\n\n^C\n",
                                   "MOVE ALL\n\n1,1 ^C\n",
                                   "MOVE ALL\n\nD ^C\n",
                                   "MOVE\n\n",
                                   "COPY ALL\n\n0,0 ^C\n",
                                   "ROTATE ALL\n\n^C\n",
                                   "ROTATE ALL\n\n0,0 ^C\n",
                                   "ROTATE ALL\n\n0,0 R 5 ^C\n",
                                   "ROTATE ALL\n\n0,0\n\n",
                                   "JOIN ^C\n",
                                   "JOIN\n\n",
                                   "CHPROP ALL\n\n^C\n",
                                   "CHPROP ALL\n\nC red ^C\n",
                                   "CHPROP ALL\n\n\n",
                                   "TEXT ^C\n",
                                   "TEXT 0,0 ^C\n",
                                   "TEXT 0,0 2 ^C\n",
                                   "TEXT 0,0 2 0 ^C\n",
                                   "TEXT 0,0 2 0\n\n",
                                   "DIST 0,0 ^C\n",
                                   "AREA 0,0 ^C\n",
                                   "SELECT SA ^C\n\n"}) {
    expectDone(script);
    EXPECT_TRUE(saved() == before) << script;
  }
}

TEST_F(Changes, LockedLayersStayAndAreCounted) {
  expectDone("LAYER N shut\n\nLINE 0,0 1,0\n\nLAYER S shut\n\nLINE 1,0 1,1\n\nLAYER S 0 LO shut\n\n");
  expectUndoable("MOVE " + handent(*entities()[0]) + "\n" + handent(*entities()[1]) + "\n\n0,0 5,0\n");
  EXPECT_EQ(values(*entities()[1], 10), std::vector<std::string>{"1.0"});
  EXPECT_EQ(values(*entities()[0], 10), std::vector<std::string>{"5.0"});
  expectDone("COPY ALL\n\n0,0 9,0\n\n");
  EXPECT_TRUE(said(L"1 was on a locked layer.")) << host::text::toUtf8(transcript);
  EXPECT_EQ(entities().size(), 3U);
  expectDone("JOIN W -9,-9 99,99\n\n");
  EXPECT_TRUE(said(L"1 was on a locked layer."));
}

/// The pieces of an entity after a motion of each of its points.
template <class Moved>
void expectPaths(const std::vector<Path>& before, const std::vector<Path>& after, const Moved& moved,
                 const char* what) {
  ASSERT_EQ(before.size(), after.size()) << what;
  // Rounding may cut the arcs of a fill into one chord more or less.
  if (std::string_view(what) == "HATCH") return;
  for (std::size_t i = 0; i < before.size(); ++i) {
    ASSERT_EQ(before[i].points.size(), after[i].points.size()) << what << " piece " << i;
    for (std::size_t k = 0; k < before[i].points.size(); ++k) {
      const host::geometry::Point wanted = moved(before[i].points[k]);
      EXPECT_NEAR(after[i].points[k].x, wanted.x, 1e-6) << what << " piece " << i << " point " << k;
      EXPECT_NEAR(after[i].points[k].y, wanted.y, 1e-6) << what << " piece " << i << " point " << k;
    }
  }
}

TEST_F(Changes, EveryKindGoesWhereItsPointsGo) {
  const std::string mirrored = "210\n0\n220\n0\n230\n-1\n";
  const std::string tilted = "210\n0\n220\n-1\n230\n0\n";
  auto kind = [number = 0x100](const std::string& type, const std::string& tags) mutable {
    char handle[8];
    std::snprintf(handle, sizeof(handle), "%X", number++);
    return "0\n" + type + "\n5\n" + handle + "\n100\nAcDbEntity\n8\n0\n" + tags;
  };
  std::vector<std::string> kinds;
  const auto add = [&](const std::string& type, const std::string& tags) { kinds.push_back(kind(type, tags)); };
  add("LINE", "100\nAcDbLine\n10\n1\n20\n2\n30\n3\n11\n5\n21\n2\n31\n0\n");
  add("POINT", "100\nAcDbPoint\n10\n1\n20\n2\n30\n3\n");
  add("CIRCLE", "100\nAcDbCircle\n10\n1\n20\n2\n30\n0\n40\n2\n");
  add("CIRCLE", "100\nAcDbCircle\n10\n1\n20\n2\n30\n4\n40\n2\n" + tilted);
  add("ARC", "100\nAcDbCircle\n10\n1\n20\n2\n30\n0\n40\n2\n100\nAcDbArc\n50\n30\n51\n300\n");
  add("ARC", "100\nAcDbCircle\n10\n1\n20\n2\n30\n0\n40\n2\n" + mirrored + "100\nAcDbArc\n50\n30\n51\n300\n");
  add("ELLIPSE",
      "100\nAcDbEllipse\n10\n1\n20\n2\n30\n0\n11\n4\n21\n1\n31\n0\n210\n0\n220\n0\n230\n1\n40\n0.5\n41\n0\n42\n4\n");
  add("LWPOLYLINE", "100\nAcDbPolyline\n90\n3\n70\n1\n10\n0\n20\n0\n42\n0.5\n10\n5\n20\n0\n10\n5\n20\n5\n42\n-0.3\n");
  add("LWPOLYLINE",
      "100\nAcDbPolyline\n90\n3\n70\n0\n38\n7\n10\n0\n20\n0\n42\n0.5\n10\n5\n20\n0\n10\n5\n20\n5\n" + mirrored);
  add("TEXT", "100\nAcDbText\n10\n1\n20\n2\n30\n0\n40\n1\n1\nword\n100\nAcDbText\n");
  add("TEXT", "100\nAcDbText\n10\n1\n20\n2\n30\n0\n40\n1\n1\nword\n50\n30\n72\n1\n11\n3\n21\n2\n31\n0\n" + mirrored +
                  "100\nAcDbText\n");
  add("MTEXT", "100\nAcDbMText\n10\n1\n20\n2\n30\n0\n40\n1\n41\n9\n71\n5\n1\nword\n");
  add("MTEXT", "100\nAcDbMText\n10\n1\n20\n2\n30\n0\n40\n1\n41\n9\n71\n1\n1\nword\n11\n1\n21\n1\n31\n0\n");
  add("SOLID", "100\nAcDbTrace\n10\n0\n20\n0\n30\n0\n11\n4\n21\n0\n31\n0\n12\n0\n22\n4\n32\n0\n13\n4\n23\n5\n33\n0\n");
  add("3DFACE", "100\nAcDbFace\n10\n0\n20\n0\n30\n0\n11\n4\n21\n0\n31\n1\n12\n4\n22\n4\n32\n0\n13\n0\n23\n5\n33\n0\n");
  add("SPLINE",
      "100\nAcDbSpline\n70\n8\n71\n3\n72\n8\n73\n4\n74\n0\n40\n0\n40\n0\n40\n0\n40\n0\n40\n1\n40\n1\n40\n1\n40\n1\n"
      "10\n0\n20\n0\n30\n0\n10\n1\n20\n3\n30\n0\n10\n3\n20\n3\n30\n0\n10\n4\n20\n0\n30\n0\n");
  add("LEADER", "100\nAcDbLeader\n3\nStandard\n71\n1\n72\n0\n76\n2\n10\n0\n20\n0\n30\n0\n10\n3\n20\n4\n30\n0\n");
  add("INSERT", "100\nAcDbBlockReference\n2\nmark\n10\n3\n20\n4\n30\n0\n41\n2\n42\n-1\n");
  add("INSERT", "100\nAcDbBlockReference\n2\nmark\n10\n3\n20\n4\n30\n0\n50\n20\n" + mirrored);
  add("DIMENSION",
      "100\nAcDbDimension\n10\n5\n20\n3\n30\n0\n11\n2\n21\n3\n31\n0\n70\n0\n3\nStandard\n100\nAcDbAlignedDimension\n13"
      "\n0\n23\n0\n33\n0\n"
      "14\n5\n24\n1\n34\n0\n100\nAcDbRotatedDimension\n");
  add("HATCH",
      "100\nAcDbHatch\n10\n0\n20\n0\n30\n0\n210\n0\n220\n0\n230\n1\n2\nSOLID\n70\n1\n71\n0\n91\n2\n92\n2\n72\n1\n73\n1"
      "\n93\n3\n"
      "10\n0\n20\n0\n42\n0.2\n10\n9\n20\n0\n42\n0\n10\n9\n20\n9\n42\n0\n97\n0\n"
      "92\n0\n93\n4\n72\n1\n10\n2\n20\n2\n11\n6\n21\n2\n72\n2\n10\n6\n20\n3\n40\n1\n50\n270\n51\n450\n73\n1\n"
      "72\n2\n10\n4\n20\n4\n40\n2\n50\n0\n51\n180\n73\n0\n72\n1\n10\n2\n20\n4\n11\n2\n21\n2\n97\n0\n"
      "75\n0\n76\n1\n98\n1\n10\n1\n20\n1\n");
  add("XLINE", "100\nAcDbXline\n10\n1\n20\n1\n30\n0\n11\n0.6\n21\n0.8\n31\n0\n");
  const std::string block =
      "0\nBLOCK\n8\n0\n2\nmark\n70\n0\n10\n0\n20\n0\n30\n0\n0\nLINE\n8\n0\n10\n0\n20\n0\n30\n0\n11\n2\n21\n1\n31\n0\n0"
      "\nENDBLK\n8\n0\n";
  open(kinds, block);
  std::vector<std::vector<Path>> before;
  for (const Slot* slot : entities()) before.push_back(entityPaths(*slot, 1e-4));
  ASSERT_EQ(before.size(), kinds.size());

  expectUndoable("MOVE ALL\n\n0,0 10,20\n");
  EXPECT_FALSE(said(L"cannot be moved"));
  std::size_t i = 0;
  for (const Slot* slot : entities())
    expectPaths(
        before[i++], entityPaths(*slot, 1e-4),
        [](auto p) {
          return decltype(p){p.x + 10, p.y + 20};
        },
        std::string(app.drawing()->typeName(*slot)).c_str());
  expectDone("U\n");
  expectUndoable("ROTATE ALL\n\n1,2 36.8698976458440\n");
  i = 0;
  const auto turned = [](auto p) {
    const double x = p.x - 1, y = p.y - 2;
    return decltype(p){1 + 0.8 * x - 0.6 * y, 2 + 0.6 * x + 0.8 * y};
  };
  for (const Slot* slot : entities()) {
    // Boxes of curves and of text are cut into other chords when they are turned: their ends tell enough.
    const std::vector<Path> after = entityPaths(*slot, 1e-4);
    const std::string name(app.drawing()->typeName(*slot));
    ASSERT_EQ(after.size(), before[i].size()) << name;
    for (std::size_t k = 0; k < after.size(); ++k) {
      const auto wanted = turned(before[i][k].points.front());
      const bool isRing = name == "CIRCLE" || name == "ELLIPSE" || name == "HATCH";
      if (isRing) continue;
      EXPECT_NEAR(after[k].points.front().x, wanted.x, 1e-5) << name << " piece " << k;
      EXPECT_NEAR(after[k].points.front().y, wanted.y, 1e-5) << name << " piece " << k;
    }
    const host::geometry::Box box = host::geometry::entityExtents(*slot);
    if (name == "HATCH" || name == "CIRCLE") {
      host::geometry::Box wanted;
      for (const Path& path : before[i])
        for (const auto& p : path.points) wanted.add(turned(p));
      EXPECT_NEAR(box.minX, wanted.minX, 1e-2) << name;
      EXPECT_NEAR(box.maxY, wanted.maxY, 1e-2) << name;
    }
    ++i;
  }
  // Four times a quarter is where it began, copies lie on their originals.
  expectDone("U\n");
  const std::string start = saved();
  for (int turn = 0; turn < 4; ++turn) expectDone("ROTATE ALL\n\n1,2 90\n");
  i = 0;
  for (const Slot* slot : entities()) {
    if (slot->type != test::DxfType::Dimension && slot->type != test::DxfType::Hatch)
      expectPaths(
          before[i], entityPaths(*slot, 1e-4), [](auto p) { return p; },
          std::string(app.drawing()->typeName(*slot)).c_str());
    ++i;
  }
  expectDone("UNDO 4\n");
  EXPECT_TRUE(saved() == start);
  expectUndoable("COPY ALL\n\n0,0 0,0\n\n");
  ASSERT_EQ(entities().size(), 2 * before.size());
  for (i = 0; i < before.size(); ++i)
    expectPaths(
        before[i], entityPaths(*entities()[before.size() + i], 1e-4), [](auto p) { return p; }, "copy");
}

TEST_F(Changes, JoinsWhatMeetsAndClosesRings) {
  // A ring of two lines, an arc and a polyline; one of the lines runs the other way.
  expectDone("LINE 25496000,6672000 25496010,6672000\n\nLINE 25496010,6672004 25496000,6672004\n\n");
  open(
      {"0\nLINE\n5\n100\n100\nAcDbEntity\n8\nkerb\n100\nAcDbLine\n10\n0\n20\n0\n30\n0\n11\n10\n21\n0\n31\n0\n",
       ("0\nARC\n5\n101\n100\nAcDbEntity\n8\n0\n100\nAcDbCircle\n10\n10\n20\n2\n30\n0\n40\n2\n100\nAcDbArc\n50\n270\n51"
        "\n90\n"),
       "0\nLINE\n5\n102\n100\nAcDbEntity\n8\n0\n100\nAcDbLine\n10\n0\n20\n4\n30\n0\n11\n10\n21\n4\n31\n0\n",
       ("0\nLWPOLYLINE\n5\n103\n100\nAcDbEntity\n8\nwall\n62\n3\n100\nAcDbPolyline\n90\n3\n70\n0\n10\n0\n20\n4\n10\n-"
        "2\n20\n2\n10\n0\n20\n0.00005\n"),
       "0\nLINE\n5\n104\n100\nAcDbEntity\n8\n0\n100\nAcDbLine\n10\n50\n20\n0\n30\n0\n11\n60\n21\n0\n31\n0\n",
       "0\nTEXT\n5\n105\n100\nAcDbEntity\n8\n0\n100\nAcDbText\n10\n0\n20\n0\n30\n0\n40\n1\n1\nx\n100\nAcDbText\n"});
  expectUndoable("JOIN ALL\n\n");
  ASSERT_EQ(entities().size(), 3U);
  const Slot& ring = entity(0x103);
  EXPECT_EQ(layerOf(ring), L"wall");
  EXPECT_EQ(values(ring, 70), std::vector<std::string>{"1"});
  EXPECT_EQ(values(ring, 90), std::vector<std::string>{"5"});
  EXPECT_EQ(values(ring, 10).front(), "0.0");
  ASSERT_EQ(values(ring, 42).size(), 1U);
  EXPECT_NEAR(std::stod(values(ring, 42)[0]), 1, 1e-9);
  expectDone("U\nJOIN ALL\n\n");
  EXPECT_TRUE(said(L"4 objects joined into 1 polyline, 1 closed; 1 open; 1 cannot be joined."))
      << host::text::toUtf8(transcript);
  expectDone("AREA O " + handent(ring) + "\n");
  EXPECT_TRUE(said(L"Area = 50.28")) << host::text::toUtf8(
      transcript);  // 40, half a circle of radius 2, a triangle of 4
}

TEST_F(Changes, JoinLeavesBranchesAlone) {
  expectDone("LAYER M kerb\n\nLINE 0,0 1,0\n\nLINE 1,0 2,0\n\nLINE 1,0 1,1\n\nLINE 2,0 3,3\n\n");
  expectDone("J ALL\n\n");
  EXPECT_TRUE(said(L"2 objects joined into 1 polyline, 0 closed; 3 open; 1 point where more than two ends meet."))
      << host::text::toUtf8(transcript);
  EXPECT_EQ(layerOf(*entities().back()), L"kerb");
  expectDone("J ALL\n\n");
  EXPECT_TRUE(said(L"Nothing joined; 3 open"));
  expectDone("ERASE ALL\n\nLINE 0,0 1,0\n\nLINE 1,0 0,0\n\nJ ALL\n\n");
  EXPECT_TRUE(said(L"Nothing joined"));
}

TEST_F(Changes, PropertiesAreChangedTogether) {
  expectDone("LAYER N kerb\n\nLINE 0,0 1,0 2,0\n\n");
  expectUndoable("CHPROP ALL\n\nC 1,2,3 LA kerb LT HIDDEN2 S 2.5 LW 0.35\n\n");
  for (const Slot* slot : entities()) {
    EXPECT_EQ(layerOf(*slot), L"kerb");
    EXPECT_EQ(values(*slot, 420), std::vector<std::string>{"66051"});
    EXPECT_EQ(values(*slot, 6), std::vector<std::string>{"HIDDEN2"});
    EXPECT_EQ(values(*slot, 48), std::vector<std::string>{"2.5"});
    EXPECT_EQ(values(*slot, 370), std::vector<std::string>{"35"});
  }
  const std::string before = saved();
  expectDone("CHPROP ALL\n\nLA kerb\n\n");
  EXPECT_TRUE(said(L"0 objects changed, 2 were so already"));
  EXPECT_TRUE(saved() == before);
  expectDone("CH ALL\n\nC BYLAYER LT BYLAYER S 1 LW BYLAYER\n\n");
  EXPECT_TRUE(values(*entities()[0], 420).empty() && values(*entities()[0], 370).empty());
  expectFailure("CHPROP ALL\n\nLA nowhere\n\n", "Cannot find layer \"nowhere\"");
  expectFailure("CHPROP ALL\n\nLW 9\n\n", "Requires ByLayer");
}

TEST_F(Changes, TextsStandBelowOneAnother) {
  expectUndoable("TEXT 25496000,6672000 2 0 first line\nsecond\n\n");
  ASSERT_EQ(entities().size(), 2U);
  EXPECT_EQ(entities()[0]->type, test::DxfType::Text);
  EXPECT_EQ(values(*entities()[0], 1), std::vector<std::string>{"first line"});
  EXPECT_EQ(values(*entities()[1], 20), std::vector<std::string>{"6671996.666666667"});
  expectUndoable("T J MC 5,5 3 45 middle\n\n");
  const Slot& middle = *entities()[2];
  EXPECT_EQ(values(middle, 72), std::vector<std::string>{"1"});
  EXPECT_EQ(values(middle, 73), std::vector<std::string>{"2"});
  EXPECT_EQ(values(middle, 11), std::vector<std::string>{"5.0"});
  EXPECT_EQ(values(middle, 50), std::vector<std::string>{"45.0"});
  expectFailure("TEXT S nowhere\n", "Cannot find text style");
}

TEST_F(Changes, JoinsOverGapsAndSaysWhereEndsStayOpen) {
  // A square with two gaps of 0.3, a line that goes on after 0.8, one far off.
  const char* const lines =
      "LINE 0,0 10,0\n\nLINE 10.3,0 10.3,10\n\nPLINE 10,10 0,10 0,0\n\n"
      "LINE 50,0 60,0\n\nLINE 60.8,0 70,0\n\nLINE 90,90 99,90\n\n";
  expectDone(lines);
  expectDone("JOIN ALL\n\n");
  EXPECT_TRUE(said(L"2 objects joined into 1 polyline, 0 closed; 5 open.")) << host::text::toUtf8(transcript);
  expectDone("JOINGAP ALL\n\n\n");
  EXPECT_TRUE(said(L"1 closed; 2 gaps bridged; 3 open.")) << host::text::toUtf8(transcript);
  EXPECT_TRUE(said(L"Open ends at 90,90; 99,90; 60.8,0; 70,0; 50,0; 60,0. Ends meet within 0.5."))
      << host::text::toUtf8(transcript);
  expectUndoable("JOINGAP ALL\n\n0,9\n");
  EXPECT_EQ(entities().size(), 3U);
  // Pieces keep their points: the gap is a piece of its own.
  for (const Slot* const slot : entities()) {
    if (values(*slot, 70) == std::vector<std::string>{"1"}) {
      EXPECT_EQ(values(*slot, 10).size(), 6U);
    }
  }
}

TEST_F(Changes, OutlinesOfHatches) {
  open(
      {"0\nHATCH\n100\nAcDbEntity\n8\n0\n100\nAcDbHatch\n10\n0\n20\n0\n30\n0\n210\n0\n220\n0\n230\n1\n2\nSOLID\n70\n1\n"
       "71\n0\n"
       "91\n2\n92\n3\n72\n0\n73\n1\n93\n4\n10\n0\n20\n0\n10\n9\n20\n0\n10\n9\n20\n9\n10\n0\n20\n9\n97\n0\n"
       "92\n3\n72\n0\n73\n1\n93\n3\n10\n2\n20\n2\n10\n4\n20\n2\n10\n4\n20\n4\n97\n0\n75\n0\n76\n1\n98\n0\n",
       "0\nLINE\n100\nAcDbEntity\n8\n0\n100\nAcDbLine\n10\n0\n20\n0\n11\n5\n21\n5\n"});
  expectUndoable("OUTLINE ALL\n\n");
  EXPECT_EQ(entities().size(), 4U);
  expectDone("OUTLINE ALL\n\n");
  EXPECT_TRUE(said(L"2 polylines made of 1 hatch; 3 no hatch.")) << host::text::toUtf8(transcript);
}

TEST_F(Changes, SeamsFollowTheShadows) {
  expectDone("PLINE 0,0 30,0 30,30 0,30 0,0 10,10 10,20 20,20 20,10 10,10 C\nLINE 0,0 5,5\n\n");
  const Slot& ring = *entities()[0];
  expectUndoable("SEAM ALL\n\n90\n");
  expectDone("SEAM ALL\n\n90\n");
  EXPECT_TRUE(said(L"1 seam of 1 object cut anew, 1 object has none")) << host::text::toUtf8(transcript);
  const std::vector<std::string> x = values(ring, 10), y = values(ring, 20);
  EXPECT_EQ(x.size(), 11U);  // the seam's foot is new
  EXPECT_EQ(values(ring, 90), std::vector<std::string>{"11"});
}

TEST_F(Changes, ACommaIsADecimalPointWhereNoPointIsAsked) {
  expectDone("LINE 0,0 9,0\n\nLINE 9.4,0 20,0\n\nJOINGAP ALL\n\n0,45\n");
  EXPECT_TRUE(said(L"0,45 is taken as 0.45.")) << host::text::toUtf8(transcript);
  EXPECT_TRUE(said(L"1 gap bridged"));
  expectFailure("JOINGAP ALL\n\n1,2,3\n", "Requires numeric value");
}

}  // namespace

// What lies under the cursor, what a click takes, and what it answers.
#include "Window/Canvas/Support.h"

namespace {

using host::editor::Wanted;
using namespace tests;

std::string solid(int x1, int y1, int x2, int y2) {
  const auto n = [](int v) { return std::to_string(v); };
  return "10 0|20 0|30 0|210 0|220 0|230 1|2 SOLID|70 1|71 0|91 1|92 3|72 0|73 1|93 4|10 " + n(x1) + "|20 " + n(y1) +
         "|10 " + n(x2) + "|20 " + n(y1) + "|10 " + n(x2) + "|20 " + n(y2) + "|10 " + n(x1) + "|20 " + n(y2) +
         "|97 0|75 0|76 1|98 0";
}
std::string box(int x1, int y1, int x2, int y2) {
  const auto n = [](int v) { return std::to_string(v); };
  return "90 4|70 1|10 " + n(x1) + "|20 " + n(y1) + "|10 " + n(x2) + "|20 " + n(y1) + "|10 " + n(x2) + "|20 " + n(y2) +
         "|10 " + n(x1) + "|20 " + n(y2);
}

/// 100: the plot; 101: a lawn's outline and 102 its fill; 103: a shadow over part of it, without an outline; 104: a
/// line across everything; 105: an outline without a fill, to the right.
SmallDrawing lawn() {
  SmallDrawing drawing;
  drawing.entity("LWPOLYLINE", box(0, 0, 100, 60), "8 plot");
  drawing.entity("LWPOLYLINE", box(10, 10, 50, 50), "8 lawn");
  drawing.entity("HATCH", solid(10, 10, 50, 50), "8 fill");
  drawing.entity("HATCH", solid(30, 30, 45, 45), "8 shadow");
  drawing.entity("LINE", "10 0|20 20|11 100|21 20", "8 line");
  drawing.entity("LWPOLYLINE", box(60, 10, 90, 50), "8 empty");
  return drawing;
}

class Pointing : public CanvasTest {
 protected:
  /// Handles in the order in which Tab reaches them.
  std::string order(double x, double y) {
    moveTo(x, y);
    std::string handles;
    const Slot* const first = canvas->hovered();
    if (first == nullptr) return handles;
    do {
      handles += handleOf(canvas->hovered()) + " ";
      key(Qt::Key_Tab);
    } while (canvas->hovered() != first && handles.size() < 200);
    return handles;
  }
};

TEST_F(Pointing, OrderForOneEntity) {
  open(lawn());
  ask(Wanted::Entity);
  EXPECT_EQ(order(20, 40), "101 102 100 ") << "on a fill: its outline, fills, larger outlines";
  EXPECT_EQ(order(40, 40), "101 103 102 100 ") << "upper fills first";
  EXPECT_EQ(order(40, 20.1), "104 101 102 100 ") << "lines before all";
  EXPECT_EQ(order(10.1, 40), "101 102 100 ") << "a line that is also an outline counts once";
  EXPECT_EQ(order(75, 40), "") << "the inside of what is not filled is nobody's";
  EXPECT_EQ(order(10.2, 20.1), "104 101 102 100 ") << "the nearest line first";
}

TEST_F(Pointing, SelectionsTakeAFillBeforeItsOutline) {
  open(lawn());
  EXPECT_EQ(order(20, 40), "102 101 100 ");
  EXPECT_EQ(order(40, 40), "103 102 101 100 ") << "at rest a fill on the lawn is before the lawn";
  ask(Wanted::Entities);
  EXPECT_EQ(order(20, 40), "102 101 100 ");
  EXPECT_EQ(order(40, 40), "102 101 103 100 ");
}

TEST_F(Pointing, WhatDoesNotShowIsNotTaken) {
  SmallDrawing drawing = lawn();
  drawing.layer("fill", "70 1|62 7").layer("lawn", "70 0|62 -3").layer("plot", "70 4|62 7");
  open(drawing);
  ask(Wanted::Entity);
  EXPECT_EQ(order(20, 40), "");
  EXPECT_EQ(order(40, 40), "100 103 ") << "locked ones are";
}

TEST_F(Pointing, CyclingStaysUntilTheCursorMovesOn) {
  open(lawn());
  ask(Wanted::Entity);
  std::vector<std::pair<int, int>> places;
  QObject::connect(canvas.get(), &CanvasView::hoverChanged,
                   [&](Slot*, int place, int count) { places.emplace_back(place, count); });
  moveTo(20, 40);
  key(Qt::Key_Tab);
  EXPECT_EQ(places.back(), std::make_pair(2, 3));
  const QPointF near = pixel(20, 40) + QPointF(2, 2);
  mouse(QEvent::MouseMove, near, Qt::NoButton);
  EXPECT_EQ(handleOf(canvas->hovered()), "102");
  mouse(QEvent::MouseMove, near + QPointF(6, 0), Qt::NoButton);
  EXPECT_EQ(handleOf(canvas->hovered()), "101");
  key(Qt::Key_Backtab);
  EXPECT_EQ(handleOf(canvas->hovered()), "100");
  click(20, 40);
  EXPECT_EQ(answers, QStringList{"(handent \"101\")"});
}

TEST_F(Pointing, TheHoveredIsWhatTheAnswerNames) {
  open(lawn());
  ask(Wanted::Entity);
  moveTo(40, 40);
  key(Qt::Key_Tab);
  const QPointF at = pixel(40, 40);
  mouse(QEvent::MouseButtonPress, at, Qt::LeftButton);
  mouse(QEvent::MouseButtonRelease, at, Qt::LeftButton);
  EXPECT_EQ(answers, QStringList{"(handent \"103\")"});
  click(75, 40);
  EXPECT_EQ(refusals, 1);
  EXPECT_EQ(answers.size(), 1);
}

TEST_F(Pointing, ASelectionGrowsAndShrinks) {
  open(lawn());
  ask(Wanted::Entities);
  click(20, 40);
  click(20, 40, Qt::ShiftModifier);
  EXPECT_EQ(answers, (QStringList{"(handent \"102\")", "R", "(handent \"102\")", "A"}));
  canvas->setMode(CanvasMode::Rest);
  click(20, 40);
  click(55, 20);
  EXPECT_EQ(selection.size(), 2U);
  click(20, 40, Qt::ShiftModifier);
  ASSERT_EQ(selection.size(), 1U);
  EXPECT_EQ(handleOf(selection[0]), "104");
  EXPECT_EQ(answers.size(), 4) << "at rest nothing is answered";
}

TEST_F(Pointing, GroupsAreTakenWhole) {
  SmallDrawing drawing;
  const std::string member = "102 {ACAD_REACTORS|330 F0|102 }|8 0";
  drawing.entity("LINE", "10 0|20 0|11 10|21 0").entity("LINE", "10 0|20 5|11 10|21 5");
  std::string text = drawing.text();
  const auto insertAfter = [&text](const std::string& mark, const std::string& more) {
    const std::size_t at = text.find(mark) + mark.size();
    text.insert(at, more);
  };
  insertAfter("5\n100\n", "102\n{ACAD_REACTORS\n330\nF0\n102\n}\n");
  insertAfter("5\n101\n", "102\n{ACAD_REACTORS\n330\nF0\n102\n}\n");
  insertAfter("AcDbDictionary\n281\n1\n",
              "0\nGROUP\n5\nF0\n330\nC\n100\nAcDbGroup\n300\n\n70\n0\n71\n1\n340\n100\n340\n101\n");
  drawing_ = std::make_unique<SmallDatabase>(text);
  db = &**drawing_;
  canvas = std::make_unique<CanvasView>();
  canvas->resize(400, 300);
  canvas->setDrawing(db, &db->modelSpace());
  QObject::connect(canvas.get(), &CanvasView::selectionEdited,
                   [this](const std::vector<Slot*>& entities) { selection = entities; });
  click(3, 0);
  EXPECT_EQ(selection.size(), 2U);
  canvas->setSelected({});
  canvas->setGroupsWhole(false);
  click(3, 0);
  EXPECT_EQ(selection.size(), 1U);
}

TEST_F(Pointing, WindowsAnswerWithTheirCorners) {
  open(lawn());
  ask(Wanted::Entities);
  canvas->zoomTo(host::geometry::Box{0, -10, 100, 65});
  drag(55, 5, 95, 55);
  ASSERT_EQ(answers.size(), 3);
  EXPECT_EQ(answers[0], "W");
  drag(95, 55, 55, 5);
  ASSERT_EQ(answers.size(), 6);
  EXPECT_EQ(answers[3], "C");
  const QStringList first = answers[1].split(','), last = answers[5].split(',');
  EXPECT_NEAR(first[0].toDouble(), 55, canvas->unitsPerPixel());
  EXPECT_NEAR(first[1].toDouble(), 5, canvas->unitsPerPixel());
  EXPECT_NEAR(last[1].toDouble(), 5, canvas->unitsPerPixel());
  // At rest the window selects by itself.
  canvas->setMode(CanvasMode::Rest);
  drag(55, 5, 95, 55);
  ASSERT_EQ(selection.size(), 1U);
  EXPECT_EQ(handleOf(selection[0]), "105");
  drag(95, 55, 55, 5, Qt::ShiftModifier);
  EXPECT_TRUE(selection.empty());
  // Two clicks on nothing are a window, too; Esc leaves it.
  click(57, 5);
  click(95, 55);
  ASSERT_EQ(selection.size(), 1U);
  click(57, 5);
  key(Qt::Key_Escape);
  click(57, 40, Qt::ShiftModifier);
  EXPECT_EQ(selection.size(), 1U);
}

TEST_F(Pointing, PointsSnapKeepRightAnglesAndAllTheirDigits) {
  SmallDrawing drawing;
  drawing.entity("LINE", "10 25496000.123456789|20 6672000.5|11 25496010|21 6672000.5");
  open(drawing);
  ask(Wanted::Point);
  click(25496000.2, 6672000.5);
  EXPECT_EQ(answers.last().toStdString(), "25496000.123456787,6672000.5") << "the shortest digits of the number";
  click(25496000.2, 6672000.5, Qt::ControlModifier);
  EXPECT_NE(answers.last().toStdString(), "25496000.123456787,6672000.5");
  canvas->setSnapping(false);
  click(25496000.2, 6672000.5);
  EXPECT_NE(answers.last().toStdString(), "25496000.123456787,6672000.5");
  ask(Wanted::Point, AcGePoint3d(25496002, 6672001.25, 0));
  canvas->setOrtho(true);
  click(25496009, 6672001.5);
  EXPECT_TRUE(answers.last().endsWith(",6672001.25")) << answers.last().toStdString();
  click(25496009, 6672001.5, Qt::ShiftModifier);
  EXPECT_FALSE(answers.last().endsWith(",6672001.25"));
}

TEST_F(Pointing, ClosedAndOtherQuestionsTakeNoClicks) {
  open(lawn());
  for (const Wanted wanted : {Wanted::Number, Wanted::Keyword, Wanted::Text}) {
    ask(wanted);
    click(20, 40);
  }
  canvas->setMode(CanvasMode::Closed);
  click(20, 40);
  canvas->setMode(CanvasMode::Working);
  click(20, 40);
  EXPECT_EQ(refusals, 5);
  EXPECT_TRUE(answers.isEmpty());
  EXPECT_TRUE(selection.empty());
}

TEST_F(Pointing, KeysMoveAndClick) {
  open(lawn());
  ask(Wanted::Entity);
  canvas->setKeyboardPointing(true);
  moveTo(20, 40);
  const double before = canvas->cursorPoint()->x;
  key(Qt::Key_Right);
  EXPECT_NEAR(canvas->cursorPoint()->x - before, 10 * canvas->unitsPerPixel(), canvas->unitsPerPixel());
  key(Qt::Key_Insert);
  EXPECT_EQ(answers, QStringList{"(handent \"101\")"});
  canvas->setKeyboardPointing(false);
  const double left = canvas->visibleBox().minX;
  key(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_NEAR(canvas->visibleBox().minX - left, 0.1 * 400 * canvas->unitsPerPixel(), canvas->unitsPerPixel());
}

}  // namespace

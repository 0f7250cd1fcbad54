// The view: zooming, going back, strays, odd drawings and sizes.
#include <cmath>

#include "Window/Canvas/Support.h"

namespace {

using namespace tests;
using host::geometry::Box;

SmallDrawing square() {
  SmallDrawing drawing;
  drawing.entity("LWPOLYLINE", "90 4|70 1|10 0|20 0|10 40|20 0|10 40|20 30|10 0|20 30");
  return drawing;
}

class View : public CanvasTest {};

TEST_F(View, TheWheelHoldsThePlaceUnderTheCursor) {
  open(square());
  const double before = canvas->unitsPerPixel();
  for (const auto& [angle, modifiers, factor] : {std::tuple{120, Qt::NoModifier, 1.25},
                                                 {-120, Qt::NoModifier, 1 / 1.25},
                                                 {120, Qt::ControlModifier, 1.05},
                                                 {-120, Qt::ControlModifier, 1 / 1.05},
                                                 {30, Qt::NoModifier, std::pow(1.25, 0.25)}}) {
    const double scale = canvas->unitsPerPixel();
    const QPointF at = pixel(30, 20);
    wheel(at, angle, modifiers);
    EXPECT_NEAR(scale / canvas->unitsPerPixel(), factor, factor * 1e-3);
    EXPECT_NEAR(pixel(30, 20).x(), at.x(), 1);
    EXPECT_NEAR(pixel(30, 20).y(), at.y(), 1);
  }
  wheel(pixel(1, 1), -30);
  EXPECT_NEAR(canvas->unitsPerPixel(), before, before * 2e-3);
}

TEST_F(View, GoesBackToFormerViews) {
  open(square());
  const Box whole = canvas->visibleBox();
  canvas->zoomTo(Box{0, 0, 10, 10});
  const Box near = canvas->visibleBox();
  EXPECT_LE(near.minX, canvas->unitsPerPixel());
  EXPECT_GE(near.maxY, 10 - canvas->unitsPerPixel());
  canvas->zoomTo({entity(0)}, 0);
  canvas->zoomPrevious();
  EXPECT_NEAR(canvas->visibleBox().minX, near.minX, 1e-6);
  canvas->zoomPrevious();
  EXPECT_NEAR(canvas->visibleBox().maxX, whole.maxX, 1e-6);
  canvas->zoomPrevious();
  EXPECT_NEAR(canvas->visibleBox().maxX, whole.maxX, 1e-6) << "nothing before it";
  canvas->askForWindow();
  drag(5, 5, 15, 12);
  EXPECT_NEAR(canvas->visibleBox().minX, 5, 1);
  EXPECT_TRUE(selection.empty());
}

TEST_F(View, StraysAreLeftOutAndCounted) {
  SmallDrawing drawing;
  for (int i = 0; i < 60; ++i)
    drawing.entity("LINE", "10 " + std::to_string(25496000 + i) + "|20 6672000|11 " + std::to_string(25496001 + i) +
                               "|21 6672030");
  drawing.entity("POINT", "10 0|20 0");
  open(drawing);
  EXPECT_GT(canvas->visibleBox().minX, 25490000);
  int left = 0;
  QObject::connect(canvas.get(), &CanvasView::straysLeftOut, [&](int count) { left = count; });
  canvas->zoomToDrawing();
  EXPECT_EQ(left, 1);
  canvas->zoomToAll();
  EXPECT_LE(canvas->visibleBox().minX, 0);
  // Two halves of a town are no strays of each other.
  SmallDrawing halves;
  for (int i = 0; i < 40; ++i) {
    const std::string x = std::to_string((i % 2) * 5000 + i);
    halves.entity("LINE", std::string("10 ").append(x).append("|20 0|11 ").append(x).append("|21 30"));
  }
  open(halves);
  EXPECT_LE(canvas->visibleBox().minX, 0);
  EXPECT_GE(canvas->visibleBox().maxX, 5039);
}

TEST_F(View, OddDrawingsAndSizes) {
  SmallDrawing point, odd;
  point.entity("POINT", "10 5|20 5");
  odd.entity("LINE", "10 nan|20 0|11 1e300|21 5")
      .entity("CIRCLE", "10 1e14|20 0|40 1e13")
      .entity("LINE", "10 0|20 0|11 1|21 1");
  odd.entity("XLINE", "10 0|20 0|11 1|21 0").entity("TEXT", "10 0|20 0|40 0|1 a").entity("LWPOLYLINE", "90 0|70 1");
  for (const SmallDrawing& drawing : {SmallDrawing(), point, odd}) {
    open(drawing);
    sharp();
    for (const QSize size : {QSize(1, 1), QSize(3000, 2), QSize(300, 200)}) {
      canvas->resize(size);
      for (int i = 0; i < 5; ++i) wheel({0, 0}, 12000);
      for (int i = 0; i < 10; ++i) wheel({1, 1}, -12000);
      canvas->zoomToAll();
      moveTo(0, 0);
      click(0, 0);
      canvas->grab();
      EXPECT_TRUE(std::isfinite(canvas->visibleBox().minX));
    }
    sharp();
  }
}

TEST_F(View, ClosingWhileTilesArePainted) {
  for (int i = 0; i < 20; ++i) {
    SmallDrawing drawing;
    for (int k = 0; k < 300; ++k)
      drawing.entity("CIRCLE", "10 " + std::to_string(k) + "|20 0|40 " + std::to_string(k + 1));
    open(drawing);
    canvas->grab();
    for (int k = 0; k < i; ++k) wheel({100, 100}, 120);
    canvas->grab();
    QApplication::processEvents();
    if (i % 2 == 0) {
      canvas->forget(db);
      canvas->grab();
      drawing_.reset();
      QApplication::processEvents();
    } else {
      canvas.reset();
    }
  }
}

TEST_F(View, EachSpaceKeepsItsView) {
  open(square());
  canvas->zoomTo(Box{1, 1, 2, 2});
  const Box near = canvas->visibleBox();
  SmallDatabase other(square());
  canvas->setDrawing(&*other, &other->modelSpace());
  EXPECT_GT(canvas->visibleBox().maxX, 30);
  canvas->setDrawing(db, &db->modelSpace());
  EXPECT_NEAR(canvas->visibleBox().minX, near.minX, 1e-6);
  canvas->setDrawing(nullptr, nullptr);
  EXPECT_TRUE(canvas->visibleBox().isEmpty());
  moveTo(0, 0);
  click(0, 0);
}

}  // namespace

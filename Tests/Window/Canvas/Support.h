// A canvas without a screen, its drawing, and a hand that points at it.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <memory>
#include <string>
#include <vector>

#include "Geometry/SmallDrawing.h"
#include "Window/Canvas/CanvasView.h"

namespace tests {

using host::curves::Point2;
using host::database::Slot;
using host::window::CanvasMode;
using host::window::CanvasQuestion;
using host::window::CanvasView;

class CanvasTest : public testing::Test {
 protected:
  void open(const SmallDrawing& drawing) {
    drawing_ = std::make_unique<SmallDatabase>(drawing);
    db = &**drawing_;
    canvas = std::make_unique<CanvasView>();
    canvas->resize(400, 300);
    canvas->setDrawing(db, &db->modelSpace());
    QObject::connect(canvas.get(), &CanvasView::answered, [this](const QStringList& lines) { answers += lines; });
    QObject::connect(canvas.get(), &CanvasView::refused, [this] { ++refusals; });
    QObject::connect(canvas.get(), &CanvasView::selectionEdited, [this](const std::vector<Slot*>& entities) {
      selection = entities;
      canvas->setSelected(entities);
    });
  }
  void ask(host::editor::Wanted wanted, std::optional<AcGePoint3d> base = {}) {
    CanvasQuestion question;
    question.wanted = wanted;
    question.base = base;
    canvas->setMode(CanvasMode::Asking, question);
  }
  Slot* entity(std::size_t n) { return db->modelSpace().entities.at(n); }
  static std::string handleOf(const Slot* slot) {
    char text[32] = "";
    if (slot != nullptr) std::snprintf(text, sizeof text, "%llX", static_cast<unsigned long long>(slot->handle));
    return text;
  }

  /// Pixel of a point of the plan.
  QPointF pixel(double x, double y) const {
    const host::geometry::Box box = canvas->visibleBox();
    return {(x - box.minX) / canvas->unitsPerPixel(), (box.maxY - y) / canvas->unitsPerPixel()};
  }
  void mouse(QEvent::Type type, QPointF at, Qt::MouseButton button, Qt::KeyboardModifiers modifiers = {}) {
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : button;
    QMouseEvent event(type, at, canvas->mapToGlobal(at), type == QEvent::MouseMove ? Qt::NoButton : button, held,
                      modifiers);
    QApplication::sendEvent(canvas.get(), &event);
  }
  void moveTo(double x, double y, Qt::KeyboardModifiers modifiers = {}) {
    mouse(QEvent::MouseMove, pixel(x, y), Qt::NoButton, modifiers);
  }
  void click(double x, double y, Qt::KeyboardModifiers modifiers = {}) {
    moveTo(x, y, modifiers);
    mouse(QEvent::MouseButtonPress, pixel(x, y), Qt::LeftButton, modifiers);
    mouse(QEvent::MouseButtonRelease, pixel(x, y), Qt::LeftButton, modifiers);
  }
  void drag(double x1, double y1, double x2, double y2, Qt::KeyboardModifiers modifiers = {}) {
    moveTo(x1, y1, modifiers);
    mouse(QEvent::MouseButtonPress, pixel(x1, y1), Qt::LeftButton, modifiers);
    mouse(QEvent::MouseMove, pixel((x1 + x2) / 2, (y1 + y2) / 2), Qt::LeftButton, modifiers);
    mouse(QEvent::MouseMove, pixel(x2, y2), Qt::LeftButton, modifiers);
    mouse(QEvent::MouseButtonRelease, pixel(x2, y2), Qt::LeftButton, modifiers);
  }
  void key(int code, Qt::KeyboardModifiers modifiers = {}, const QString& text = {}) {
    QKeyEvent press(QEvent::KeyPress, code, modifiers, text), release(QEvent::KeyRelease, code, modifiers, text);
    QApplication::sendEvent(canvas.get(), &press);
    QApplication::sendEvent(canvas.get(), &release);
  }
  void wheel(QPointF at, int angle, Qt::KeyboardModifiers modifiers = {}) {
    QWheelEvent event(at, canvas->mapToGlobal(at), {}, {0, angle}, Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(canvas.get(), &event);
  }
  /// The canvas when nothing is being painted any more; what never comes is a failure.
  QImage sharp() {
    QElapsedTimer waited;
    waited.start();
    constexpr qint64 kFarTooLong = 60'000;
    QImage image;
    do {
      image = canvas->grab().toImage();
      QApplication::processEvents(QEventLoop::AllEvents, 20);
    } while (!canvas->isSharp() && waited.elapsed() < kFarTooLong);
    EXPECT_TRUE(canvas->isSharp());
    return canvas->grab().toImage();
  }

  host::database::DrawingDatabase* db = nullptr;
  std::unique_ptr<SmallDatabase> drawing_;
  std::unique_ptr<CanvasView> canvas;
  QStringList answers;
  std::vector<Slot*> selection;
  int refusals = 0;
};

}  // namespace tests

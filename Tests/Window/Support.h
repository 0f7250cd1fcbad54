// A window without a screen and a user who works it from a thread of his own: each thing he does is done on the
// window's thread, in whatever loop of events runs there, and he waits until the session waits for him again.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QSettings>
#include <chrono>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <thread>

#include "OwnFolder.h"
#include "Places.h"
#include "Window/Commands/Icons.h"
#include "Window/Commands/Language.h"
#include "Window/Frame/Engine.h"
#include "Window/Frame/MainWindow.h"
#include "Window/Frame/Theme.h"
#include "Window/Panels/ElementsPanel.h"
#include "Window/Panels/LayersPanel.h"
#include "Window/Panels/ProblemsPanel.h"
#include "Window/Panels/PropertiesPanel.h"

namespace tests {

using host::database::Slot;
using host::window::Conversation;
using host::window::Engine;
using host::window::MainWindow;

inline std::string contentOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class WindowTest : public testing::Test {
 protected:
  using Language = host::window::Language;

  WindowTest() {
    QSettings().clear();
    QSettings().setValue("hints/isBegun", true);
  }

  /// A drawing of the sources, copied into the test's folder.
  std::filesystem::path copy(const char* source, const char* name = "plan.dxf") const {
    const std::filesystem::path to = folder.path / name;
    std::filesystem::copy_file(std::filesystem::path(kSourceDir) / source, to,
                               std::filesystem::copy_options::overwrite_existing);
    return to;
  }

  /// Opens the window on drawings, lets the user work, and closes it.
  void work(const std::vector<std::filesystem::path>& drawings, const std::function<void()>& user,
            Language language = Language::Finnish, QSize size = {1600, 1000}) {
    host::window::setLanguage(language);
    host::window::Theme::apply(*qobject_cast<QApplication*>(qApp));
    host::window::DesktopOptions options;
    const std::filesystem::path module = std::filesystem::path(kBinDir) / "tolmex.arx";
    options.modules = {module};
    options.failureCaptions = {L"Error", L"Out of memory"};
    options.supportFolders = {supportFolder};
    options.extend = extend;
    options.ownFacts = ownFacts;
    engine = std::make_unique<Engine>(options);
    ASSERT_TRUE(engine->application().loadModule(module));
    window = std::make_unique<MainWindow>(*engine, options);
    window->resize(size);
    window->show();
    for (const auto& drawing : drawings) ASSERT_TRUE(engine->application().openDrawing(drawing));
    std::thread thread([&] {
      settle();
      user();
      ui([this] {
        for (QWidget* const each : QApplication::topLevelWidgets()) {
          if (each != window.get() && each->isVisible()) each->close();
        }
        engine->input().leave();
      });
    });
    engine->run();
    thread.join();
    window.reset();
    engine.reset();
  }

  /// Does it on the window's thread.
  void ui(const std::function<void()>& act) { QMetaObject::invokeMethod(qApp, act, Qt::BlockingQueuedConnection); }
  /// Does it there without waiting: it may run a loop of its own.
  void later(const std::function<void()>& act) { QMetaObject::invokeMethod(qApp, act, Qt::QueuedConnection); }
  template <class T>
  T get(const std::function<T()>& look) {
    T value{};
    ui([&] { value = look(); });
    return value;
  }
  /// Waits until something is so; what never comes is a failure.
  bool until(const std::function<bool()>& isSo, const char* what = "something") {
    for (int i = 0; i < 6000; ++i) {
      if (get<bool>(isSo)) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    ADD_FAILURE() << "waited in vain for " << what;
    return false;
  }
  /// Until the session waits for the user, or a dialog does.
  void settle() {
    const auto isStill = [this] { return QApplication::activeModalWidget() != nullptr || engine->isWaiting(); };
    until(isStill, "the session");
    // Twice: what was posted meanwhile has been done then.
    until(isStill, "the session");
  }

  // ---- the user ----
  void key(QWidget* widget, int code, const QString& text = {}, Qt::KeyboardModifiers modifiers = {}) {
    QKeyEvent press(QEvent::KeyPress, code, modifiers, text), release(QEvent::KeyRelease, code, modifiers, text);
    QApplication::sendEvent(widget, &press);
    QApplication::sendEvent(widget, &release);
  }
  /// Letters into the command line, then Enter.
  void type(const QString& line) {
    ui([&] {
      QLineEdit& edit = window->line().edit();
      edit.setFocus();
      for (const QChar c : line) key(&edit, c == ' ' ? 0 : c.toUpper().unicode(), QString(c));
      key(&edit, Qt::Key_Return);
    });
    settle();
  }
  void enter() { type({}); }
  void escape() {
    ui([&] { key(&window->line().edit(), Qt::Key_Escape); });
    settle();
  }
  void menu(const char* command) {
    ui([&] {
      const auto* const row = window->tables().row(command);
      ASSERT_NE(row, nullptr) << command;
      window->actions().of(*row)->trigger();
    });
    settle();
  }
  QPointF pixel(double x, double y) const {
    const host::geometry::Box box = window->canvas().visibleBox();
    return {(x - box.minX) / window->canvas().unitsPerPixel(), (box.maxY - y) / window->canvas().unitsPerPixel()};
  }
  void mouse(QEvent::Type type, QPointF at, Qt::MouseButton button) {
    QWidget& canvas = window->canvas();
    const Qt::MouseButtons held = type == QEvent::MouseButtonPress ? button : Qt::NoButton;
    QMouseEvent event(type, at, canvas.mapToGlobal(at), type == QEvent::MouseMove ? Qt::NoButton : button, held, {});
    QApplication::sendEvent(&canvas, &event);
  }
  void point(double x, double y) {
    ui([&] { mouse(QEvent::MouseMove, pixel(x, y), Qt::NoButton); });
  }
  void click(double x, double y, Qt::MouseButton button = Qt::LeftButton) {
    ui([&] {
      const QPointF at = pixel(x, y);
      mouse(QEvent::MouseMove, at, Qt::NoButton);
      mouse(QEvent::MouseButtonPress, at, button);
      mouse(QEvent::MouseButtonRelease, at, button);
    });
    settle();
  }
  void rightClick() { click(20, 20, Qt::RightButton); }
  /// Presses a button of the dialog or box in front.
  void press(const QString& text) {
    ui([&] {
      QWidget* const front = QApplication::activeModalWidget();
      ASSERT_NE(front, nullptr) << text.toStdString();
      QStringList there;
      for (QAbstractButton* const button : front->findChildren<QAbstractButton*>()) {
        there += button->text();
        if (QString(button->text()).remove('&') != text) continue;
        // After the event: what it leads to may run a loop of its own.
        QMetaObject::invokeMethod(button, &QAbstractButton::click, Qt::QueuedConnection);
        return;
      }
      ADD_FAILURE() << "no button " << text.toStdString() << " among " << there.join(", ").toStdString();
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    settle();
  }
  QString boxText() {
    return get<QString>([] {
      const auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      return box != nullptr ? box->text() : QString();
    });
  }
  bool hasDialog() {
    return get<bool>([] { return QApplication::activeModalWidget() != nullptr; });
  }

  QString told() {
    return get<QString>([this] { return window->history().plainText(); });
  }
  std::string drawingText() {
    return get<std::string>([this] { return engine->application().drawingText().value(); });
  }
  bool isModified() {
    return get<bool>([this] { return engine->drawing()->isModified(); });
  }
  Slot* entity(std::uint64_t handle) { return engine->drawing()->findHandle(handle); }

  OwnFolder folder;
  std::filesystem::path supportFolder = std::filesystem::path(kSourceDir) / "examples";
  std::function<void(host::editor::Application&)> extend;
  std::function<std::vector<host::window::OwnFact>(const Slot&)> ownFacts;
  std::unique_ptr<Engine> engine;
  std::unique_ptr<MainWindow> window;
};

}  // namespace tests

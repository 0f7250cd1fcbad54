// Somebody who knows nothing and tries everything: mouse, wheel, keys, menus, dialogs at random. What is left still
// saves soundly, and the script of it gives the same bytes.
#include <QColorDialog>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QSemaphore>
#include <QTest>
#include <QThread>
#include <QWheelEvent>
#include <cstdlib>
#include <random>

#include "Dxf/DxfFile.h"
#include "Support.h"

using namespace tests;

namespace {

constexpr int kEventsEach = 400;

/// TOLMEX_EVENTS=20000 tries many more than the suite has time for.
int pieceCount() {
  constexpr int kUsualEvents = 800;
  const char* const wanted = std::getenv("TOLMEX_EVENTS");
  return std::max(1, (wanted != nullptr ? std::atoi(wanted) : kUsualEvents) / kEventsEach);
}

/// The first lines that differ, with those around them.
std::string firstDifference(const std::string& a, const std::string& b) {
  std::istringstream left(a), right(b);
  std::string one, other, before;
  for (int line = 1; std::getline(left, one); ++line) {
    if (std::getline(right, other) && one == other) {
      if (before.size() > 300) before.erase(0, 150);
      before.append(one).append("/");
      continue;
    }
    std::string words = "line " + std::to_string(line) + " behind ";
    return words.append(before).append(": ").append(one).append(" by hand, ").append(other).append(" by script\n");
  }
  return {};
}

class Monkey : public WindowTest, public testing::WithParamInterface<int> {
 protected:
  int roll(int sides) { return std::uniform_int_distribution<int>(0, sides - 1)(random_); }
  template <class List>
  auto oneOf(const List& list) {
    return list[static_cast<std::size_t>(roll(static_cast<int>(std::size(list))))];
  }
  bool chance(int percent) { return roll(100) < percent; }

  /// Does it in whatever loop runs; true when the window has come back to its events.
  bool act(const std::function<void()>& deed) {
    later(deed);
    auto done = std::make_shared<QSemaphore>();
    later([done] { done->release(); });
    constexpr int kFarTooLongMs = 60'000;
    return done->tryAcquire(1, kFarTooLongMs);
  }

  static void send(QWidget* widget, QEvent::Type type, QPointF at, Qt::MouseButton button,
                   Qt::KeyboardModifiers modifiers) {
    if (widget == nullptr) return;
    const bool isMove = type == QEvent::MouseMove;
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : button;
    QMouseEvent event(type, at, widget->mapToGlobal(at), isMove ? Qt::NoButton : button, held, modifiers);
    QApplication::sendEvent(widget, &event);
  }

  std::function<void()> somethingWithTheMouse() {
    const QPointF at(roll(1100), roll(800)), to = at + QPointF(roll(300) - 150, roll(300) - 150);
    const Qt::KeyboardModifiers modifiers = chance(15)  ? Qt::ShiftModifier
                                            : chance(8) ? Qt::ControlModifier
                                                        : Qt::NoModifier;
    const int what = roll(10), notches = roll(5) - 2;
    return [=, this] {
      QWidget* const canvas = &window->canvas();
      if (!canvas->isVisible()) return;
      if (what == 0) {
        QWheelEvent wheel(at, canvas->mapToGlobal(at), {}, {0, notches * 120}, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(canvas, &wheel);
        return;
      }
      const Qt::MouseButton button = what < 7 ? Qt::LeftButton : what < 9 ? Qt::RightButton : Qt::MiddleButton;
      send(canvas, QEvent::MouseMove, at, Qt::NoButton, modifiers);
      send(canvas, QEvent::MouseButtonPress, at, button, modifiers);
      if (what == 1 || what == 2) {
        send(canvas, QEvent::MouseMove, (at + to) / 2, button, modifiers);
        send(canvas, QEvent::MouseMove, to, button, modifiers);
      }
      send(canvas, QEvent::MouseButtonRelease, what == 1 || what == 2 ? to : at, button, modifiers);
      if (what == 3) send(canvas, QEvent::MouseButtonDblClick, at, button, modifiers);
    };
  }

  std::function<void()> someKey() {
    static const std::vector<std::pair<int, Qt::KeyboardModifiers>> kKeys = {
        {Qt::Key_Return, {}},
        {Qt::Key_Return, {}},
        {Qt::Key_Return, {}},
        {Qt::Key_Escape, {}},
        {Qt::Key_Space, {}},
        {Qt::Key_Tab, {}},
        {Qt::Key_Backtab, Qt::ShiftModifier},
        {Qt::Key_Delete, {}},
        {Qt::Key_Backspace, {}},
        {Qt::Key_Insert, {}},
        {Qt::Key_Up, {}},
        {Qt::Key_Down, {}},
        {Qt::Key_Left, Qt::ControlModifier},
        {Qt::Key_Right, {}},
        {Qt::Key_F2, {}},
        {Qt::Key_F3, {}},
        {Qt::Key_F5, {}},
        {Qt::Key_F6, {}},
        {Qt::Key_F6, Qt::ShiftModifier},
        {Qt::Key_F7, {}},
        {Qt::Key_F8, {}},
        {Qt::Key_F9, {}},
        {Qt::Key_Z, Qt::ControlModifier},
        {Qt::Key_Z, Qt::ControlModifier},
        {Qt::Key_Y, Qt::ControlModifier},
        {Qt::Key_A, Qt::ControlModifier},
        {Qt::Key_E, Qt::ControlModifier},
        {Qt::Key_0, Qt::ControlModifier},
        {Qt::Key_1, Qt::ControlModifier},
        {Qt::Key_3, Qt::ControlModifier},
        {Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier},
        {Qt::Key_Home, Qt::ControlModifier},
    };
    const auto [code, modifiers] = oneOf(kKeys);
    return [code = code, modifiers = modifiers] {
      if (QWidget* const focus = QApplication::focusWidget())
        QTest::keyClick(focus, static_cast<Qt::Key>(code), modifiers);
    };
  }

  std::function<void()> someLine() {
    static const std::vector<QString> kLines = {
        "(handent \"101\")",
        "(handent \"102\")",
        "(handent \"108\")",
        "(handent \"121\")",
        "(handent \"131\")",
        "(handent \"151\")",
        "(handent \"FFFF\")",
        "10,10",
        "43,10",
        "33,10",
        "@5<30",
        "@3,-2",
        "2.5",
        "2,5",
        "90",
        "-1",
        "0",
        "L",
        "P",
        "ALL",
        "W",
        "C",
        "U",
        "a",
        "j",
        "line",
        "pl",
        "nur",
        "asf",
        "kor",
        "park",
        "har",
        "rak",
        "move",
        "copy",
        "rotate",
        "join",
        "text",
        "erase",
        "undo",
        "'zoom",
        "qwerty",
        "(",
        "\"two words\"",
        "ä ö",
    };
    return [line = oneOf(kLines), this] {
      QLineEdit& edit = window->line().edit();
      if (QApplication::activeModalWidget() != nullptr || QApplication::activePopupWidget() != nullptr) return;
      edit.setFocus();
      for (const QChar c : line) key(&edit, c == ' ' ? 0 : c.toUpper().unicode(), QString(c));
      key(&edit, Qt::Key_Return);
    };
  }

  /// All but what leaves the drawing or the program, and what asks the system.
  std::function<void()> someMenuRow() {
    static const QStringList kLeftOut = {"QUIT",  "CLOSE",  "OPEN", "NEW",        "SAVEAS",
                                         "QSAVE", "SCRIPT", "ARX",  "SAVESCRIPT", "window:print"};
    std::vector<const host::window::MenuRow*> rows;
    for (const auto* const row : window->tables().all()) {
      if (!kLeftOut.contains(row->command)) rows.push_back(row);
    }
    return [row = oneOf(rows), this] {
      QAction* const action = window->actions().of(*row);
      if (action != nullptr && action->isEnabled() && engine->isWaiting() &&
          QApplication::activeModalWidget() == nullptr && QApplication::activePopupWidget() == nullptr)
        action->trigger();
    };
  }

  /// A click somewhere on the window's panels and bars.
  std::function<void()> somewhereOnTheWindow() {
    const QPoint at(roll(1600), 30 + roll(960));
    return [at, this] {
      QWidget* const widget = window->childAt(at);
      if (widget == nullptr || widget->inherits("QMenuBar") || widget->inherits("QTabBar")) return;
      const QPointF inside = widget->mapFrom(window.get(), at);
      send(widget, QEvent::MouseMove, inside, Qt::NoButton, {});
      send(widget, QEvent::MouseButtonPress, inside, Qt::LeftButton, {});
      send(widget, QEvent::MouseButtonRelease, inside, Qt::LeftButton, {});
    };
  }

  /// What stands in front: something in it is pressed, chosen or written, or it is left.
  std::function<void()> somethingInFront() {
    const int what = roll(10), which = roll(1000), more = roll(1000);
    static const std::vector<QString> kTexts = {"2", "3", "0,5", "4.5", "-1", "abc", "", "45", "*", "594x420", "1:200"};
    return [=, text = oneOf(kTexts)] {
      if (auto* const popup = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
        // Of the menus in the window's bar nothing is taken: they hold what leaves the drawing.
        const bool isContext = popup->menuAction()->text().isEmpty() && popup->title().isEmpty();
        if (isContext && what < 4) QTest::keyClick(popup, Qt::Key_Down);
        QTest::keyClick(popup, isContext && what < 4 ? Qt::Key_Return : Qt::Key_Escape);
        return;
      }
      if (QWidget* const popup = QApplication::activePopupWidget()) {
        popup->close();
        return;
      }
      QWidget* const front = QApplication::activeModalWidget();
      if (front == nullptr) return;
      if (auto* const files = qobject_cast<QFileDialog*>(front)) return files->reject();
      const auto some = [](const auto& list, int number) { return list[number % list.size()]; };
      if (what < 2) {
        QTest::keyClick(front, Qt::Key_Escape);
      } else if (what < 5) {
        auto buttons = front->findChildren<QAbstractButton*>();
        buttons.removeIf([](const QWidget* button) { return !button->isVisible() || !button->isEnabled(); });
        if (!buttons.isEmpty()) QTest::mouseClick(some(buttons, which), Qt::LeftButton);
      } else if (what < 7) {
        auto edits = front->findChildren<QLineEdit*>();
        edits.removeIf([](const QWidget* edit) { return !edit->isVisible() || !edit->isEnabled(); });
        if (edits.isEmpty()) return;
        QTest::keyClick(some(edits, which), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(some(edits, which), text);
      } else {
        // Lists and drop-down lists by their keys.
        QList<QWidget*> lists;
        for (QComboBox* const box : front->findChildren<QComboBox*>()) lists += box;
        for (QListWidget* const list : front->findChildren<QListWidget*>()) lists += list;
        lists.removeIf([](const QWidget* list) { return !list->isVisible() || !list->isEnabled(); });
        if (lists.isEmpty()) return;
        for (int i = 0; i < 1 + more % 4; ++i)
          QTest::keyClick(some(lists, which), more % 3 == 0 ? Qt::Key_Up : Qt::Key_Down);
        front->grab();
      }
    };
  }

  bool isBlocked() {
    return get<bool>(
        [] { return QApplication::activeModalWidget() != nullptr || QApplication::activePopupWidget() != nullptr; });
  }

  bool step() {
    if (isBlocked()) return act(chance(85) ? somethingInFront() : someKey());
    const int what = roll(100);
    if (what < 45) return act(somethingWithTheMouse());
    if (what < 62) return act(someKey());
    if (what < 78) return act(someLine());
    if (what < 90) return act(someMenuRow());
    if (what < 96) return act(somewhereOnTheWindow());
    const QSize size(960 + roll(900), 560 + roll(500));
    return act([this, size] { window->resize(size); });
  }

  /// Leaves dialogs and commands.
  bool rest() {
    // A command may work for a while yet; events that come meanwhile are answered at once.
    constexpr qint64 kLongMs = 30'000;
    QElapsedTimer waited;
    for (waited.start(); waited.elapsed() < kLongMs; QThread::msleep(2)) {
      if (!isBlocked() && get<bool>([this] { return engine->input().isAtRest(); })) return true;
      act([] {
        if (QWidget* const popup = QApplication::activePopupWidget()) {
          popup->close();
        } else if (auto* const front = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
          front->reject();
        }
      });
      act([this] {
        if (QApplication::activeModalWidget() == nullptr) window->talk().escape();
      });
    }
    return false;
  }

  std::mt19937 random_;
};

TEST_P(Monkey, WhatIsLeftSavesSoundly) {
  random_.seed(static_cast<unsigned>(GetParam()));
  const auto plan = copy("docs/guide/tontti.dxf"), start = copy("docs/guide/tontti.dxf", "start.dxf");
  const auto script = folder.path / "done.scr", out = folder.path / "out.dxf";
  // Colours can be saved: of each run its own.
  const auto supportOf = [this](const char* name) {
    std::filesystem::path own = folder.path / name;
    std::filesystem::create_directory(own);
    std::filesystem::copy_file(supportFolder / "tolm.ini", own / "tolm.ini");
    return own;
  };
  const std::filesystem::path again = supportOf("again");
  supportFolder = supportOf("support");
  std::string made;
  work({plan}, [&] {
    for (int i = 0; i < kEventsEach; ++i) {
      if (!step()) {
        // The window is stuck: nothing of it can be left in an orderly way.
        std::fprintf(stderr, "monkey %d: no answer after event %d\n", GetParam(), i);
        std::abort();
      }
    }
    if (!rest()) {
      const QString front = get<QString>([this] {
        const QWidget* const modal = QApplication::activeModalWidget();
        const QWidget* const popup = QApplication::activePopupWidget();
        return QString("%1 (%2), %3, command %4")
            .arg(modal != nullptr ? modal->metaObject()->className() : "no dialog",
                 modal != nullptr ? modal->windowTitle() : QString(),
                 popup != nullptr ? popup->metaObject()->className() : "no popup", engine->command());
      });
      std::fprintf(stderr, "monkey %d: no rest: %s\n", GetParam(), front.toUtf8().constData());
      std::abort();
    }
    // Dialogs that are not modal, such as the guide.
    act([this] {
      for (QWidget* const each : QApplication::topLevelWidgets()) {
        if (each != window.get() && each->isVisible()) each->close();
      }
    });
    made = drawingText();
    ui([&] { window->talk().runLines({"SAVESCRIPT", QString::fromStdString(script.string())}); });
    settle();
    until([&] { return std::filesystem::exists(script); }, "the script");
    ui([&] { window->talk().runLines({"QSAVE"}); });
    settle();
    until([this] { return !engine->drawing()->isModified(); }, "the file");
  });
  EXPECT_TRUE(contentOf(plan) == made);
  AcDbDatabase facade(false);
  host::database::DrawingDatabase& reopened = host::database::databaseOf(&facade);
  ASSERT_TRUE(host::dxf::readDrawing(reopened, plan));
  EXPECT_TRUE(reopened.problems().empty()) << reopened.problems().front().sentence();
  const std::string call = std::string(kBinDir) + "/tolmex run '" + start.string() + "' --script '" + script.string() +
                           "' --support '" + again.string() + "' --quiet --out '" + out.string() + "'";
  const int status = std::system(call.c_str());
  const bool isSame = status == 0 && contentOf(out) == made;
  EXPECT_TRUE(isSame) << firstDifference(made, contentOf(out)) << contentOf(script);
}

INSTANTIATE_TEST_SUITE_P(Pieces, Monkey, testing::Range(1, pieceCount() + 1));

}  // namespace

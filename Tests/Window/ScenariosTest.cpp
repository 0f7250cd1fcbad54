// What planners do from the opening to the saved file: symbols, shadows, pictures, keys alone. After each the script of
// what was done gives the same bytes.
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QListWidget>
#include <QPrintDialog>
#include <QPrinter>
#include <QRadioButton>
#include <QTest>
#include <QToolTip>
#include <cstdio>

#include "Support.h"

using namespace tests;

namespace {

class Scenarios : public WindowTest {
 protected:
  using State = Conversation::State;
  State state() {
    return get<State>([this] { return window->talk().state(); });
  }
  /// The edits of the dialog in front, from the top.
  static QList<QLineEdit*> edits() {
    const QWidget* const front = QApplication::activeModalWidget();
    QList<QLineEdit*> all = front != nullptr ? front->findChildren<QLineEdit*>() : QList<QLineEdit*>();
    all.removeIf([](const QLineEdit* edit) { return !edit->isVisible() || edit->isReadOnly(); });
    std::ranges::sort(all, {}, [](const QWidget* edit) { return edit->mapToGlobal(QPoint()).y(); });
    return all;
  }
  void write(qsizetype place, const QString& text) {
    ui([&] {
      ASSERT_LT(place, edits().size());
      QLineEdit& edit = *edits().at(place);
      edit.setFocus();
      edit.selectAll();
      for (const QChar c : text) key(&edit, c.toUpper().unicode(), QString(c));
    });
  }
  QString written(qsizetype place) {
    return get<QString>([&] { return place < edits().size() ? edits().at(place)->text() : QString(); });
  }
  void tick(const QString& text) {
    ui([&] {
      for (QAbstractButton* const button : QApplication::activeModalWidget()->findChildren<QAbstractButton*>()) {
        if (QString(button->text()).remove('&') == text) button->click();
      }
    });
    settle();
  }
  void chooseInList(const QString& text) {
    ui([&] {
      auto* const list = QApplication::activeModalWidget()->findChild<QListWidget*>();
      ASSERT_NE(list, nullptr);
      const QList<QListWidgetItem*> found = list->findItems(text, Qt::MatchExactly);
      ASSERT_FALSE(found.isEmpty()) << text.toStdString();
      list->setCurrentItem(found.front());
      list->grab();
      QApplication::activeModalWidget()->grab();  // the dialog looks at what was chosen when it is painted
    });
    settle();
  }
  std::size_t stepCount() {
    return get<std::size_t>([this] { return engine->application().undoNames(99).size(); });
  }
  /// Saves the script of the session; `expectSameBytes` runs it when the window is gone.
  void saveScript() {
    made = drawingText();
    ui([this] { window->talk().runLines({"SAVESCRIPT", QString::fromStdString(script().string())}); });
    settle();
    until([this] { return std::filesystem::exists(script()); }, "the script");
  }
  std::filesystem::path script() const { return folder.path / "done.scr"; }
  void expectSameBytes(const std::filesystem::path& plan) const {
    const std::filesystem::path out = folder.path / "out.dxf";
    const std::string call = std::string(kBinDir) + "/tolmex run '" + plan.string() + "' --script '" +
                             script().string() + "' --support '" + kSourceDir + "/examples' --quiet --out '" +
                             out.string() + "'";
    ASSERT_EQ(std::system(call.c_str()), 0) << contentOf(script());
    EXPECT_TRUE(contentOf(out) == made) << contentOf(script());
  }
  std::string made;
};

TEST_F(Scenarios, SymbolsComeAndGoTogether) {
  const auto plan = copy("docs/guide/tontti.dxf");
  const std::string opened = contentOf(plan);
  const QString symbols = QString(kSourceDir) + "/docs/guide/tmsym";
  work({plan}, [&] {
    menu("TLM_LIS_SYMBOLI");
    ASSERT_TRUE(hasDialog());
    press("Selaa ...");
    until([] { return qobject_cast<QFileDialog*>(QApplication::activeModalWidget()) != nullptr; }, "the folders");
    ui([&] {
      auto& folders = *qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
      folders.setDirectory(symbols);
      QMetaObject::invokeMethod(
          &folders, [&folders] { static_cast<QDialog&>(folders).done(QDialog::Accepted); }, Qt::QueuedConnection);
    });
    until([] { return qobject_cast<QFileDialog*>(QApplication::activeModalWidget()) == nullptr; }, "the dialog");
    settle();
    tick("Keskisuuri");
    tick("Varjo");
    tick(QString::fromUtf8("Väritäyttö"));
    chooseInList("lehtipuu");
    press(QString::fromUtf8("Lisää"));
    EXPECT_FALSE(hasDialog());
    EXPECT_EQ(state(), State::Point);
    point(30, 36);
    // The tree hangs on the cursor before the click.
    const QImage bare = get<QImage>([this] {
      const QImage image = window->canvas().grab().toImage();
      QEvent leave(QEvent::Leave);
      QApplication::sendEvent(&window->canvas(), &leave);
      const QImage without = window->canvas().grab().toImage();
      const QPoint at = pixel(30, 36).toPoint();
      const QRect around(at - QPoint(20, 20), QSize(40, 40));
      return image.copy(around) == without.copy(around) ? QImage() : image;
    });
    EXPECT_FALSE(bare.isNull()) << "no symbol at the cursor";
    click(30, 36);
    click(34, 38);
    click(38, 35);
    rightClick();
    ASSERT_TRUE(hasDialog());
    chooseInList("omenapuu");
    press(QString::fromUtf8("Lisää"));
    click(10, 36);
    escape();
    EXPECT_EQ(state(), State::Rest);
    EXPECT_NE(told().indexOf("Symbolit: syntyi 4 "), -1) << told().toStdString();  // of the blocks' contents no word
    EXPECT_EQ(stepCount(), 1U);
    const std::string with = drawingText();
    menu("U");
    EXPECT_TRUE(drawingText() == opened) << "one undo takes all four";
    EXPECT_FALSE(isModified());
    menu("REDO");
    EXPECT_TRUE(drawingText() == with);
    saveScript();
  });
  expectSameBytes(plan);
}

TEST_F(Scenarios, ShadowSettingsByDoubleClickOnAShadow) {
  const auto plan = copy("docs/guide/tontti.dxf");
  work({plan}, [&] {
    menu("TLM_MUOK_RAKENNUS");
    type("(handent \"131\")");
    rightClick();
    ASSERT_TRUE(hasDialog());
    for (qsizetype i = 0; const char* const value : {"2", "3", "0,5", "0,4"}) write(i++, value);
    press("OK");
    ASSERT_EQ(state(), State::Rest);
    menu("TLM_VARJO_PAIVITA");
    std::vector<host::geometry::Point> places;
    ui([&] {
      for (Slot* slot : engine->application().currentSpace()->entities) {
        const std::wstring layer(slot->database().layerName(slot->layer));
        if (slot->isErased() || layer.find(L"_varjo") == std::wstring::npos) continue;
        for (const host::geometry::Path& path : host::geometry::entityPaths(*slot, 0.1)) {
          for (std::size_t i = 2; i < path.points.size(); ++i)
            places.push_back((path.points[i - 2] + path.points[i - 1] + path.points[i]) * (1.0 / 3));
        }
      }
    });
    // One where nothing lies above the shadow.
    const auto isShadowLit = [this] {
      const Slot* const lit = window->canvas().hovered();
      return lit != nullptr &&
             std::wstring(lit->database().layerName(lit->layer)).find(L"_varjo") != std::wstring::npos;
    };
    std::optional<host::geometry::Point> shadowAt;
    for (const host::geometry::Point place : places) {
      point(place.x, place.y);
      if (!get<bool>(isShadowLit)) continue;
      shadowAt = place;
      break;
    }
    ASSERT_TRUE(shadowAt);
    ui([&] { mouse(QEvent::MouseButtonDblClick, pixel(shadowAt->x, shadowAt->y), Qt::LeftButton); });
    settle();
    ASSERT_TRUE(until([] { return QApplication::activeModalWidget() != nullptr; }, "the dialog"));
    EXPECT_EQ(get<std::string>([] { return QApplication::activeModalWidget()->windowTitle().toStdString(); }),
              "Varjon ominaisuudet");
    write(0, "20");
    write(1, "4.5");
    EXPECT_EQ(written(1), "45") << "the field takes digits only";
    ui([&] {
      QApplication::clipboard()->setText("4.5");
      ASSERT_GT(edits().size(), 1);
      edits().at(1)->selectAll();
      edits().at(1)->paste();
    });
    EXPECT_EQ(written(1), "4.5");
    write(2, "0,1");
    EXPECT_EQ(written(2), "0.1") << "a comma is a point where numbers are typed";
    ui([&] {
      for (QComboBox* const box : QApplication::activeModalWidget()->findChildren<QComboBox*>()) {
        const int dots = box->findText("Piste");
        if (dots < 0) continue;
        box->setCurrentIndex(dots);
        emit box->activated(dots);
      }
    });
    press("OK");
    EXPECT_EQ(state(), State::Rest);
    EXPECT_EQ(get<QString>([this] { return window->actions().of("U")->text().remove('&'); }),
              QString::fromUtf8("Kumoa: Varjon asetukset"));
    const std::string before = drawingText();
    EXPECT_NE(before.find("varjo"), std::string::npos);
    menu("TLM_VARJO_OMINAISUUDET");
    ASSERT_TRUE(hasDialog());
    EXPECT_EQ(written(1), "4.5");
    press("Cancel");
    EXPECT_TRUE(drawingText() == before) << "Cancel leaves every byte";
    saveScript();
  });
  expectSameBytes(plan);
}

/// The printer's dialog begins with the paper of the country; the page that was chosen counts.
TEST_F(Scenarios, PrintsOnThePaperThatWasChosen) {
  const auto plan = copy("examples/kortteli.dxf");
  const std::filesystem::path page = folder.path / "printed.pdf";
  work({plan}, [&] {
    ui([this] { window->actions().of("window:print")->trigger(); });
    until([] { return QApplication::activeModalWidget() != nullptr; }, "the dialog");
    ui([] {  // the printer's dialog runs a loop of its own, so that the click is waited for by nobody
      auto* const print = QApplication::activeModalWidget()->findChild<QDialogButtonBox*>()->buttons().front();
      QMetaObject::invokeMethod(print, &QAbstractButton::click, Qt::QueuedConnection);
    });
    until([] { return qobject_cast<QPrintDialog*>(QApplication::activeModalWidget()) != nullptr; }, "the printers");
    ui([&page] {
      auto& dialog = *qobject_cast<QPrintDialog*>(QApplication::activeModalWidget());
      dialog.printer()->setOutputFormat(QPrinter::PdfFormat);
      dialog.printer()->setOutputFileName(QString::fromStdString(page.string()));
      dialog.printer()->setPageSize(QPageSize(QPageSize::Letter));
      QMetaObject::invokeMethod(
          &dialog, [&dialog] { static_cast<QDialog&>(dialog).done(QDialog::Accepted); }, Qt::QueuedConnection);
    });
    until([] { return QApplication::activeModalWidget() == nullptr; }, "the page");
    settle();
  });
  const std::string bytes = contentOf(page);
  const std::size_t box = bytes.find("/MediaBox");
  ASSERT_NE(box, std::string::npos);
  double left = 1, bottom = 1, right = 0, top = 0;
  ASSERT_EQ(std::sscanf(bytes.c_str() + box, "/MediaBox [%lf %lf %lf %lf]", &left, &bottom, &right, &top), 4);
  EXPECT_NEAR((right - left) / 72 * 25.4, 420, 1);  // A3 lying
  EXPECT_NEAR((top - bottom) / 72 * 25.4, 297, 1);
}

TEST_F(Scenarios, PageOfAScaleAndTheSameFileWithoutAWindow) {
  const auto plan = copy("examples/kortteli.dxf");
  const std::filesystem::path page = folder.path / "page.pdf";
  std::wstring asked;
  extend = [&asked](host::editor::Application& application) {
    application.addCommand(
        L"PICTURE", 0,
        [&asked](host::editor::Prompter& prompter) { asked = prompter.text(L"Enter name of picture file: ").value; },
        L"stands for the program's");
  };
  work({plan}, [&] {
    ui([this] { window->actions().of("PICTURE")->trigger(); });
    until([] { return QApplication::activeModalWidget() != nullptr; }, "the dialog");
    const auto choose = [&](const QString& label, const QString& value) {
      ui([&] {
        QWidget* const dialog = QApplication::activeModalWidget();
        for (QLabel* const named : dialog->findChildren<QLabel*>()) {
          auto* const box = qobject_cast<QComboBox*>(named->buddy());
          if (box == nullptr || QString(named->text()).remove('&') != label) continue;
          box->setCurrentText(value);
          return;
        }
        ADD_FAILURE() << "no " << label.toStdString();
      });
    };
    const auto note = [this] {
      return get<QString>([] { return QApplication::activeModalWidget()->findChild<QLabel*>("note")->text(); });
    };
    choose("Paperi", "A3");
    choose("Mittakaava", "1:250");
    until([&] { return QApplication::activeModalWidget()->findChild<QLabel*>("note")->text().contains("Ei mahdu"); },
          "that it does not fit");
    EXPECT_NE(note().indexOf("1:500"), -1);
    choose("Mittakaava", "1:500");
    until([&] { return QApplication::activeModalWidget()->findChild<QLabel*>("note")->text().isEmpty(); }, "a page");
    // The dialog steps aside for the page's frame, one click puts it.
    ui([] {
      QWidget* const dialog = QApplication::activeModalWidget();
      for (QComboBox* const box : dialog->findChildren<QComboBox*>()) {
        const int pick = box->findData("pick");
        if (pick < 0) continue;
        box->setCurrentIndex(pick);
        emit box->activated(pick);
      }
    });
    until([] { return QApplication::activeModalWidget() == nullptr; }, "the drawing");
    const auto middle = get<host::geometry::Box>([this] { return window->canvas().visibleBox(); });
    click((middle.minX + middle.maxX) / 2, (middle.minY + middle.maxY) / 2);
    until([] { return QApplication::activeModalWidget() != nullptr; }, "the dialog again");
    press("Tallenna…");
    until([] { return qobject_cast<QFileDialog*>(QApplication::activeModalWidget()) != nullptr; }, "the name");
    ui([] {
      QMetaObject::invokeMethod(
          QApplication::activeModalWidget(), [] { static_cast<QDialog*>(QApplication::activeModalWidget())->accept(); },
          Qt::QueuedConnection);
    });
    until([&] { return !asked.empty() && engine->input().isAtRest(); }, "the command");
    EXPECT_FALSE(isModified());
  });
  // What the dialog wrote into the line, without a window.
  const QString line = QString::fromStdWString(asked);
  const qsizetype behind = line.indexOf(" --paper A3 --scale 1:500 --window ");
  ASSERT_GT(behind, 0) << line.toStdString();
  std::ofstream(script()) << "PICTURE\n" << page.string() << line.mid(behind).toStdString() << '\n';
  const std::string call = std::string(kBinDir) + "/tolmex run '" + plan.string() + "' --script '" + script().string() +
                           "' --quiet --out '" + (folder.path / "out.dxf").string() + "'";
  ASSERT_EQ(std::system(call.c_str()), 0);
  // 420 x 297 mm in points.
  const std::string bytes = contentOf(page);
  const std::size_t box = bytes.find("/MediaBox [");
  ASSERT_NE(box, std::string::npos);
  double x = 0, y = 0, width = 0, height = 0;
  std::istringstream(bytes.substr(box + 11)) >> x >> y >> width >> height;
  EXPECT_NEAR(width, 420 / 25.4 * 72, 1);
  EXPECT_NEAR(height, 297 / 25.4 * 72, 1);
}

TEST_F(Scenarios, KeysAloneDoEverything) {
  const auto plan = copy("docs/guide/tontti.dxf"), other = copy("examples/kortteli.dxf", "other.dxf");
  work({other}, [&] {
    const auto press = [this](int code, Qt::KeyboardModifiers modifiers = {}) {
      if (!hasDialog()) {
        ui([this] { window->activateWindow(); });
        until([] { return QApplication::activeModalWidget() != nullptr || QApplication::focusWidget() != nullptr; },
              "the focus");
      }
      later([=, this] {
        QWidget* const focus = QApplication::focusWidget();
        QTest::keyClick(focus != nullptr ? focus : &window->line().edit(), static_cast<Qt::Key>(code), modifiers);
      });
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      settle();
    };
    const auto write = [this](const QString& text) {
      ui([&] {
        QWidget* const focus = QApplication::focusWidget();
        QTest::keyClicks(focus != nullptr ? focus : &window->line().edit(), text);
      });
      settle();
    };
    ui([this] { window->activateWindow(); });
    until([] { return QApplication::focusWidget() != nullptr; }, "the focus");
    press(Qt::Key_O, Qt::ControlModifier);
    until([] { return qobject_cast<QFileDialog*>(QApplication::activeModalWidget()) != nullptr; }, "the files");
    ui([&] {
      auto* const name = QApplication::activeModalWidget()->findChild<QLineEdit*>("fileNameEdit");
      ASSERT_NE(name, nullptr);
      name->setText(QString::fromStdString(plan.string()));
      name->setFocus();
    });
    press(Qt::Key_Return);
    until([this] { return window->tabs().count() == 2 && engine->input().isAtRest(); }, "the drawing");
    ui([this] { window->activateWindow(); });
    write("nur");
    press(Qt::Key_Return);
    EXPECT_EQ(state(), State::Selection);
    EXPECT_NE(get<QString>([this] { return window->line().edit().accessibleDescription(); }).indexOf("nurmialue"), -1)
        << "what is asked can be heard";
    press(Qt::Key_F9);
    const QPointF way = get<QPointF>([this] {
      const QPointF middle(window->canvas().width() / 2.0, window->canvas().height() / 2.0);
      return pixel(44, 16) - middle;
    });
    const auto go = [&](double distance, int forwards, int backwards) {
      const int code = distance > 0 ? forwards : backwards;
      int left = static_cast<int>(std::lround(std::abs(distance)));
      for (; left >= 50; left -= 50) press(code, Qt::ControlModifier);
      for (; left >= 10; left -= 10) press(code);
      for (; left >= 1; --left) press(code, Qt::ShiftModifier);
    };
    go(way.x(), Qt::Key_Right, Qt::Key_Left);
    go(way.y(), Qt::Key_Down, Qt::Key_Up);
    EXPECT_NE(get<QString>([this] { return window->canvas().accessibleDescription(); }), "") << "the lit is told";
    while (get<bool>([this] {
      const Slot* const lit = window->canvas().hovered();
      return lit != nullptr && lit->database().layerName(lit->layer) != L"NURMI";
    }))
      press(Qt::Key_Tab);
    press(Qt::Key_Insert);
    press(Qt::Key_Return);
    EXPECT_EQ(state(), State::Rest);
    EXPECT_NE(told().indexOf("Nurmikko: muuttui 1, syntyi 1"), -1) << told().toStdString();

    write("rak");
    press(Qt::Key_Return);
    write("(handent \"131\")");
    press(Qt::Key_Return);
    press(Qt::Key_Return);
    ASSERT_TRUE(hasDialog());
    for (const char* const value : {"2", "3", "0,5", "0,4"}) {
      write(value);
      press(Qt::Key_Tab);
    }
    press(Qt::Key_Return);
    EXPECT_EQ(state(), State::Rest) << boxText().toStdString();
    EXPECT_NE(drawingText().find("nrfloors"), std::string::npos);

    for (const int panel : {3, 2, 1, 0}) {
      press(Qt::Key_1 + panel, Qt::ControlModifier);
      until([&] { return window->side().current() == panel; }, "the panel");
    }
    // A field of text takes Ctrl+E as a way to move in it; here it is a key of the menu.
    press(Qt::Key_Escape);
    press(Qt::Key_E, Qt::ControlModifier);
    until([] { return QApplication::activeModalWidget() != nullptr; }, "the export");
    EXPECT_EQ(get<QString>([] { return QApplication::activeModalWidget()->objectName(); }), "exportDialog");
    press(Qt::Key_Escape);
    press(Qt::Key_A, Qt::ControlModifier);
    until([this] { return window->talk().selection().size() > 20; }, "all to be selected");
    press(Qt::Key_S, Qt::ControlModifier);
    until([this] { return !engine->drawing()->isModified(); }, "the file");
    EXPECT_NE(contentOf(plan).find("tma_nurmi"), std::string::npos);
  });
}

}  // namespace

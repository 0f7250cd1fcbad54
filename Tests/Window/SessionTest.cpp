// Dialogs, leaving, files, crashes, scripts: what a window must not lose.
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QTimer>

#include "Support.h"
#include "Window/Files/Autosave.h"

using namespace tests;

namespace {

class Session : public WindowTest {
 protected:
  using State = Conversation::State;
  State state() {
    return get<State>([this] { return window->talk().state(); });
  }
  /// Fills the edits of the dialog in front, from the top.
  void fill(const QStringList& texts) {
    ui([&] {
      QList<QLineEdit*> edits = QApplication::activeModalWidget()->findChildren<QLineEdit*>();
      std::ranges::sort(edits, [](const QWidget* a, const QWidget* b) {
        return a->mapToGlobal(QPoint()).y() < b->mapToGlobal(QPoint()).y();
      });
      for (qsizetype i = 0; i < texts.size() && i < edits.size(); ++i) {
        edits[i]->setFocus();
        edits[i]->clear();
        for (const QChar c : texts[i]) key(edits[i], c.toUpper().unicode(), QString(c));
      }
    });
  }
};

TEST_F(Session, BuildingDialogHandsTheDrawingBackAndComesAgain) {
  const auto plan = copy("docs/guide/tontti.dxf");
  work({plan}, [&] {
    menu("TLM_MUOK_HARJAVIIVA");
    type("(handent \"141\")");
    rightClick();
    menu("TLM_MUOK_RAKENNUS");
    type("(handent \"131\")");
    rightClick();
    ASSERT_TRUE(hasDialog());
    EXPECT_EQ(state(), State::Dialog);
    press("OK");
    EXPECT_NE(boxText().indexOf("kerroksien"), -1) << boxText().toStdString();
    press("OK");
    fill({"2", "3", "0.5", "0.4"});
    press("Aseta harjaviiva");
    EXPECT_FALSE(hasDialog());
    EXPECT_FALSE(get<QString>([this] { return window->talk().waitingDialog(); }).isEmpty());
    EXPECT_FALSE(get<bool>([this] { return window->actions().of("NEW")->isEnabled(); }));
    type("(handent \"141\")");
    enter();  // the height of the ridge
    ASSERT_TRUE(hasDialog());
    press("OK");
    EXPECT_EQ(state(), State::Rest);
    EXPECT_TRUE(get<bool>([this] { return window->actions().of("NEW")->isEnabled(); }));
    EXPECT_NE(drawingText().find("nrfloors"), std::string::npos);
  });
}

TEST_F(Session, MenuClickWhileACommandAsksIsEscAndTheOtherCommand) {
  const auto plan = copy("docs/guide/tontti.dxf");
  const std::string opened = contentOf(plan);
  work({plan}, [&] {
    menu("PLINE");
    type("1,1");
    EXPECT_EQ(state(), State::Point);
    menu("TLM_MUOK_SORA");
    EXPECT_EQ(state(), State::Selection);
    EXPECT_EQ(get<QString>([this] { return engine->command(); }), "TLM_MUOK_SORA");
    escape();
    EXPECT_EQ(state(), State::Rest);
    EXPECT_TRUE(drawingText() == opened);
    EXPECT_FALSE(isModified());
  });
}

TEST_F(Session, RefusedAnswerStaysWithAnExample) {
  work({copy("docs/guide/tontti.dxf")}, [&] {
    menu("LINE");
    type("abc");
    EXPECT_EQ(state(), State::Point);
    EXPECT_EQ(get<QString>([this] { return window->line().typed(); }), "abc");
    ui([this] { window->line().clearTyped(); });
    type("5,5");
    point(5, 9);
    type("3");
    enter();
    EXPECT_NE(told().indexOf("@3<90"), -1) << told().toStdString();
    type("qwerty");
    EXPECT_NE(told().indexOf("Tuntematon komento"), -1) << told().toStdString();
  });
}

TEST_F(Session, ClosingWhileACommandAsksAsksAboutChanges) {
  const auto plan = copy("docs/guide/tontti.dxf");
  work({plan}, [&] {
    menu("TLM_MUOK_METSA");
    type("(handent \"108\")");
    rightClick();
    menu("PLINE");
    type("1,1");
    ui([this] { window->close(); });
    until([] { return QApplication::activeModalWidget() != nullptr; }, "the question");
    EXPECT_EQ(boxText(), "Tallennetaanko muutokset piirustukseen plan.dxf?");
    press("Peruuta");
    EXPECT_EQ(state(), State::Rest);
    EXPECT_TRUE(isModified());
    ui([this] { window->files().save(); });
    settle();
    EXPECT_FALSE(isModified());
    EXPECT_TRUE(drawingText() == contentOf(plan));
  });
}

TEST_F(Session, ReadOnlyFolderKeepsTheOldFileWhole) {
  if (::geteuid() == 0) {
    // Nothing is read-only to the superuser; a folder that is gone fails in the same way.
    const auto plan = copy("docs/guide/tontti.dxf");
    work({plan}, [&] {
      menu("TLM_MUOK_METSA");
      type("(handent \"108\")");
      rightClick();
      std::filesystem::rename(folder.path, folder.path.string() + "-away");
      ui([this] { window->files().save(); });
      until([] { return QApplication::activeModalWidget() != nullptr; }, "the message");
      EXPECT_NE(boxText().indexOf("Tallennus ei onnistunut"), -1) << boxText().toStdString();
      press("Peruuta");
      EXPECT_TRUE(isModified());
      std::filesystem::rename(folder.path.string() + "-away", folder.path);
    });
    EXPECT_TRUE(contentOf(plan) == contentOf(std::filesystem::path(kSourceDir) / "docs/guide/tontti.dxf"));
    return;
  }
  const auto plan = copy("docs/guide/tontti.dxf");
  work({plan}, [&] {
    menu("TLM_MUOK_METSA");
    type("(handent \"108\")");
    rightClick();
    ::chmod(folder.path.c_str(), 0500);
    ui([this] { window->files().save(); });
    until([] { return QApplication::activeModalWidget() != nullptr; }, "the message");
    EXPECT_NE(boxText().indexOf("Tallennus ei onnistunut"), -1) << boxText().toStdString();
    press("Peruuta");
    EXPECT_TRUE(isModified());
    ::chmod(folder.path.c_str(), 0700);
  });
  EXPECT_TRUE(contentOf(plan) == contentOf(std::filesystem::path(kSourceDir) / "docs/guide/tontti.dxf"));
}

TEST_F(Session, FileThatIsNoDrawingIsOneSentence) {
  const auto file = folder.path / "picture.dxf";
  std::ofstream(file) << "\x89PNG\r\n\x1a\n nothing of a drawing";
  work({}, [&] {
    EXPECT_TRUE(get<bool>([this] { return window->startPage().isVisible(); }));
    ui([&] { window->files().open({QString::fromStdString(file.string())}); });
    until([] { return QApplication::activeModalWidget() != nullptr; }, "the message");
    EXPECT_NE(boxText().indexOf("ei voi avata"), -1) << boxText().toStdString();
    press("Sulje");
    EXPECT_TRUE(get<bool>([this] { return window->startPage().isVisible(); }));
  });
}

TEST_F(Session, CutDrawingOpensInPartAndListsItsProblems) {
  const auto plan = copy("docs/guide/tontti.dxf");
  const std::string whole = contentOf(plan);
  std::ofstream(plan, std::ios::binary) << whole.substr(0, whole.size() * 2 / 3);
  work({plan}, [&] {
    ui([this] { window->side().open(host::window::SidePanel::Problems); });
    EXPECT_GT(get<int>([this] { return window->side().problems().count(); }), 0);
  });
}

TEST_F(Session, ChangeOnDiskIsToldAndNothingHappensByItself) {
  const auto plan = copy("docs/guide/tontti.dxf");
  work({plan}, [&] {
    std::ofstream(plan, std::ios::app) << "999\nsomebody\n";
    ui([this] { window->files().lookAtDisk(); });
    EXPECT_NE(get<QString>([this] { return window->banner().text(); }).indexOf(QString::fromUtf8("muuttunut levyllä")),
              -1);
    EXPECT_EQ(drawingText().find("somebody"), std::string::npos);
    ui([this] { window->banner().choose("Lue uudestaan"); });
    settle();
    until([this] { return engine->isWaiting() && engine->drawing() != nullptr; }, "the drawing");
    EXPECT_NE(drawingText().find("somebody"), std::string::npos);
  });
}

TEST_F(Session, TwoDrawingsKeepTheirOwnUndoAndMarks) {
  const auto one = copy("docs/guide/tontti.dxf", "one.dxf"), two = copy("examples/kortteli.dxf", "two.dxf");
  work({one, two}, [&] {
    EXPECT_EQ(get<int>([this] { return window->tabs().count(); }), 2);
    menu("LINE");
    type("1,1");
    ui([this] { window->tabs().setCurrentIndex(0); });
    settle();
    until([this] { return engine->input().isAtRest(); }, "rest");
    EXPECT_EQ(get<QString>([this] { return window->windowTitle(); }), QString::fromUtf8("[*]one.dxf – Tolmex"));
    menu("TLM_MUOK_METSA");
    type("(handent \"108\")");
    rightClick();
    EXPECT_EQ(get<QString>([this] { return window->tabs().tabText(0); }), "*one.dxf");
    EXPECT_EQ(get<QString>([this] { return window->tabs().tabText(1); }), "two.dxf");
    ui([this] { window->tabs().setCurrentIndex(1); });
    until([this] { return window->windowTitle().contains("two"); }, "the other drawing");
    EXPECT_TRUE(get<std::size_t>([this] { return engine->application().undoNames(9).size(); }) == 0);
  });
}

TEST_F(Session, ScriptOfWhatWasDoneMakesTheSameBytes) {
  const auto plan = copy("docs/guide/tontti.dxf");
  const auto script = folder.path / "done.scr", out = folder.path / "out.dxf";
  for (const auto language : {host::window::Language::Finnish, host::window::Language::English}) {
    std::string made;
    work(
        {plan},
        [&] {
          ui([&] {
            if (language == host::window::Language::English) window->canvas().zoomBy(3);
          });
          menu("TLM_MUOK_METSA");
          type("(handent \"108\")");
          rightClick();
          menu("PLINE");
          type("1,1");
          escape();
          menu("TLM_MUOK_NURMIKKO");
          type("(handent \"101\")");
          rightClick();
          menu("U");
          ui([this] { window->talk().select({entity(0x102), entity(0x103)}); });
          menu("TLM_MUOK_ASFALTTI");
          menu("TLM_PARK_PAIKKA_TEE");
          type("43,10");
          type("33,10");
          enter();
          type("2,5");
          enter();
          made = drawingText();
          ui([&] { window->talk().runLines({"SAVESCRIPT", QString::fromStdString(script.string())}); });
          settle();
          until([&] { return std::filesystem::exists(script); }, "the script");
        },
        language);
    const std::string call = std::string(kBinDir) + "/tolmex run '" + plan.string() + "' --script '" + script.string() +
                             "' --support '" + kSourceDir + "/examples' --quiet --out '" + out.string() + "'";
    ASSERT_EQ(std::system(call.c_str()), 0) << contentOf(script);
    EXPECT_TRUE(contentOf(out) == made) << contentOf(script);
    std::filesystem::remove(script);
  }
}

TEST_F(Session, WhatWasDoneBeforeAKillIsOfferedAndKept) {
  const auto plan = copy("docs/guide/tontti.dxf");
  const std::string before = contentOf(plan);
  QSettings().setValue("autosave/seconds", 1);
  QSettings().sync();
  const auto script = folder.path / "work.scr";
  std::ofstream(script) << "TLM_MUOK_METSA\n(handent \"108\")\n\nTLM_MUOK_NURMIKKO\n(handent \"101\")\n\n";
  const std::string program = std::string(kBinDir) + "/tolmex";
  const pid_t child = ::fork();
  if (child == 0) {
    ::execl(program.c_str(), "tolmex", "desktop", plan.c_str(), "--script", script.c_str(), nullptr);
    ::_exit(127);
  }
  const QDir kept(host::window::Autosave::folder());
  for (int i = 0; i < 3000 && kept.entryList({"*.json"}).isEmpty(); ++i) ::usleep(10'000);
  EXPECT_TRUE(host::window::Autosave::found().empty()) << "of a session that still runs nothing is offered";
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  QSettings().remove("autosave/seconds");
  ASSERT_EQ(host::window::Autosave::found().size(), 1U);
  EXPECT_TRUE(contentOf(plan) == before);
  // Asked again after having been put off.
  for (const char* const answer : {"Päätä myöhemmin", "Palauta"}) {
    work({}, [&] {
      ui([this] { QTimer::singleShot(0, window.get(), [this] { window->files().offerRecovery(); }); });
      until([] { return QApplication::activeModalWidget() != nullptr; }, "the question");
      EXPECT_NE(boxText().indexOf("sulkeutui odottamatta. plan.dxf"), -1) << boxText().toStdString();
      press(QString::fromUtf8(answer));
      if (QString::fromUtf8(answer) != "Palauta") return;
      until([this] { return engine->drawing() != nullptr; }, "the drawing");
      EXPECT_TRUE(isModified());
      EXPECT_EQ(get<std::string>([this] { return engine->application().drawingFile().string(); }), plan.string());
      const std::string text = drawingText();
      EXPECT_NE(text.find("tma_metsa"), std::string::npos);
      EXPECT_NE(text.find("tma_nurmi"), std::string::npos);
    });
  }
  EXPECT_TRUE(contentOf(plan) == before);
}

TEST_F(Session, LockedLayersFilesAndStoppedScriptsHaveTheirLinks) {
  const auto plan = copy("docs/guide/tontti.dxf");
  const auto script = folder.path / "steps.scr", picture = folder.path / "a b.svg";
  std::ofstream(script) << "TLM_MUOK_METSA\n(handent \"108\")\n\nNOSUCH\n";
  extend = [](host::editor::Application& application) {
    application.addCommand(
        L"PICTURE", 0,
        [](host::editor::Prompter& prompter) {
          const auto file = prompter.text(L"Enter name of picture file: ");
          std::ofstream(std::filesystem::path(file.value)) << "x";
        },
        L"stands for the program's");
  };
  ownFacts = [](const Slot& slot) {
    std::vector<host::window::OwnFact> facts;
    if (slot.handle == 0x131) facts = {{"Kerroksia", "Floors", "2"}, {"Ala × kerrokset", "Area × floors", {}, 2}};
    return facts;
  };
  const auto follow = [this](const QString& link) {
    ui([&] { emit window->history().linkClicked(link); });
    settle();
  };
  work({plan}, [&] {
    ui([this] { window->talk().select({entity(0x131)}); });
    const auto value = [this](const char* name) {
      return get<QString>([&] { return window->side().properties().value(QString::fromUtf8(name)); });
    };
    until([&] { return window->side().properties().value("Kerroksia") == "2"; }, "the building's values");
    EXPECT_EQ(value("Ala × kerrokset"), QString::fromUtf8("252.00 m²"));
    escape();

    for (const char* const answer : {"LAYER", "LOck", "TONTTI"}) type(answer);
    enter();
    menu("ERASE");
    click(22, 0);
    rightClick();
    EXPECT_NE(told().indexOf("Taso TONTTI on lukittu. Avaa lukitus"), -1) << told().toStdString();
    follow("lines:LAYER%0AUnlock%0ATONTTI%0A%0AERASE");
    EXPECT_EQ(state(), State::Selection) << "the layer is unlocked, and the command asks again";
    escape();

    ui([&] { window->talk().runLines({"PICTURE", QString::fromStdString(picture.string())}); });
    settle();
    EXPECT_NE(told().indexOf("Tallennettu: a b.svg Avaa Avaa kansio"), -1) << told().toStdString();

    const std::string before = drawingText();
    const auto canvasPlace = [this] {
      return get<QRect>([this] {
        QWidget& canvas = window->canvas();
        return QRect(canvas.mapTo(window.get(), QPoint()), canvas.size());
      });
    };
    const QRect placeBefore = canvasPlace();
    ui([&] { window->talk().runLines({"SCRIPT", QString::fromStdString(script.string())}); });
    settle();
    until([this] { return window->banner().isVisible(); }, "the banner");
    EXPECT_TRUE(canvasPlace() == placeBefore) << "a message must not move the drawing under the cursor";
    EXPECT_NE(get<QString>([this] { return window->banner().text(); }).indexOf("Skripti pysähtyi riville 4"), -1)
        << get<QString>([this] { return window->banner().text(); }).toStdString();
    EXPECT_FALSE(drawingText() == before);
    ui([this] { window->banner().choose("Kumoa"); });
    settle();
    EXPECT_TRUE(drawingText() == before);
  });
}

TEST_F(Session, ExamplesHaveTheColoursThatLieBesideThem) {
  const std::filesystem::path example = std::filesystem::path(kSourceDir) / "docs/guide/tontti.dxf";
  const auto script = folder.path / "steps.scr", out = folder.path / "out.dxf";
  supportFolder = folder.path;
  std::string made;
  work({}, [&] {
    ui([&] { window->files().openCopy(QString::fromStdString(example.string())); });
    until([this] { return engine->drawing() != nullptr && engine->isWaiting(); }, "the example");
    EXPECT_FALSE(isModified());
    menu("TLM_MUOK_METSA");
    type("(handent \"108\")");
    rightClick();
    made = drawingText();
  });
  std::ofstream(script) << "TLM_MUOK_METSA\n(handent \"108\")\n\n";
  const std::string call = std::string(kBinDir) + "/tolmex run '" + example.string() + "' --script '" +
                           script.string() + "' --quiet --out '" + out.string() + "'";
  ASSERT_EQ(std::system(call.c_str()), 0);
  EXPECT_TRUE(contentOf(out) == made);
}

TEST_F(Session, FirstUseSaysWhatToDoUntilItIsUnderstood) {
  const auto plan = copy("docs/guide/tontti.dxf");
  QSettings().remove("hints/isBegun");
  const auto hints = [this] {
    return get<int>([this] {
      const auto all = window->findChildren<host::window::Banner*>();
      return static_cast<int>(std::ranges::count_if(all, [](host::window::Banner* banner) {
        const bool isShown = banner->isVisible() && banner->text().contains("Valitse paletista");
        if (isShown) banner->choose(QString::fromUtf8("Selvä"));
        return isShown;
      }));
    });
  };
  work({plan}, [&] { EXPECT_EQ(hints(), 1); });
  work({plan}, [&] { EXPECT_EQ(hints(), 0); });
}

TEST_F(Session, LayersAreOneUndoEach) {
  const auto plan = copy("docs/guide/tontti.dxf");
  const std::string opened = contentOf(plan);
  work({plan}, [&] {
    ui([this] { window->side().open(host::window::SidePanel::Layers); });
    ui([this] {
      auto& layers = window->side().layers();
      const auto found =
          layers.tree().findItems("METSA", Qt::MatchExactly | Qt::MatchRecursive, host::window::LayersPanel::Name);
      ASSERT_FALSE(found.isEmpty());
      layers.click(*found.front(), host::window::LayersPanel::Shown);
    });
    settle();
    EXPECT_TRUE(isModified());
    EXPECT_EQ(get<std::size_t>([this] { return engine->application().undoNames(9).size(); }), 1U);
    menu("U");
    EXPECT_TRUE(drawingText() == opened);
  });
}

TEST_F(Session, NothingIsCutOffInASmallWindow) {
  work({copy("docs/guide/tontti.dxf")},
       [&] {
         EXPECT_TRUE(get<bool>([this] { return window->side().isNarrow() && window->palette().isNarrow(); }));
         const QSize canvas = get<QSize>([this] { return window->canvas().size(); });
         EXPECT_GE(canvas.width(), 1266);
         EXPECT_GE(canvas.height(), 560);
         ui([this] { window->resize(960, 560); });
         EXPECT_EQ(get<QSize>([this] { return window->size(); }), QSize(960, 560));
         ui([this] { window->side().open(host::window::SidePanel::Properties); });
         EXPECT_NE(get<QString>([this] { return window->side().properties().value("Tiedosto"); }), "");
       },
       Language::Finnish, {1366, 700});
}

}  // namespace

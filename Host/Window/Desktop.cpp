#include "Window/Desktop.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QIcon>
#include <QTimer>

#include "Text/Text.h"
#include "Window/Commands/Icons.h"
#include "Window/Commands/Language.h"
#include "Window/Files/Autosave.h"
#include "Window/Files/Questions.h"
#include "Window/Frame/Engine.h"
#include "Window/Frame/MainWindow.h"
#include "Window/Frame/Theme.h"
#include "adesk.h"

namespace host::window {
namespace {

QString pathOf(const std::filesystem::path& path) { return QString::fromStdString(path.string()); }

/// The application object; it stays to the end of the process.
QApplication& application() {
  if (auto* const there = qobject_cast<QApplication*>(QCoreApplication::instance())) return *there;
  static char name[] = "tolmex";
  static char* arguments[] = {name, nullptr};
  static int count = 1;
  auto& made = *new QApplication(count, arguments);
  QCoreApplication::setOrganizationName("Tolmex");
  QCoreApplication::setApplicationName("Tolmex");
  QGuiApplication::setDesktopFileName("tolmex");
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setWindowIcon(iconOf(windowFolder() + "/tolmex.svg", Qt::black));
  return made;
}

void openDrawings(Engine& engine, MainWindow& window, const DesktopOptions& options) {
  for (const std::filesystem::path& drawing : options.drawings) {
    if (const Result<> opened = engine.application().openDrawing(drawing); !opened) {
      Problem bare = opened.problem();
      bare.file.clear();
      showSentence(
          &window,
          MainWindow::tr("%1 cannot be opened: %2").arg(QFileInfo(pathOf(drawing)).fileName(), toQt(bare.sentence())));
      continue;
    }
    for (const std::string& variable : options.variables) {
      const std::size_t equals = variable.find('=');
      if (equals == std::string::npos) continue;
      const Result<> set = engine.application().setVariable(text::fromUtf8(variable.substr(0, equals)),
                                                            text::fromUtf8(variable.substr(equals + 1)));
      if (!set) engine.report(set.problem());
    }
  }
}

}  // namespace

int runDesktop(const DesktopOptions& options) {
  QApplication& qt = application();
  setLanguage(options.language == "fi"   ? Language::Finnish
              : options.language == "en" ? Language::English
                                         : languageOfLocale());
  Theme::apply(qt);
  Engine engine(options);
  for (const std::filesystem::path& module : options.modules) {
    if (const Result<> loaded = engine.application().loadModule(module); !loaded) engine.report(loaded.problem());
  }
  MainWindow window(engine, options);
  window.present(QString::fromStdString(options.geometry));
  QTimer::singleShot(0, &window, [&] {
    openDrawings(engine, window, options);
    window.files().offerRecovery();
    if (!options.script.empty()) window.talk().runLines({"SCRIPT", pathOf(options.script)});
  });
  engine.run();
  return static_cast<int>(RunStatus::Done);
}

}  // namespace host::window

extern "C" ADESK_EXPORT int tolmexRunDesktop(const host::window::DesktopOptions& options) {
  return host::window::runDesktop(options);
}

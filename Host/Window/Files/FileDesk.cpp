#include "Window/Files/FileDesk.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QTimer>

#include "Dxf/DxfFile.h"
#include "Platform/Paths.h"
#include "Window/Commands/Language.h"
#include "Window/Files/Autosave.h"
#include "Window/Files/Questions.h"

namespace host::window {
namespace {

constexpr int kMostRecent = 12;
constexpr int kWatchMs = 2000;

QString pathOf(const std::filesystem::path& path) { return QString::fromStdString(path.string()); }
std::filesystem::path pathOf(const QString& path) { return platform::pathOf(path.toStdString()); }
QString nameOf(const editor::Application::OpenDrawing& drawing) { return QFileInfo(toQt(drawing.name)).fileName(); }

/// "12: 2F: the reason" without the file in front.
QString reasonOf(const Problem& problem) {
  Problem bare = problem;
  bare.file.clear();
  return toQt(bare.sentence());
}

}  // namespace

FileDesk::FileDesk(Engine& engine, Conversation& talk, HistoryView& history, Banner& banner, QWidget& window)
    : QObject(&window),
      engine_(engine),
      talk_(talk),
      history_(history),
      banner_(banner),
      window_(window),
      autosave_(new Autosave(engine, this)),
      watch_(new QTimer(this)) {
  connect(&engine_, &Engine::commandEnded, this, &FileDesk::ended);
  connect(&engine_, &Engine::drawingSwitched, this, &FileDesk::drawingSwitched);
  connect(&engine_, &Engine::problemReported, this, [this](const Problem& problem) {
    const bool isOutput = problem.status() == RunStatus::OutputFailed;
    const bool isInput = problem.status() == RunStatus::DrawingUnreadable;
    if (!isOutput && !isInput) return;
    failure_ = reasonOf(problem);
    failureCode_ = problem.code;
  });
  watch_->setInterval(kWatchMs);
  connect(watch_, &QTimer::timeout, this, &FileDesk::lookAtDisk);
  watch_->start();
}

FileDesk::~FileDesk() = default;

editor::Application::OpenDrawing FileDesk::current() const {
  for (const auto& open : engine_.application().drawings()) {
    if (open.drawing == engine_.drawing()) return open;
  }
  return {};
}

// ---- opening --------------------------------------------------------------------------------------------------------

void FileDesk::openByDialog() {
  const QString folder = QSettings().value("files/folder", QDir::homePath()).toString();
  const QStringList files = QFileDialog::getOpenFileNames(
      &window_, tr("Open Drawing"), folder, tr("Drawings (*.dxf *.dwg *.DXF *.DWG)") + ";;" + tr("All files (*)"));
  if (!files.isEmpty()) open(files);
}

void FileDesk::open(const QStringList& files) {
  QStringList lines;
  for (const QString& file : files) lines += {"OPEN", QFileInfo(file).absoluteFilePath()};
  if (!lines.isEmpty()) talk_.comeToRest([this, lines] { talk_.runLines(lines); });
}

void FileDesk::openCopy(const QString& file) {
  talk_.comeToRest([this, file] {
    const Result<> opened = engine_.application().openContent(pathOf(file), {}, pathOf(QFileInfo(file).fileName()));
    if (!opened) {
      showSentence(&window_, tr("%1 cannot be opened: %2").arg(QFileInfo(file).fileName(), reasonOf(opened.problem())));
      return;
    }
    // A copy in which nothing was done yet is nothing to lose.
    engine_.drawing()->setUnmodified();
  });
}

void FileDesk::remember(const QString& file) {
  QStringList files = recent();
  files.removeAll(file);
  files.prepend(file);
  while (files.size() > kMostRecent) files.removeLast();
  QSettings settings;
  settings.setValue("files/recent", files);
  settings.setValue("files/folder", QFileInfo(file).path());
  QStringList times = settings.value("files/recentTimes").toStringList();
  emit recentChanged();
}

QStringList FileDesk::recent() { return QSettings().value("files/recent").toStringList(); }

void FileDesk::forgetRecent(const QString& file) {
  QStringList files = recent();
  files.removeAll(file);
  QSettings().setValue("files/recent", files);
}

void FileDesk::drawingSwitched() {
  const editor::Application::OpenDrawing drawing = current();
  if (drawing.drawing == nullptr) {
    banner_.dismiss();
    return;
  }
  if (!drawing.file.empty() && !stamps_.contains(drawing.drawing)) {
    stamps_[drawing.drawing] = editor::FileStamp(drawing.file);
    remember(pathOf(drawing.file));
  }
  banner_.dismiss();
  tellOpening();
}

bool FileDesk::isDwg(const std::filesystem::path& file) const {
  return pathOf(file).endsWith(".dwg", Qt::CaseInsensitive);
}

void FileDesk::tellOpening() {
  const editor::Application::OpenDrawing drawing = current();
  if (drawing.drawing == nullptr || drawing.file.empty()) return;
  int left = 0;
  for (const Problem& problem : drawing.drawing->problems()) {
    if (problem.code == Code::RecordLeftOut || problem.code == Code::DwgObjectsMissing) ++left;
    if (problem.code != Code::LeftOutTotal) continue;
    static const QRegularExpression number("(\\d+)");
    left = number.match(toQt(problem.text)).captured(1).toInt();
    break;
  }
  if (left > 0) {
    const QString file = pathOf(drawing.file);
    banner_.show(tr("Opened in part: %n objects left out.", nullptr, left),
                 {{tr("Show Problems"), [this] { emit problemsWanted(); }},
                  {tr("Save Repaired Copy…"), [this, file] {
                     const QString name = QFileInfo(file).path() + "/" + QFileInfo(file).completeBaseName() + "-" +
                                          tr("repaired") + ".dxf";
                     const QString to = askForDrawing(name);
                     if (to.isEmpty()) return;
                     const auto repaired = dxf::repairDrawing(pathOf(file));
                     const Result<> written =
                         repaired ? dxf::writeFileWhole(pathOf(to), repaired->bytes) : Result<>(repaired.problem());
                     if (written) {
                       history_.tell(tr("Saved: %1").arg(to.toHtmlEscaped()), HistoryView::Kind::Done);
                     } else {
                       showSentence(&window_, tr("Saving failed: %1").arg(reasonOf(written.problem())));
                     }
                   }}});
  } else if (isDwg(drawing.file) && told_ != drawing.drawing) {
    banner_.show(tr("Will be saved as DXF: %1.").arg(QFileInfo(pathOf(drawing.file)).completeBaseName() + ".dxf"), {});
  }
  told_ = drawing.drawing;
}

// ---- saving ---------------------------------------------------------------------------------------------------------

QString FileDesk::askForDrawing(const QString& proposed) {
  QString file = QFileDialog::getSaveFileName(&window_, tr("Save Drawing"), proposed, tr("Drawings (*.dxf)"));
  if (!file.isEmpty() && !file.endsWith(".dxf", Qt::CaseInsensitive)) file += ".dxf";
  return file;
}

bool FileDesk::mayReplace(bool& saveElsewhere) {
  const editor::Application::OpenDrawing drawing = current();
  const editor::FileStamp now(drawing.file);
  const auto known = stamps_.constFind(drawing.drawing);
  if (known == stamps_.constEnd() || !now.isThere() || !known->isThere() || now == *known) return false;
  const int answer = ask(&window_, tr("Somebody else has saved %1.").arg(nameOf(drawing)),
                         {tr("Save As…"), tr("Replace"), tr("Cancel")});
  saveElsewhere = answer == 0;
  return answer != 1;
}

void FileDesk::save() {
  const editor::Application::OpenDrawing drawing = current();
  if (drawing.drawing == nullptr) return;
  if (drawing.file.empty() || isDwg(drawing.file)) {
    saveAs();
    return;
  }
  const editor::FileStamp now(drawing.file);
  const auto known = stamps_.constFind(drawing.drawing);
  const bool isOthers = known != stamps_.constEnd() && now.isThere() && known->isThere() && now != *known;
  bool saveElsewhere = false;
  if (mayReplace(saveElsewhere)) {
    if (saveElsewhere) saveAs();
    return;
  }
  talk_.runLines(isOthers ? QStringList{"QSAVE", "Yes"} : QStringList{"QSAVE"});
}

void FileDesk::saveAs() {
  const editor::Application::OpenDrawing drawing = current();
  if (drawing.drawing == nullptr) return;
  const QString folder = QSettings().value("files/folder", QDir::homePath()).toString();
  const QFileInfo own(drawing.file.empty() ? folder + "/" + nameOf(drawing) : pathOf(drawing.file));
  const QString file = askForDrawing(own.path() + "/" + own.completeBaseName() + ".dxf");
  if (!file.isEmpty()) talk_.runLines({"SAVEAS", file});
}

void FileDesk::saveFailed(const QString& reason) {
  const int answer = ask(&window_, tr("Saving failed: %1").arg(reason) + " " + tr("The drawing on disk is as it was."),
                         {tr("Retry"), tr("Save As…"), tr("Cancel")});
  if (answer == 0) save();
  if (answer == 1) saveAs();
}

void FileDesk::ended(const CommandResult& result) {
  const QString command = result.command.toUpper();
  const QString failure = std::exchange(failure_, {});
  const editor::Application::OpenDrawing drawing = current();
  if ((command == "QSAVE" || command == "SAVEAS") && drawing.drawing != nullptr) {
    if (!failure.isEmpty()) {
      QTimer::singleShot(0, this, [this, failure] { saveFailed(failure); });
      return;
    }
    if (!drawing.drawing->isModified() && !drawing.file.empty()) {
      stamps_[drawing.drawing] = editor::FileStamp(drawing.file);
      autosave_->drop(*drawing.drawing);
      remember(pathOf(drawing.file));
    }
    return;
  }
  if (command == "OPEN" && !failure.isEmpty()) {
    const bool needsReader = failureCode_ == Code::DwgReaderMissing;
    QTimer::singleShot(0, this, [this, failure, needsReader] {
      if (needsReader) {
        ask(&window_, tr("There is no DWG reader.") + "\n" + failure, {tr("Close")});
      } else {
        showSentence(&window_, tr("The drawing cannot be opened: %1").arg(failure));
      }
    });
  }
}

// ---- leaving --------------------------------------------------------------------------------------------------------

bool FileDesk::mayLeave(const editor::Application::OpenDrawing& drawing, QStringList& lines) {
  if (!drawing.drawing->isModified()) return true;
  const int answer =
      ask(&window_, tr("Save changes to %1?").arg(nameOf(drawing)), {tr("Save"), tr("Don't Save"), tr("Cancel")});
  if (answer == 1) return true;
  if (answer != 0) return false;
  if (drawing.file.empty() || isDwg(drawing.file)) {
    const QString file = askForDrawing(QSettings().value("files/folder", QDir::homePath()).toString() + "/" +
                                       QFileInfo(nameOf(drawing)).completeBaseName() + ".dxf");
    if (file.isEmpty()) return false;
    lines += {"SAVEAS", file};
  } else {
    lines += "QSAVE";
  }
  return true;
}

void FileDesk::close(const database::DrawingDatabase& drawing) {
  talk_.comeToRest([this, &drawing] {
    engine_.application().activateDrawing(drawing);
    close();
  });
}

void FileDesk::close() {
  talk_.comeToRest([this] {
    const editor::Application::OpenDrawing drawing = current();
    if (drawing.drawing == nullptr) return;
    QStringList lines;
    if (!mayLeave(drawing, lines)) return;
    const bool isDropped = drawing.drawing->isModified() && lines.isEmpty();
    if (isDropped)
      lines = QStringList{"CLOSE", "No"};
    else
      lines += "CLOSE";
    // What is being written of it has to be whole before it goes.
    autosave_->finish();
    autosave_->drop(*drawing.drawing);
    stamps_.remove(drawing.drawing);
    kept_.remove(drawing.drawing);
    talk_.runLines(lines);
  });
}

void FileDesk::quit() {
  talk_.comeToRest([this] {
    std::vector<editor::Application::OpenDrawing> changed;
    for (const auto& open : engine_.application().drawings()) {
      if (open.drawing->isModified()) changed.push_back(open);
    }
    QStringList names;
    for (const auto& drawing : changed) names += nameOf(drawing);
    std::vector<bool> saved(changed.size(), false);
    if (changed.size() == 1) {
      QStringList lines;
      if (!mayLeave(changed.front(), lines)) return;
      if (!lines.isEmpty()) {
        engine_.application().activateDrawing(*changed.front().drawing);
        talk_.runLines(lines);
        talk_.comeToRest([this] {
          // Saving may have failed, which has been told.
          if (engine_.drawing() == nullptr || !engine_.drawing()->isModified()) emit quitting();
        });
        return;
      }
    } else if (changed.size() > 1) {
      const std::optional<std::vector<bool>> ticks = askWhichToSave(&window_, names);
      if (!ticks) return;
      QStringList lines;
      for (std::size_t i = 0; i < changed.size(); ++i) {
        if (!(*ticks)[i]) continue;
        QString file = pathOf(changed[i].file);
        if (file.isEmpty() || isDwg(changed[i].file)) file = askForDrawing(names[static_cast<qsizetype>(i)]);
        if (file.isEmpty()) return;
        engine_.application().activateDrawing(*changed[i].drawing);
        const Result<> written = engine_.application().saveDrawing(pathOf(file));
        if (!written) {
          showSentence(&window_, tr("Saving failed: %1").arg(reasonOf(written.problem())));
          return;
        }
        changed[i].drawing->setUnmodified();
      }
    }
    emit quitting();
  });
}

// ---- other files ----------------------------------------------------------------------------------------------------

void FileDesk::runScript() {
  const QString file = QFileDialog::getOpenFileName(&window_, tr("Run Script"),
                                                    QSettings().value("files/folder", QDir::homePath()).toString(),
                                                    tr("Scripts (*.scr)") + ";;" + tr("All files (*)"));
  if (!file.isEmpty()) talk_.runLines({"SCRIPT", file});
}

void FileDesk::saveScript() {
  const QFileInfo own(pathOf(current().file));
  const QString folder = own.path().isEmpty() ? QDir::homePath() : own.path();
  QString file = QFileDialog::getSaveFileName(&window_, tr("Save as Script"),
                                              folder + "/" + own.completeBaseName() + ".scr", tr("Scripts (*.scr)"));
  if (file.isEmpty()) return;
  if (!file.endsWith(".scr", Qt::CaseInsensitive)) file += ".scr";
  talk_.runLines({"SAVESCRIPT", file});
}

void FileDesk::loadModule() {
  const QString file =
      QFileDialog::getOpenFileName(&window_, tr("Load Add-in"), QDir::homePath(), tr("Add-ins (*.arx)"));
  if (!file.isEmpty()) talk_.runLines({"ARX", "Load", file});
}

// ---- the disk -------------------------------------------------------------------------------------------------------

void FileDesk::lookAtDisk() {
  if (!engine_.isWaiting()) return;
  const editor::Application::OpenDrawing drawing = current();
  if (drawing.drawing == nullptr || drawing.file.empty()) return;
  const editor::FileStamp now(drawing.file);
  const auto known = stamps_.constFind(drawing.drawing);
  if (known == stamps_.constEnd() || !now.isThere() || !known->isThere() || now == *known) return;
  if (kept_.value(drawing.drawing) == now) return;
  kept_[drawing.drawing] = now;
  const QString file = pathOf(drawing.file);
  const auto reload = [this, file] {
    talk_.comeToRest([this, file] {
      const editor::Application::OpenDrawing present = current();
      if (present.drawing == nullptr) return;
      if (present.drawing->isModified() &&
          ask(&window_, tr("Reading %1 again drops your changes.").arg(nameOf(present)),
              {tr("Cancel"), tr("Reload")}) != 1)
        return;
      stamps_.remove(present.drawing);
      kept_.remove(present.drawing);
      autosave_->drop(*present.drawing);
      QStringList lines{"CLOSE"};
      if (present.drawing->isModified()) lines += "No";
      talk_.runLines(lines + QStringList{"OPEN", file});
    });
  };
  banner_.show(tr("%1 has changed on disk.").arg(nameOf(drawing)), {{tr("Reload"), reload}, {tr("Keep"), {}}});
}

// ---- recovery -------------------------------------------------------------------------------------------------------

void FileDesk::offerRecovery() {
  for (const Recovery& recovery : Autosave::found()) {
    const QString time = QStringLiteral("H.mm");
    const QString saved = recovery.savedAt.isValid() ? recovery.savedAt.toString(time) : QStringLiteral("–");
    const int answer = ask(&window_,
                           tr("Tolmex closed unexpectedly. %1: recovery of %2, saved %3.")
                               .arg(recovery.name, recovery.at.toString(time), saved),
                           {tr("Recover"), tr("Open Saved"), tr("Decide Later")});
    if (answer == 0) {
      const Result<> opened =
          engine_.application().openContent(pathOf(recovery.content), pathOf(recovery.file), pathOf(recovery.name));
      if (!opened) {
        showSentence(&window_, tr("%1 cannot be opened: %2").arg(recovery.name, reasonOf(opened.problem())));
        continue;
      }
      autosave_->saveNow();
      autosave_->finish();
      Autosave::forget(recovery);
    } else if (answer == 1) {
      Autosave::forget(recovery);
      if (!recovery.file.isEmpty()) open({recovery.file});
    }
  }
}

}  // namespace host::window

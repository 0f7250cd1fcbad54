// What the window says of a command that has ended, and where the links of its sentences lead.
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>
#include <algorithm>

#include "Geometry/Layers.h"
#include "Window/Commands/Language.h"
#include "Window/Frame/Announce.h"
#include "Window/Frame/Feedback.h"
#include "Window/Frame/MainWindow.h"
#include "Window/Panels/Facts.h"

namespace host::window {

void MainWindow::tellResult(const CommandResult& result) {
  tellFiles(result);
  tellScript(result);
  const Feedback feedback = feedbackOf(result, tables_);
  if (feedback.isNothing) {
    QStringList layers;
    for (const database::Slot* const entity : feedback.shown) {
      geometry::LayerStates states(entity->database());
      const geometry::LayerState& state = states.at(entity->layer);
      const QString layer = toQt(state.name);
      if (state.locked && !layers.contains(layer)) layers += layer;
    }
    for (const QString& layer : layers) tellLocked(layer);
  }
  if (!result.changed.empty()) canvas_->blink(result.changed);
  colourIcons();
  if (feedback.text.isEmpty() || (feedback.isNothing && talk_->hadDialog())) return;
  QStringList handles;
  constexpr std::size_t kMostShown = 200;
  for (std::size_t i = 0; i < std::min(feedback.shown.size(), kMostShown); ++i)
    handles += QString::number(feedback.shown[i]->handle, 16);
  announce(*history_, feedback.text);
  history_->tell(feedback.text.toHtmlEscaped() + " <a href=\"show:" + handles.join(',') + "\">" + tr("Show") + "</a>",
                 feedback.isNothing ? HistoryView::Kind::Error : HistoryView::Kind::Done);
}

/// What a command wrote, with the ways to it.
void MainWindow::tellFiles(const CommandResult& result) {
  const QString command = result.command.toUpper();
  if (result.wasCancelled || result.answers.isEmpty() || (command != "PICTURE" && command != "SAVESCRIPT")) return;
  if (engine_.problems().size() > result.problemsBefore) return;
  QString name = result.answers.front();
  if (command == "PICTURE") name = name.section(" --", 0, 0).trimmed();
  if (name.size() > 1 && name.startsWith('"') && name.endsWith('"')) name = name.mid(1, name.size() - 2);
  const QFileInfo file(name);
  if (!file.exists()) return;
  const auto link = [](const QString& path, const QString& text) {
    return " <a href=\"open:" + QString::fromLatin1(QUrl::toPercentEncoding(path)) + "\">" + text + "</a>";
  };
  history_->tell(tr("Saved: %1").arg(file.fileName().toHtmlEscaped()) + link(file.absoluteFilePath(), tr("Open")) +
                     link(file.absolutePath(), tr("Open Folder")),
                 HistoryView::Kind::Done);
}

void MainWindow::tellScript(const CommandResult& result) {
  if (result.command.toUpper() != "SCRIPT" || engine_.problems().size() <= result.problemsBefore) return;
  const Problem& problem = engine_.problems().back();
  const QString script = result.answers.isEmpty() ? QString() : QFileInfo(result.answers.front()).completeBaseName();
  if (problem.line == 0 || script.isEmpty() || !toQt(problem.file).startsWith(script)) return;
  banner_->show(tr("The script stopped at line %1: %2").arg(problem.line).arg(toQt(problem.text)),
                {{tr("Undo"), [this] { talk_->runLines({"U"}); }}, {tr("Keep"), {}}});
}

void MainWindow::tellLocked(const QString& layer) {
  const QString command = engine_.input().isAtRest() || engine_.command().isEmpty() ? QString() : engine_.command();
  const QStringList lines{"LAYER", "Unlock", quotedAnswer(patternOf(layer)), QString()};
  const QByteArray link =
      QUrl::toPercentEncoding((command.isEmpty() ? lines : lines + QStringList(command)).join('\n'));
  history_->tell(tr("Layer %1 is locked.").arg(layer.toHtmlEscaped()) +
                     " <a href=\"lines:" + QString::fromLatin1(link) + "\">" + tr("Unlock") + "</a>",
                 HistoryView::Kind::Note);
}

void MainWindow::followLink(const QString& link) {
  if (link.startsWith("run:")) {
    talk_->runLines({link.mid(4)});
  } else if (link.startsWith("lines:")) {
    talk_->runLines(QUrl::fromPercentEncoding(link.mid(6).toLatin1()).split('\n'));
  } else if (link.startsWith("open:")) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(QUrl::fromPercentEncoding(link.mid(5).toLatin1())));
  } else if (link.startsWith("show:") && engine_.isWaiting() && engine_.drawing() != nullptr) {
    std::vector<database::Slot*> shown;
    for (const QString& handle : link.mid(5).split(',', Qt::SkipEmptyParts)) {
      database::Slot* const entity = engine_.drawing()->findHandle(handle.toULongLong(nullptr, 16));
      if (entity != nullptr && !entity->isErased() && entity->isEntity()) shown.push_back(entity);
    }
    if (shown.empty()) return;
    canvas_->zoomTo(shown);
    canvas_->blink(shown);
  }
}

}  // namespace host::window

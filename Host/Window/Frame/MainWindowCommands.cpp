// What the rows of the tables do when they are clicked.
#include <QApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QTextBrowser>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

#include "Editor/Prompter.h"
#include "Window/Commands/Language.h"
#include "Window/Frame/MainWindow.h"
#include "Window/Frame/Theme.h"
#include "Window/Output/ExportDialog.h"
#include "Window/Panels/Facts.h"
#include "accmd.h"

namespace host::window {

void MainWindow::trigger(const MenuRow& row) {
  if (row.isOfWindow()) {
    runOfWindow(row.command.mid(7));
    return;
  }
  const QString command = row.commandName();
  // The view is free: it moves while a command asks, and is no answer.
  if (command == "ZOOM" && row.command != "ZOOM") {
    zoom(row.command.section(',', 1, 1));
    return;
  }
  // Names of files are asked for by a dialog; the command gets them as its answers.
  if (command == "OPEN") return files_->openByDialog();
  if (command == "QSAVE") return files_->save();
  if (command == "SAVEAS") return files_->saveAs();
  if (command == "CLOSE") return files_->close();
  if (command == "QUIT") return files_->quit();
  if (command == "SCRIPT") return files_->runScript();
  if (command == "SAVESCRIPT") return files_->saveScript();
  if (command == "ARX") return files_->loadModule();
  if (command == "LAYOUT") return openLayoutMenu();
  if (command == "PICTURE") {
    if (engine_.drawing() != nullptr)
      talk_->comeToRest([this] { exportPicture(*this, engine_, *talk_, *canvas_, ExportKind::File); });
    return;
  }
  talk_->run(row);
}

/// SCREENSHOT: a picture of the window as it is, for instructions. Nothing of it is recorded.
void MainWindow::addScreenshot() {
  engine_.application().addCommand(
      L"SCREENSHOT", ACRX_CMD_NO_UNDO_MARKER,
      [this](editor::Prompter& prompter) {
        const auto file = prompter.text(L"Enter name of picture file: ");
        if (!file || file.value.empty()) return;
        const QString name = toQt(file.value);
        if (!name.endsWith(".png", Qt::CaseInsensitive)) {
          prompter.refuse(L"The picture's name must end in .png.");
        } else if (!grab().save(name, "PNG")) {
          prompter.fail(Code::OutputFailed, L"the picture could not be written");
        }
      },
      L"draws the window into a .png file");
}

void MainWindow::zoom(const QString& option) {
  if (engine_.drawing() == nullptr) return;
  if (option == "E") canvas_->zoomToDrawing();
  if (option == "W") canvas_->askForWindow();
  if (option == "P") canvas_->zoomPrevious();
  if (option == "O") {
    const auto& chosen = engine_.input().isAtRest() ? talk_->selection() : engine_.highlighted();
    if (!chosen.empty()) canvas_->zoomTo(chosen);
  }
}

void MainWindow::runOfWindow(const QString& name) {
  if (name == "dark-ground") setDarkGround(!isDark_);
  if (name == "properties") choosePanel(SidePanel::Properties);
  if (name == "elements") choosePanel(SidePanel::Elements);
  if (name == "layers") choosePanel(SidePanel::Layers);
  if (name == "problems") choosePanel(SidePanel::Problems);
  if (name == "drawing-only") setDrawingOnly(!isDrawingOnly_);
  if (name == "reset-layout") resetLayout();
  if (name == "select-same") selectSame();
  if (name == "guide") showGuide();
  if (name == "keys") showKeys();
  if (name == "print" && engine_.drawing() != nullptr)
    talk_->comeToRest([this] { exportPicture(*this, engine_, *talk_, *canvas_, ExportKind::Printer); });
}

void MainWindow::takeSteps(const QString& command, int count) {
  QStringList lines;
  for (int i = 0; i < count; ++i) lines += command;
  talk_->runLines(lines);
}

/// Things of the same type and layer.
void MainWindow::selectSame() {
  if (!engine_.input().isAtRest() || talk_->selection().empty()) return;
  std::vector<database::Slot*> same;
  for (database::Slot* const entity : livingEntities(*engine_.application().currentSpace())) {
    const bool isSame = std::ranges::any_of(talk_->selection(), [entity](const database::Slot* one) {
      return one->type == entity->type && one->layer == entity->layer;
    });
    if (isSame) same.push_back(entity);
  }
  talk_->select(same);
}

void MainWindow::openLayoutMenu() {
  if (engine_.drawing() == nullptr || !engine_.isWaiting()) return;
  QMenu menu;
  const std::wstring current = engine_.application().currentLayoutName();
  for (const auto& [name, block] : engine_.drawing()->layouts()) {
    QAction* const action = menu.addAction(toQt(name));
    action->setCheckable(true);
    action->setChecked(name == current);
  }
  const QAction* const chosen = menu.exec(QCursor::pos());
  if (chosen != nullptr) talk_->runLines({"LAYOUT", quotedAnswer(chosen->text())});
}

void MainWindow::showGuide() {
  const QString guide = QString::fromStdString(options_.guide.string());
  if (!guide.isEmpty() && QFile::exists(guide)) {
    auto* const dialog = new QDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(tr("Guide"));
    dialog->resize(860, 700);
    auto* const layout = new QVBoxLayout(dialog);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* const text = new QTextBrowser;
    text->setFrameShape(QFrame::NoFrame);
    text->setOpenExternalLinks(true);
    text->setSearchPaths({QFileInfo(guide).path()});
    text->document()->setDocumentMargin(24);
    QFile file(guide);
    if (file.open(QIODevice::ReadOnly)) text->setMarkdown(QString::fromUtf8(file.readAll()));
    layout->addWidget(text);
    dialog->show();
    return;
  }
  history_->tell(tr("The guide is not installed."), HistoryView::Kind::Error);
}

void MainWindow::showKeys() {
  QString html = "<table cellspacing=\"0\" cellpadding=\"3\">";
  const auto row = [&html](const QString& keys, const QString& text) {
    html +=
        "<tr><td><b>" + keys.toHtmlEscaped() + "</b>&nbsp;&nbsp;&nbsp;</td><td>" + text.toHtmlEscaped() + "</td></tr>";
  };
  for (const MenuRow* const each : tables_.all()) {
    const QAction* const action = actions_->of(*each);
    if (action == nullptr || action->shortcut().isEmpty()) continue;
    QString name = each->name();
    row(action->shortcut().toString(QKeySequence::NativeText),
        name.remove(": %1") + QStringLiteral(" – ") + each->tip());
  }
  row("F2", tr("History large or small"));
  row("F3", tr("Snapping on or off"));
  row("F8", tr("Straight directions on or off"));
  row("F9", tr("Pointing with the arrow keys; Insert is a click"));
  row("Tab", tr("The next thing beneath the cursor"));
  row("Esc", tr("Cancels; nothing changes"));
  html += "</table>";
  auto* const dialog = new QDialog(this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setWindowTitle(tr("Keys"));
  dialog->resize(620, 640);
  auto* const layout = new QVBoxLayout(dialog);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* const text = new QTextBrowser;
  text->setFrameShape(QFrame::NoFrame);
  text->document()->setDocumentMargin(20);
  text->setHtml(html);
  layout->addWidget(text);
  dialog->show();
}

}  // namespace host::window

#include "Window/Frame/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QDropEvent>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QMimeData>
#include <QScreen>
#include <QSettings>
#include <QShortcut>
#include <QToolBar>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

#include "Window/Commands/Icons.h"
#include "Window/Commands/Language.h"
#include "Window/Files/Autosave.h"
#include "Window/Frame/Announce.h"
#include "Window/Frame/Feedback.h"
#include "Window/Frame/Theme.h"
#include "Window/Panels/Facts.h"
#include "Window/Panels/ProblemsPanel.h"

namespace host::window {
namespace {

constexpr int kLeastWidth = 960, kLeastHeight = 560;
constexpr int kPanelDelayMs = 120;
// Below these sizes the parts fold, in this order.
constexpr int kSideFolds = 1500, kHistoryFolds = 820, kPaletteFolds = 1400, kToolWordsFold = 1200,
              kToggleWordsFold = 1100;
constexpr int kHistoryLines = 3;

QDockWidget* dockOf(const QString& name, const QString& title, QWidget* inside) {
  auto* const dock = new QDockWidget(title);
  dock->setObjectName(name);
  dock->setWidget(inside);
  return dock;
}

}  // namespace

MainWindow::MainWindow(Engine& engine, const DesktopOptions& options) : engine_(engine), options_(options) {
  setObjectName("tolmex");
  setAcceptDrops(true);
  setMinimumSize(kLeastWidth, kLeastHeight);
  QStringList modules;
  for (const std::filesystem::path& module : options_.modules) modules += QString::fromStdString(module.string());
  tables_.load(windowFolder(), modules);
  addScreenshot();
  QStringList names;
  for (const std::wstring& name : engine_.application().commandNames()) names += toQt(name).toUpper();
  names.removeDuplicates();
  completion_ = std::make_shared<Completion>(tables_, names);
  actions_ = new Actions(tables_, *this);
  actions_->setParent(this);
  actions_->fill(*menuBar());
  buildCentre();
  talk_ = new Conversation(engine_, tables_, *canvas_, *line_, *history_);
  talk_->setParent(this);
  buildTools();
  buildDocks();
  files_ = new FileDesk(engine_, *talk_, *history_, *banner_, *this);
  line_->setCompletion(completion_);
  line_->setHistory(QSettings().value("line/history").toStringList());
  connectParts();
  addKeys();
  qApp->installEventFilter(this);
  setDarkGround(QSettings().value("view/darkGround", false).toBool());
  showDrawing();
  line_->focusLine();
}

MainWindow::~MainWindow() { qApp->removeEventFilter(this); }

// ---- parts ----------------------------------------------------------------------------------------------------------

void MainWindow::buildCentre() {
  desk_ = new QMainWindow(nullptr, Qt::Widget);
  desk_->setWindowFlags(Qt::Widget);
  desk_->setDockOptions(QMainWindow::AnimatedDocks | QMainWindow::AllowTabbedDocks);
  auto* const middle = new QWidget;
  auto* const rows = new QVBoxLayout(middle);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(0);
  tabs_ = new QTabBar;
  tabs_->setTabsClosable(true);
  tabs_->setDocumentMode(true);
  tabs_->setExpanding(false);
  tabs_->setElideMode(Qt::ElideMiddle);
  tabs_->setAccessibleName(tr("Open drawings"));
  banner_ = new Banner;
  waiting_ = new Banner;
  first_ = new Banner;
  pages_ = new QStackedWidget;
  canvas_ = new CanvasView;
  canvas_->setAccessibleName(tr("Drawing"));
  start_ = new StartPage(options_.examples);
  pages_->addWidget(start_);
  pages_->addWidget(canvas_);
  rows->addWidget(tabs_);
  // Messages lie over the page: one that comes or goes must not move the drawing under the cursor.
  auto* const messages = new QWidget;
  auto* const lines = new QVBoxLayout(messages);
  lines->setContentsMargins(0, 0, 0, 0);
  lines->setSpacing(0);
  for (Banner* const each : {first_, waiting_, banner_}) lines->addWidget(each);
  auto* const layers = new QGridLayout;
  layers->addWidget(pages_, 0, 0);
  layers->addWidget(messages, 0, 0, Qt::AlignTop);
  messages->raise();
  rows->addLayout(layers, 1);
  desk_->setCentralWidget(middle);

  auto* const whole = new QWidget;
  auto* const columns = new QVBoxLayout(whole);
  columns->setContentsMargins(0, 0, 0, 0);
  columns->setSpacing(0);
  history_ = new HistoryView;
  line_ = new CommandLine;
  line_->setFixedHeight(32);
  auto* const rule = new QFrame;
  rule->setFixedHeight(1);
  rule->setStyleSheet("background: " + Theme::current().line.name());
  columns->addWidget(desk_, 1);
  columns->addWidget(rule);
  columns->addWidget(history_);
  columns->addWidget(line_);
  setCentralWidget(whole);
  status_ = new StatusLine;
  setStatusBar(status_);
}

void MainWindow::buildTools() {
  tools_ = new QToolBar(tr("Tools"));
  tools_->setObjectName("tools");
  tools_->setMovable(false);
  tools_->setContextMenuPolicy(Qt::PreventContextMenu);
  tools_->setIconSize({20, 20});
  tools_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  const auto add = [this](const char* command) {
    if (QAction* const action = actions_->of(command)) tools_->addAction(action);
  };
  const auto addSteps = [this](const QString& command) {
    auto* const button = new QToolButton;
    button->setDefaultAction(actions_->of(command));
    button->setPopupMode(QToolButton::MenuButtonPopup);
    button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    auto* const menu = new QMenu(button);
    connect(menu, &QMenu::aboutToShow, this, [this, menu, command] {
      menu->clear();
      if (!engine_.isWaiting() || engine_.drawing() == nullptr) return;
      constexpr std::size_t kMostSteps = 20;
      const auto steps =
          command == "U" ? engine_.application().undoNames(kMostSteps) : engine_.application().redoNames(kMostSteps);
      int count = 0;
      for (const std::wstring& step : steps) {
        QAction* const action = menu->addAction(tables_.title(toQt(step)));
        ++count;
        connect(action, &QAction::triggered, this, [this, command, count] { takeSteps(command, count); });
      }
      if (steps.empty()) menu->addAction(tr("Nothing"))->setEnabled(false);
    });
    button->setMenu(menu);
    tools_->addWidget(button);
    return button;
  };
  add("OPEN");
  add("QSAVE");
  tools_->addSeparator();
  undo_ = addSteps("U");
  redo_ = addSteps("REDO");
  tools_->addSeparator();
  add("ZOOM,E");
  add("ZOOM,W");
  add("ZOOM,P");
  tools_->addSeparator();
  add("PLINE");
  add("TEXT");
  tools_->addSeparator();
  add("PICTURE");
  addToolBar(tools_);
}

void MainWindow::buildDocks() {
  palette_ = new Palette(tables_, *actions_);
  paletteDock_ = dockOf("paletteDock", tr("Palette"), palette_);
  side_ = new SidePanel({engine_, tables_, *canvas_, *talk_, options_.ownFacts});
  sideDock_ = dockOf("sideDock", tr("Panels"), side_);
  for (QDockWidget* const dock : {paletteDock_, sideDock_}) {
    dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetClosable);
    dock->setTitleBarWidget(new QWidget);  // the panels name themselves
  }
  desk_->addDockWidget(Qt::LeftDockWidgetArea, paletteDock_);
  desk_->addDockWidget(Qt::RightDockWidgetArea, sideDock_);
  desk_->resizeDocks({sideDock_}, {SidePanel::kWidth}, Qt::Horizontal);
}

void MainWindow::connectParts() {
  engine_.setAlive(canvas_, status_->stopButton());
  connect(actions_, &Actions::triggered, this, &MainWindow::trigger);
  connect(&engine_, &Engine::asked, this, &MainWindow::refresh);
  connect(&engine_, &Engine::drawingSwitched, this, [this] {
    showDrawing();
    if (engine_.isWaiting()) refresh();
  });
  connect(&engine_, &Engine::changed, this,
          [this](const editor::DrawingChange& change) { canvas_->drawingChanged(change); });
  connect(&engine_, &Engine::viewRegenerated, this, [this] {
    editor::DrawingChange all;
    all.isWhole = true;
    canvas_->drawingChanged(all);
  });
  connect(&engine_, &Engine::progressShown, this, [this](const QString& label, double fraction) {
    const QString name = engine_.command().isEmpty() ? label : tables_.title(engine_.command());
    status_->setProgress(name, fraction);
  });
  // The drawing stands still until here, and changes from now on.
  connect(&engine_, &Engine::workBegan, canvas_, &CanvasView::finishLayingOut);
  connect(&engine_, &Engine::interrupted, this,
          [this] { history_->tell(tr("Stopped. The drawing is as it was."), HistoryView::Kind::Note); });
  connect(&engine_, &Engine::closeWanted, this, [this] { QTimer::singleShot(0, files_, &FileDesk::quit); });
  connect(talk_, &Conversation::commandEnded, this, &MainWindow::tellResult);
  connect(talk_, &Conversation::lockedPicked, this, &MainWindow::tellLocked);
  connect(talk_, &Conversation::selectionChanged, this, [this] { panelTimer_.start(); });
  connect(talk_, &Conversation::hintChanged, this, [this] {
    if (!engine_.isWorking() || talk_->state() == Conversation::State::Dialog) status_->setHint(talk_->hint());
    const QString dialog = talk_->waitingDialog();
    if (dialog.isEmpty()) {
      waiting_->dismiss();
    } else if (!waiting_->isVisible()) {
      waiting_->show(tr("%1 is waiting").arg(dialog), {});
    }
    actions_->setEnabledAll(dialog.isEmpty());
    tabs_->setEnabled(dialog.isEmpty());
  });
  panelTimer_.setSingleShot(true);
  panelTimer_.setInterval(kPanelDelayMs);
  connect(&panelTimer_, &QTimer::timeout, this, [this] {
    if (engine_.isWaiting()) side_->refresh();
  });

  connect(canvas_, &CanvasView::cursorMoved, status_, &StatusLine::setCursorAt);
  connect(canvas_, &CanvasView::viewChanged, this, &MainWindow::tellView);
  connect(canvas_, &CanvasView::hoverChanged, this, [this](const database::Slot* entity) {
    if (entity == nullptr) return announce(*canvas_, {});
    announce(*canvas_, kindOf(*entity) + ", " + toQt(entity->database().layerName(entity->layer)));
  });
  connect(&engine_, &Engine::viewWanted, this, [this](const curves::Box& box) {
    if (box.isEmpty()) {
      canvas_->zoomToDrawing();
    } else {
      canvas_->zoomTo(box);
    }
  });
  connect(canvas_, &CanvasView::eraseWanted, this, [this] {
    if (const MenuRow* const row = tables_.row("ERASE")) trigger(*row);
  });
  connect(canvas_, &CanvasView::doubleClicked, this, [this](database::Slot* entity) {
    if (entity == nullptr || !engine_.input().isAtRest()) return;
    const QString layer = toQt(entity->database().layerName(entity->layer));
    const MenuRow* const maker = tables_.makerOf(layer);
    const MenuRow* const row = maker != nullptr ? tables_.find(maker->doubleClick) : nullptr;
    if (row == nullptr) {
      side_->open(SidePanel::Properties);
      return;
    }
    talk_->select({entity});
    talk_->run(*row);
  });
  connect(canvas_, &CanvasView::contextMenuWanted, this, [this](const QPoint& global) {
    QMenu menu;
    for (const char* const command : {"U", "REDO"}) menu.addAction(actions_->of(command));
    menu.addSeparator();
    for (const char* const command : {"ERASE", "MOVE", "COPY", "ROTATE"}) menu.addAction(actions_->of(command));
    menu.addSeparator();
    for (const char* const command : {"ZOOM,E", "ZOOM,O", "ZOOM,P"}) menu.addAction(actions_->of(command));
    menu.exec(global);
  });
  connect(canvas_, &CanvasView::straysLeftOut, this, [this](int count) {
    banner_->show(tr("%n objects lie far away.", nullptr, count), {{tr("Show All"), [this] { canvas_->zoomToAll(); }}});
  });
  canvas_->setTooltipSource([this](const AcGePoint3d& at) {
    return engine_.isWaiting() ? engine_.application().tooltipAt(at) : std::wstring();
  });

  connect(line_, &CommandLine::tabPressed, this, [this](bool backwards) {
    QKeyEvent key(QEvent::KeyPress, backwards ? Qt::Key_Backtab : Qt::Key_Tab,
                  backwards ? Qt::ShiftModifier : Qt::NoModifier);
    canvas_->takeKey(&key);
  });
  connect(history_, &HistoryView::linkClicked, this, &MainWindow::followLink);

  connect(status_, &StatusLine::stopWanted, &engine_, &Engine::stop);
  status_->snap().setChecked(canvas_->isSnapping());
  status_->ortho().setChecked(canvas_->isOrtho());
  connect(&status_->snap(), &QToolButton::toggled, canvas_, &CanvasView::setSnapping);
  connect(&status_->ortho(), &QToolButton::toggled, canvas_, &CanvasView::setOrtho);
  connect(&status_->ground(), &QToolButton::toggled, this, &MainWindow::setDarkGround);
  connect(status_, &StatusLine::snapKindsChanged, this, [this](std::uint32_t kinds) {
    canvas_->setSnapKinds(kinds);
    QSettings().setValue("view/snapKinds", kinds);
  });
  canvas_->setSnapKinds(QSettings().value("view/snapKinds", canvas_->snapKinds()).toUInt());
  status_->setSnapKinds(canvas_->snapKinds());

  connect(start_, &StartPage::openWanted, files_, &FileDesk::openByDialog);
  connect(start_, &StartPage::newWanted, this, [this] { talk_->runLines({"NEW"}); });
  connect(start_, &StartPage::exampleWanted, files_, &FileDesk::openCopy);
  connect(start_, &StartPage::recentWanted, this, [this](const QString& file) { files_->open({file}); });
  connect(files_, &FileDesk::problemsWanted, this, [this] { choosePanel(SidePanel::Problems); });
  connect(files_, &FileDesk::quitting, this, [this] {
    saveLayout();
    QSettings().setValue("line/history", line_->history().mid(std::max<qsizetype>(0, line_->history().size() - 200)));
    files_->autosave().dropAll();
    engine_.input().leave();
  });

  connect(tabs_, &QTabBar::currentChanged, this, [this](int index) {
    if (isShowingTabs_ || index < 0) return;
    const auto open = engine_.application().drawings();
    if (static_cast<std::size_t>(index) >= open.size()) return;
    const database::DrawingDatabase* const wanted = open[static_cast<std::size_t>(index)].drawing;
    talk_->comeToRest([this, wanted] { engine_.application().activateDrawing(*wanted); });
  });
  connect(tabs_, &QTabBar::tabCloseRequested, this, [this](int index) {
    const auto open = engine_.application().drawings();
    if (static_cast<std::size_t>(index) < open.size()) files_->close(*open[static_cast<std::size_t>(index)].drawing);
  });
}

void MainWindow::addKeys() {
  const auto key = [this](const QKeySequence& keys, const std::function<void()>& act) {
    auto* const shortcut = new QShortcut(keys, this);
    connect(shortcut, &QShortcut::activated, this, act);
  };
  key(Qt::Key_F2, [this] { history_->setLarge(!history_->isLarge(), height() * 2 / 5); });
  key(Qt::Key_F3, [this] { status_->snap().toggle(); });
  key(Qt::Key_F8, [this] { status_->ortho().toggle(); });
  key(Qt::Key_F9, [this] {
    canvas_->setFocus();
    canvas_->setKeyboardPointing(true);
  });
  key(QKeySequence("Ctrl+Shift+Z"), [this] {
    if (const MenuRow* const row = tables_.row("REDO")) trigger(*row);
  });
}

// ---- layout ---------------------------------------------------------------------------------------------------------

void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  fold();
}

/// A part folds when the window gets too small for it and unfolds when there is room again; what the user shut stays
/// so.
void MainWindow::fold() {
  const bool wanted[] = {width() < kSideFolds, height() < kHistoryFolds, width() < kPaletteFolds};
  side_->setNarrow(wanted[0], desk_->centralWidget());
  if (wanted[1] != isFolded_[1] || !history_->isVisible())
    history_->setLines(wanted[1] || isDrawingOnly_ ? 0 : kHistoryLines);
  palette_->setNarrow(wanted[2]);
  std::copy(std::begin(wanted), std::end(wanted), std::begin(isFolded_));
  tools_->setToolButtonStyle(width() < kToolWordsFold ? Qt::ToolButtonIconOnly : Qt::ToolButtonTextBesideIcon);
  if (undo_ != nullptr) undo_->setToolButtonStyle(Qt::ToolButtonIconOnly);
  if (redo_ != nullptr) redo_->setToolButtonStyle(Qt::ToolButtonIconOnly);
  status_->setShort(width() < kToggleWordsFold);
  if (history_->isLarge()) history_->setLarge(true, height() * 2 / 5);
}

QString MainWindow::layoutKey() const {
  const QSize size = screen() != nullptr ? screen()->size() : QSize();
  return QString("layout/%1x%2").arg(size.width()).arg(size.height());
}

void MainWindow::saveLayout() {
  QSettings settings;
  settings.setValue(layoutKey() + "/window", saveGeometry());
  settings.setValue(layoutKey() + "/docks", desk_->saveState());
}

void MainWindow::restoreLayout() {
  const QSettings settings;
  restoreGeometry(settings.value(layoutKey() + "/window").toByteArray());
  desk_->restoreState(settings.value(layoutKey() + "/docks").toByteArray());
}

void MainWindow::present(const QString& size) {
  const QStringList sides = size.split('x');
  resize(1440, 900);
  restoreLayout();
  if (sides.size() == 2) resize(sides[0].toInt(), sides[1].toInt());
  show();
  fold();
}

void MainWindow::resetLayout() {
  QSettings().remove(layoutKey());
  setDrawingOnly(false);
  desk_->addDockWidget(Qt::LeftDockWidgetArea, paletteDock_);
  desk_->addDockWidget(Qt::RightDockWidgetArea, sideDock_);
  paletteDock_->show();
  sideDock_->show();
  desk_->resizeDocks({sideDock_}, {SidePanel::kWidth}, Qt::Horizontal);
  history_->setLarge(false, 0);
  fold();
}

void MainWindow::setDrawingOnly(bool only) {
  isDrawingOnly_ = only;
  paletteDock_->setVisible(!only);
  sideDock_->setVisible(!only);
  tools_->setVisible(!only);
  side_->shut();
  history_->setLines(only || isFolded_[1] ? 0 : kHistoryLines);
}

void MainWindow::choosePanel(int panel) {
  if (isDrawingOnly_) setDrawingOnly(false);
  sideDock_->show();
  side_->open(panel);
}

void MainWindow::setDarkGround(bool dark) {
  isDark_ = dark;
  canvas_->setDarkGround(dark);
  const QSignalBlocker quiet(status_->ground());
  status_->ground().setChecked(dark);
  QSettings().setValue("view/darkGround", dark);
}

// ---- what is shown --------------------------------------------------------------------------------------------------

void MainWindow::showDrawing() {
  database::DrawingDatabase* const drawing = engine_.drawing();
  std::vector<const database::DrawingDatabase*> open;
  for (const auto& one : engine_.application().drawings()) open.push_back(one.drawing);
  canvas_->keepOnly(open);
  if (drawing != nullptr && !QSettings().value("hints/isBegun").toBool() && !first_->isVisible()) {
    first_->show(tr("Choose in the palette what to make, then point at a line."),
                 {{tr("Understood"), [] { QSettings().setValue("hints/isBegun", true); }}});
  }
  if (drawing != shown_) {
    shown_ = drawing;
    sinceShown_.start();
    colourIcons();
  }
  canvas_->setDrawing(drawing, drawing != nullptr ? engine_.application().currentSpace() : nullptr);
  pages_->setCurrentWidget(drawing != nullptr ? static_cast<QWidget*>(canvas_) : start_);
  showTabs();
}

void MainWindow::refresh() {
  showTabs();
  showSteps();
  tellView();
  panelTimer_.start();
}

/// The session takes picks and tooltips by what is in sight.
void MainWindow::tellView() {
  status_->setScale(engine_.drawing() != nullptr ? canvas_->unitsPerPixel() : 0);
  if (engine_.drawing() != nullptr && engine_.isWaiting())
    engine_.application().setView(canvas_->visibleBox(), canvas_->width());
}

void MainWindow::showTabs() {
  const auto open = engine_.application().drawings();
  isShowingTabs_ = true;
  while (tabs_->count() > static_cast<int>(open.size())) tabs_->removeTab(tabs_->count() - 1);
  while (tabs_->count() < static_cast<int>(open.size())) tabs_->addTab(QString());
  QString title = QStringLiteral("Tolmex");
  bool isModified = false;
  for (int i = 0; i < tabs_->count(); ++i) {
    const auto& one = open[static_cast<std::size_t>(i)];
    const QString name = QFileInfo(toQt(one.name)).fileName();
    tabs_->setTabText(i, (one.drawing->isModified() ? "*" : "") + name);
    tabs_->setTabToolTip(i, toQt(one.name));
    if (one.drawing != engine_.drawing()) continue;
    tabs_->setCurrentIndex(i);
    isModified = one.drawing->isModified();
    title = "[*]" + name + QStringLiteral(" – Tolmex");
  }
  tabs_->setVisible(open.size() > 1);
  setWindowTitle(title);
  setWindowModified(isModified);
  isShowingTabs_ = false;
}

void MainWindow::showSteps() {
  const database::DrawingDatabase* const drawing = engine_.drawing();
  const auto first = [this](const std::vector<std::wstring>& names) {
    return names.empty() ? QString() : tables_.title(toQt(names.front()));
  };
  actions_->setStepName("U", drawing != nullptr ? first(engine_.application().undoNames(1)) : QString());
  actions_->setStepName("REDO", drawing != nullptr ? first(engine_.application().redoNames(1)) : QString());
}

void MainWindow::colourIcons() {
  actions_->colour([this](const QString& layer) {
    return engine_.drawing() != nullptr ? colourOfLayer(*engine_.drawing(), layer) : QColor();
  });
}

// ---- events ---------------------------------------------------------------------------------------------------------

void MainWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  // A dialog of a plug-in that waits is left before.
  QTimer::singleShot(0, files_, &FileDesk::quit);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  QStringList files;
  for (const QUrl& url : event->mimeData()->urls()) {
    if (url.isLocalFile()) files += url.toLocalFile();
  }
  event->acceptProposedAction();
  QTimer::singleShot(0, files_, [this, files] { files_->open(files); });
}

/// Letters typed anywhere belong to the command line, but from a field that is being edited.
bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  // A window finds its size after it is shown; a drawing that came with it fills it then.
  constexpr qint64 kSettlesMs = 1500;
  if (watched == canvas_ && event->type() == QEvent::Resize && shown_ != nullptr && sinceShown_.isValid() &&
      sinceShown_.elapsed() < kSettlesMs)
    QTimer::singleShot(0, canvas_, [this] { canvas_->zoomToDrawing(); });
  if (event->type() != QEvent::KeyPress || QApplication::activeModalWidget() != nullptr ||
      QApplication::activePopupWidget() != nullptr)
    return QMainWindow::eventFilter(watched, event);
  const auto* const widget = qobject_cast<const QWidget*>(watched);
  if (widget == nullptr || widget->window() != this || widget != QApplication::focusWidget())
    return QMainWindow::eventFilter(watched, event);
  const bool isField = widget->inherits("QLineEdit") || widget->inherits("QComboBox") ||
                       widget->inherits("QAbstractSpinBox") || widget->inherits("QPlainTextEdit");
  const auto& key = *static_cast<QKeyEvent*>(event);
  if (widget == &line_->edit() || canvas_ == widget || canvas_->isAncestorOf(widget))
    return QMainWindow::eventFilter(watched, event);
  if (key.key() == Qt::Key_Escape &&
      !(isField && widget->inherits("QLineEdit") && !static_cast<const QLineEdit*>(widget)->text().isEmpty() &&
        widget->property("keepsTyping").toBool())) {
    if (isField && !widget->property("keepsTyping").toBool() && widget->inherits("QLineEdit"))
      return QMainWindow::eventFilter(watched, event);  // the field takes back what was typed
    side_->shut();
    line_->focusLine();
    if (!engine_.input().isAtRest()) talk_->escape();
    return true;
  }
  const QString text = key.text();
  const bool isLetter = !text.isEmpty() && text.front().isPrint() && text.front() != ' ' &&
                        (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0;
  if (isField || !isLetter) return QMainWindow::eventFilter(watched, event);
  line_->insert(text);
  return true;
}

}  // namespace host::window

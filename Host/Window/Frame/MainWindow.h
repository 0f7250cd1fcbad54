// The window: places its parts, ties them to the session, and folds them where there is little room.
#pragma once

#include <QElapsedTimer>
#include <QMainWindow>
#include <QStackedWidget>
#include <QTabBar>
#include <QTimer>
#include <memory>

#include "Window/Canvas/CanvasView.h"
#include "Window/Commands/MenuTable.h"
#include "Window/Desktop.h"
#include "Window/Files/FileDesk.h"
#include "Window/Files/StartPage.h"
#include "Window/Frame/Actions.h"
#include "Window/Frame/Conversation.h"
#include "Window/Frame/DocumentBar.h"
#include "Window/Frame/Engine.h"
#include "Window/Frame/Palette.h"
#include "Window/Frame/StatusLine.h"
#include "Window/Input/CommandLine.h"
#include "Window/Input/HistoryView.h"
#include "Window/Panels/SidePanel.h"

class QDockWidget;
class QToolBar;

namespace host::window {

class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// `engine` has its modules loaded: their tables make menu and palette.
  MainWindow(Engine& engine, const DesktopOptions& options);
  ~MainWindow() override;

  CanvasView& canvas() { return *canvas_; }
  CommandLine& line() { return *line_; }
  HistoryView& history() { return *history_; }
  Conversation& talk() { return *talk_; }
  FileDesk& files() { return *files_; }
  StatusLine& status() { return *status_; }
  Banner& banner() { return *banner_; }
  SidePanel& side() { return *side_; }
  Palette& palette() { return *palette_; }
  Actions& actions() { return *actions_; }
  StartPage& startPage() { return *start_; }
  QTabBar& tabs() { return *tabs_; }
  const CommandTables& tables() const { return tables_; }

  /// Shows it as it was left, or in a size such as "1366x768".
  void present(const QString& size);
  /// Does what a click on the row does.
  void trigger(const MenuRow& row);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void addScreenshot();
  void buildTools();
  void buildDocks();
  void buildCentre();
  void connectParts();
  void addKeys();
  void fold();
  void resetLayout();
  QString layoutKey() const;
  void saveLayout();
  void restoreLayout();

  void refresh();
  void showDrawing();
  void showTabs();
  void showSteps();
  void tellView();
  void colourIcons();
  void tellResult(const CommandResult& result);
  void tellFiles(const CommandResult& result);
  void tellScript(const CommandResult& result);
  void tellLocked(const QString& layer);
  void runOfWindow(const QString& name);
  void choosePanel(int panel);
  void setDrawingOnly(bool only);
  void setDarkGround(bool dark);
  void selectSame();
  void takeSteps(const QString& command, int count);
  void showGuide();
  void showKeys();
  void openLayoutMenu();
  void zoom(const QString& option);
  void followLink(const QString& link);

  Engine& engine_;
  DesktopOptions options_;
  CommandTables tables_;
  std::shared_ptr<Completion> completion_;
  Actions* actions_;
  QMainWindow* desk_;  // docks around the canvas; the command line lies below all of them
  QToolBar* tools_;
  QToolButton* undo_ = nullptr;
  QToolButton* redo_ = nullptr;
  QDockWidget* paletteDock_;
  QDockWidget* sideDock_;
  Palette* palette_;
  SidePanel* side_;
  QTabBar* tabs_;
  Banner* banner_;
  Banner* first_;    // what to do, until it is shut for good
  Banner* waiting_;  // a dialog waits for an answer from the drawing
  QStackedWidget* pages_;
  CanvasView* canvas_;
  StartPage* start_;
  HistoryView* history_;
  CommandLine* line_;
  StatusLine* status_;
  Conversation* talk_;
  FileDesk* files_;
  bool isFolded_[3] = {};  // side panel, history, palette: folded for want of room
  bool isDrawingOnly_ = false;
  bool isDark_ = false;
  bool isShowingTabs_ = false;
  const database::DrawingDatabase* shown_ = nullptr;
  QTimer panelTimer_;
  QElapsedTimer sinceShown_;
};

}  // namespace host::window

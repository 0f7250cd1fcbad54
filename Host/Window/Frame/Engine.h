// The session behind the window: what it says becomes signals, and while a command works the window stays alive: it is
// painted, its view moves, Esc stops the command, and nothing else gets through.
#pragma once

#include <QElapsedTimer>
#include <QEvent>
#include <QObject>
#include <QPointer>
#include <QWidget>
#include <ctime>
#include <memory>
#include <vector>

#include "Editor/Application.h"
#include "Window/Desktop.h"
#include "Window/Input/WindowInput.h"

namespace host::window {

/// What the last command did, for the line that tells of it.
struct CommandResult {
  QString command;                 // as it was typed; empty when none has run
  QStringList answers;             // the lines behind it, without those of scripts
  std::size_t problemsBefore = 0;  // that the session had when it began
  bool wasCancelled = false;
  bool isWhole = false;  // an undo or the like: not counted
  std::vector<database::Slot*> made, changed, erased;
  std::vector<database::Slot*> chosen;  // the last set that it was given
};

class Engine : public QObject, public editor::Observer {
  Q_OBJECT

 public:
  explicit Engine(const DesktopOptions& options);
  ~Engine() override;

  editor::Application& application() { return *application_; }
  const editor::Application& application() const { return *application_; }
  WindowInput& input() { return input_; }
  database::DrawingDatabase* drawing() const { return application_->drawing(); }
  /// The session waits for the user: the drawing stands still and may be read.
  bool isWaiting() const { return input_.question() != nullptr; }
  /// The command that runs, as it was typed; empty at rest.
  const QString& command() const { return result_.command; }
  const CommandResult& result() const { return result_; }
  /// Entities that the running question has got so far.
  const std::vector<database::Slot*>& highlighted() const { return highlighted_; }
  /// The widget in which mouse and wheel work while a command works, and the button that stops it.
  void setAlive(QWidget* canvas, QWidget* stop);
  bool isWorking() const { return isWorking_; }
  /// Problems of the current session that were reported; the newest last.
  const std::vector<Problem>& problems() const { return problems_; }
  void forgetProblems() { problems_.clear(); }
  /// Runs commands until the user leaves.
  void run();
  /// Esc during work.
  void stop();

  // Observer
  void print(std::wstring_view text) override;
  void report(const Problem& problem) override;
  void showProgress(std::wstring_view label, double fraction) override;
  void working() override;
  void showView(const curves::Box& view) override;
  void regenerate() override;
  void highlight(const std::vector<database::Slot*>& entities) override;
  void pickfirstChanged(const std::vector<database::Slot*>& entities) override;
  void currentDrawingChanged() override;
  void drawingChanged(const editor::DrawingChange& change) override;
  bool wantsChanges() const override { return true; }

 signals:
  void printed(std::wstring_view text);
  void problemReported(const host::Problem& problem);
  void progressShown(const QString& label, double fraction);
  void viewRegenerated();
  void viewWanted(const host::curves::Box& view);  // empty: the whole drawing
  void highlightChanged();
  void selectionTaken();  // the session dropped the set selected before a command
  void drawingSwitched();
  void changed(const host::editor::DrawingChange& change);
  /// A question waits. A command that ended before it is told of first.
  void commandEnded(const host::window::CommandResult& result);
  void asked();
  void workBegan();
  /// It has kept the processor so long between two questions.
  void worked(const QString& command, qint64 milliseconds);
  void interrupted();
  void closeWanted();  // while a command worked

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void answering(const QString& line, bool isCommand, bool isCancel);
  void questionAsked();
  void countMade();
  void pump();

  WindowInput input_;
  std::unique_ptr<editor::Application> application_;
  CommandResult result_;
  std::vector<database::Slot*> highlighted_;
  const database::BlockContents* space_ = nullptr;  // of the running command
  std::size_t entitiesBefore_ = 0;                  // in it
  std::vector<Problem> problems_;
  QPointer<QWidget> canvas_, stop_;
  QElapsedTimer sincePump_;
  std::clock_t workBegan_ = 0;
  std::vector<std::unique_ptr<QEvent>> typedAhead_;  // while a command worked
  bool isWorking_ = false, isPumping_ = false, isInterrupted_ = false;
};

}  // namespace host::window

// The talk between user and session: what is asked decides what the canvas takes, what the command line shows and what
// the status bar says; what is clicked or typed becomes lines of answers.
#pragma once

#include <QHash>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <memory>
#include <optional>
#include <vector>

#include "Window/Canvas/CanvasView.h"
#include "Window/Commands/Completion.h"
#include "Window/Commands/MenuTable.h"
#include "Window/Frame/Engine.h"
#include "Window/Input/CommandLine.h"
#include "Window/Input/HistoryView.h"

class QDialog;

namespace host::window {

class Conversation : public QObject {
  Q_OBJECT

 public:
  enum class State { Rest, Point, Entity, Selection, Number, Text, Dialog, Working };

  Conversation(Engine& engine, const CommandTables& tables, CanvasView& canvas, CommandLine& line,
               HistoryView& history);

  State state() const { return state_; }
  /// A plug-in's dialog waits behind the question; its title, else empty.
  QString waitingDialog() const;

  /// A menu click: runs the row's command, after Esc when another one runs, with what is selected.
  void run(const MenuRow& row);
  void runLines(const QStringList& lines);
  /// Lines that answer the question as it stands.
  void answer(const QStringList& lines);
  void enter();
  void escape();
  /// Esc until no command runs, dialogs included; then `whenFree` once.
  void comeToRest(std::function<void()> whenFree);

  const std::vector<database::Slot*>& selection() const { return selection_; }
  void select(const std::vector<database::Slot*>& entities);
  /// What the status bar says that the buttons do now.
  QString hint() const;
  /// The last command that Enter repeats; empty for none.
  const QString& repeated() const { return repeated_; }
  /// The command that ended last had a dialog, which tells by itself what became of it.
  bool hadDialog() const { return hadDialog_; }

 signals:
  void hintChanged();
  void selectionChanged();
  void stateChanged();
  void commandEnded(const host::window::CommandResult& result);
  /// What was picked lies on a locked layer and was not taken.
  void lockedPicked(const QString& layer);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void asked();
  void showQuestion(const editor::Question& question);
  bool answerWithSelection(const editor::Question& question);
  void submitted(const QString& line);
  void canvasAnswered(const QStringList& lines);
  void paste(const QStringList& lines);
  void setState(State state);
  void place(QDialog& dialog);
  bool isRefusedAgain(const editor::Question& question);
  void ended(const CommandResult& result);
  void noteAnswer(const QString& line);
  void noteLocked(const QString& line);
  void tellLocked();
  CanvasQuestion canvasQuestion(const editor::Question& question) const;

  Engine& engine_;
  const CommandTables& tables_;
  CanvasView& canvas_;
  CommandLine& line_;
  HistoryView& history_;
  State state_ = State::Working;
  std::vector<database::Slot*> selection_;    // at rest
  std::vector<database::Slot*> preselected_;  // for the first question of the command that was just started
  bool hasPreselection_ = false;
  bool hadDialog_ = false;
  QString repeated_, running_;
  QString lead_;                    // what a plug-in has said before the host asks for objects
  QString lastTyped_, lastPrompt_;  // to see an answer refused
  editor::Wanted lastWanted_ = editor::Wanted::Command;
  std::vector<AcGePoint3d> points_;  // that the running command has got
  std::vector<double> bulges_;       // of the ways to them
  std::vector<double> numbers_;      // as of CanvasQuestion
  std::optional<double> direction_;  // of the running question
  QStringList lockedLayers_;         // of what was picked last
  std::optional<AcGePoint3d> base_;
  AcGePoint3d cursor_;
  QHash<QString, QPoint> places_;           // where dialogs were left, by their titles
  std::vector<QPointer<QWidget>> dialogs_;  // of plug-ins, shown or handed back
  std::function<void()> whenFree_;
};

}  // namespace host::window

// The command line: prompt with links, the line that is typed, completion above it.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QStringList>
#include <QTreeWidget>
#include <QWidget>
#include <memory>

#include "Editor/InputSource.h"
#include "Window/Commands/Completion.h"

namespace host::window {

class CommandLine : public QWidget {
  Q_OBJECT

 public:
  explicit CommandLine(QWidget* parent = nullptr);

  void setCompletion(std::shared_ptr<const Completion> completion) { completion_ = std::move(completion); }
  /// A question waits. `suffix` stands behind the prompt, muted: "3 selected".
  void ask(const QString& prompt, editor::Wanted wanted, editor::AnswerForm form, const QString& suffix = {});
  /// Nothing is asked: the line is greyed. What is typed stays.
  void setClosed(const QString& why);
  bool isClosed() const { return isClosed_; }
  /// The answer was not taken: it stays, selected, with the reason.
  void refuse(const QString& line, const QString& reason);
  /// Something else than typing answered: what was typed goes.
  void clearTyped();
  /// Draws the eye to the line, for clicks that the question does not take.
  void blink();
  QString typed() const { return edit_->text(); }
  /// Letters typed elsewhere.
  void insert(const QString& text);
  void focusLine() { edit_->setFocus(); }
  bool hasFocusInside() const { return edit_->hasFocus(); }
  /// Esc: shuts the completion, then clears the line. False when there was nothing of the kind.
  bool escape();
  QLineEdit& edit() { return *edit_; }
  void setHistory(QStringList lines) { history_ = std::move(lines); }
  const QStringList& history() const { return history_; }

 signals:
  /// A whole answer. Commands are spelled out.
  void submitted(const QString& line);
  void enterPressed();  // with an empty line
  void escapePressed();
  void linesPasted(const QStringList& lines);
  void typedChanged(const QString& text);
  void tabPressed(bool backwards);
  void undoPressed();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void showPrompt();
  void follow(const QString& link);
  void complete();
  void showPopup();
  void hidePopup();
  bool keyPressed(QKeyEvent& event);
  void submitTyped();
  void recall(int step);
  bool spaceEnds() const;
  bool paste();

  QLabel* prompt_;
  QLineEdit* edit_;
  QLabel* reason_;
  QTreeWidget* popup_;
  std::shared_ptr<const Completion> completion_;
  QString promptText_, suffix_;
  editor::Wanted wanted_ = editor::Wanted::Command;
  editor::AnswerForm form_ = editor::AnswerForm::Word;
  bool isClosed_ = false;
  bool isChosen_ = false;  // a row of the popup was gone to
  QStringList history_;
  qsizetype place_ = 0;  // in the history; its size: none
};

}  // namespace host::window

// Answers of the window to the running session. `next` runs an event loop of its own until there is one: what is
// clicked and typed becomes a line, and lines wait here until they are asked for. Nothing else runs commands, so a menu
// click while a command runs is only another answer.
#pragma once

#include <QEventLoop>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <deque>
#include <optional>

#include "Editor/ScriptInput.h"

namespace host::window {

class WindowInput : public QObject, public editor::LineInput {
  Q_OBJECT

 public:
  WindowInput() = default;

  /// The lines answer this question and the next ones; "" is Enter.
  void answer(const QStringList& lines);
  /// One Esc for the running question.
  void cancel();
  /// Esc until no command runs; then the lines.
  void cancelToRest(const QStringList& lines = {});
  /// Ends the run: every further question is answered with the end of the input.
  void leave();

  /// The question that waits for the user now; null while a command works or lines are waiting.
  const editor::Question* question() const { return isWaiting_ ? question_ : nullptr; }
  bool isAtRest() const { return question() != nullptr && question_->wanted == editor::Wanted::Command; }
  bool isInteractive() const override { return true; }

 signals:
  /// A question waits for the user.
  void asked();
  /// An answer is on its way: the session works from now on.
  void answering(const QString& line, bool isCommand, bool isCancel);

 protected:
  std::optional<std::wstring> readLine(const editor::Question& question) override;

 private:
  struct Item {
    enum class Kind { Line, Cancel, Rest } kind = Kind::Line;
    QString line;
  };
  void wake();

  std::deque<Item> items_;
  const editor::Question* question_ = nullptr;
  QEventLoop* loop_ = nullptr;
  bool isWaiting_ = false;
  bool isLeaving_ = false;
  int cancels_ = 0;  // in a row on the way to rest
};

}  // namespace host::window

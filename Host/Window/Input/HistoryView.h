// What was asked, answered and told: the transcript above the command line.
#pragma once

#include <QLineEdit>
#include <QTextBrowser>
#include <QWidget>
#include <string_view>

namespace host::window {

class HistoryView : public QWidget {
  Q_OBJECT

 public:
  explicit HistoryView(QWidget* parent = nullptr);

  /// Text of the transcript as it comes, line ends included. The line that is not finished yet is the prompt's.
  void print(std::wstring_view text);
  enum class Kind { Said, Error, Done, Note };
  /// A line of the window's own; HTML, links as `answer:`, `zoom:` and so on.
  void tell(const QString& html, Kind kind = Kind::Said);
  /// The last line that was refused since `forgetRefusal`; empty for none.
  const QString& refusal() const { return refusal_; }
  void forgetRefusal() { refusal_.clear(); }
  /// The last whole line, as it is shown.
  const QString& lastLine() const { return lastLine_; }

  /// Lines in sight; 0 hides the view. Search is offered when it is large.
  void setLines(int lines);
  void setLarge(bool large, int height);
  bool isLarge() const { return isLarge_; }
  QString plainText() const { return text_->toPlainText(); }

 signals:
  void linkClicked(const QString& link);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void finishLine();
  void setHeight();

  QTextBrowser* text_;
  QLineEdit* search_;
  QString unfinished_, refusal_, lastLine_;
  int lines_ = 3;
  bool isLarge_ = false;
  int largeHeight_ = 0;
};

}  // namespace host::window

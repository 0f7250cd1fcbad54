// Tabs of the open drawings, and the banner that tells of the one in sight.
#pragma once

#include <QFrame>
#include <QLabel>
#include <QTabBar>
#include <QWidget>
#include <functional>
#include <utility>
#include <vector>

namespace host::window {

/// One sentence with links, over the canvas until it is dealt with.
class Banner : public QFrame {
  Q_OBJECT

 public:
  explicit Banner(QWidget* parent = nullptr);
  using Choice = std::pair<QString, std::function<void()>>;
  /// Every choice takes the banner away first.
  void show(const QString& text, const std::vector<Choice>& choices);
  void dismiss();
  QString text() const { return label_->text(); }
  /// Does what the choice of this text does.
  void choose(const QString& choice);

 private:
  QLabel* label_;
  std::vector<Choice> choices_;
};

}  // namespace host::window

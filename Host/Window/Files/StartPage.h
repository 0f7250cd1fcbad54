// What is shown while no drawing is open: ways to begin, examples, recent drawings with their pictures.
#pragma once

#include <QListWidget>
#include <QTimer>
#include <QWidget>
#include <filesystem>
#include <vector>

namespace host::window {

class StartPage : public QWidget {
  Q_OBJECT

 public:
  StartPage(const std::vector<std::filesystem::path>& examples, QWidget* parent = nullptr);
  void refresh();
  QListWidget& recent() { return *recent_; }

 signals:
  void openWanted();
  void newWanted();
  void exampleWanted(const QString& file);
  void recentWanted(const QString& file);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void drawNext();
  void contextMenu(const QPoint& at);

  QListWidget* recent_;
  QTimer drawing_;
  int next_ = 0;
};

}  // namespace host::window

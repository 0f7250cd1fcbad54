// What is wrong with the drawing, and what commands could not do. A click leads to the place.
#pragma once

#include <QLabel>
#include <QTreeWidget>
#include <QWidget>

#include "Window/Panels/Panel.h"

namespace host::window {

class ProblemsPanel : public QWidget {
  Q_OBJECT

 public:
  explicit ProblemsPanel(const PanelContext& context, QWidget* parent = nullptr);
  void refresh();
  int count() const { return list_->topLevelItemCount(); }
  QTreeWidget& list() { return *list_; }

 signals:
  void counted();

 private:
  void show(QTreeWidgetItem& item);
  void contextMenu(const QPoint& at);

  PanelContext context_;
  QTreeWidget* list_;
  QLabel* empty_;
  std::size_t shownOwn_ = 0, shownSession_ = 0;
  const database::DrawingDatabase* shown_ = nullptr;
};

}  // namespace host::window

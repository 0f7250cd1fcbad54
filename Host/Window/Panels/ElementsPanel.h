// The elements of the plan by kind, with counts and sums. What makes a kind the tables of commands tell by their
// layers.
#pragma once

#include <QLabel>
#include <QTreeWidget>
#include <QWidget>

#include "Window/Panels/Panel.h"

namespace host::window {

class ElementsPanel : public QWidget {
  Q_OBJECT

 public:
  explicit ElementsPanel(const PanelContext& context, QWidget* parent = nullptr);
  void refresh();
  QTreeWidget& tree() { return *tree_; }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void fill(QTreeWidgetItem& kind);
  void choose(QTreeWidgetItem& item);

  PanelContext context_;
  QTreeWidget* tree_;
  QLabel* empty_;
  quint64 shownCount_ = 0;
  const void* shown_ = nullptr;
  std::vector<std::vector<database::Slot*>> kinds_;
};

}  // namespace host::window

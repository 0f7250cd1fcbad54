// The layers: shown, frozen, locked, colour. Each click is one LAYER command, so that one U takes it back.
#pragma once

#include <QLineEdit>
#include <QTreeWidget>
#include <QWidget>

#include "Window/Panels/Panel.h"

namespace host::window {

class LayersPanel : public QWidget {
  Q_OBJECT

 public:
  enum Column { Shown, Thawed, Unlocked, Colour, Name, Things };

  explicit LayersPanel(const PanelContext& context, QWidget* parent = nullptr);
  void refresh();
  QTreeWidget& tree() { return *tree_; }
  /// Does what a click on the cell does, to all selected rows when it is one of them.
  void click(QTreeWidgetItem& item, int column);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  QStringList namesFor(QTreeWidgetItem& item) const;
  void run(const QString& option, const QStringList& names);
  void chooseColour(const QStringList& names, const QPoint& at);
  void contextMenu(const QPoint& at);
  void filter();

  PanelContext context_;
  QLineEdit* filter_;
  QTreeWidget* tree_;
  quint64 shownCount_ = 0;
  const void* shown_ = nullptr;
};

}  // namespace host::window

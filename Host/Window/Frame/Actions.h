// The rows of the tables as actions: with icon, key and tip, in menus and tool bar.
#pragma once

#include <QAction>
#include <QHash>
#include <QMenu>
#include <QMenuBar>
#include <QObject>
#include <functional>

#include "Window/Commands/MenuTable.h"

namespace host::window {

using ColourOfLayer = std::function<QColor(const QString& layer)>;

class Actions : public QObject {
  Q_OBJECT

 public:
  Actions(const CommandTables& tables, QWidget& owner);

  /// By what the table calls the row; null when it has none.
  QAction* of(const QString& command) const { return byCommand_.value(command); }
  QAction* of(const MenuRow& row) const { return byCommand_.value(row.command); }
  void fill(QMenuBar& bar);
  /// A module's group as a menu.
  void fill(QMenu& menu, const MenuGroup& group) const;
  /// Paints the icons anew: the parts of class "live" with the colours of layers.
  void colour(const ColourOfLayer& colourOf);
  /// "Undo: Grass", greyed without a name.
  void setStepName(const QString& command, const QString& name);
  void setEnabledAll(bool enabled);

 signals:
  void triggered(const host::window::MenuRow& row);

 private:
  void dress(QAction& action, const MenuRow& row);

  const CommandTables& tables_;
  QWidget& owner_;
  QHash<QString, QAction*> byCommand_;
};

}  // namespace host::window

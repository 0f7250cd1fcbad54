#include "Window/Frame/Actions.h"

#include <QKeySequence>
#include <QSet>

#include "Window/Commands/Icons.h"
#include "Window/Commands/Language.h"
#include "Window/Frame/Theme.h"

namespace host::window {
namespace {

/// "Tiedosto" with a letter to reach it by that no other one of the menu bar has.
QString withMnemonic(const QString& name, QSet<QChar>& taken) {
  for (qsizetype i = 0; i < name.size(); ++i) {
    const QChar letter = name[i].toLower();
    if (!letter.isLetter() || taken.contains(letter)) continue;
    taken.insert(letter);
    return QString(name).insert(i, '&');
  }
  return name;
}

QString tipOf(const MenuRow& row, const QAction& action) {
  QStringList below;
  if (!row.isOfWindow()) below += row.command.section(',', 0, 0);
  if (!row.typed.isEmpty()) below += row.typed.join(", ");
  if (!action.shortcut().isEmpty()) below += action.shortcut().toString(QKeySequence::NativeText);
  QString name = row.name();
  name.remove(": %1");
  return "<b>" + name.toHtmlEscaped() + "</b><br>" + row.tip().toHtmlEscaped() +
         (below.isEmpty() ? QString()
                          : "<br><span style=\"color:" + Theme::current().muted.name() + "\">" +
                                below.join(QStringLiteral(" · ")).toHtmlEscaped() + "</span>");
}

}  // namespace

Actions::Actions(const CommandTables& tables, QWidget& owner) : tables_(tables), owner_(owner) {
  for (const MenuRow* const row : tables_.all()) {
    if (byCommand_.contains(row->command)) continue;
    auto* const action = new QAction(this);
    byCommand_.insert(row->command, action);
    action->setObjectName(row->command);
    dress(*action, *row);
    // The reader's keys: Delete belongs to the line while something is typed.
    owner_.addAction(action);
    connect(action, &QAction::triggered, this, [this, row] { emit triggered(*row); });
  }
  colour({});
}

void Actions::dress(QAction& action, const MenuRow& row) {
  QString name = row.name();
  name.remove(": %1");
  action.setText(name);
  if (!row.key.isEmpty()) action.setShortcut(QKeySequence(row.key, QKeySequence::PortableText));
  const QString tip = tipOf(row, action);
  action.setToolTip(tip);
  action.setStatusTip(row.tip());
}

void Actions::colour(const ColourOfLayer& colourOf) {
  for (const MenuRow* const row : tables_.all()) {
    const QColor live = colourOf && !row->colour.isEmpty() ? colourOf(row->colour) : QColor();
    byCommand_.value(row->command)->setIcon(iconOf(row->icon, Theme::current().text, live));
  }
}

void Actions::fill(QMenu& menu, const MenuGroup& group) const {
  for (const MenuRow* const row : group.rows) menu.addAction(byCommand_.value(row->command));
}

void Actions::fill(QMenuBar& bar) {
  QSet<QChar> taken;
  for (const MenuGroup& group : tables_.host().groups) {
    if (group.key != "modules") {
      QMenu* const menu = bar.addMenu(withMnemonic(group.name(), taken));
      menu->setObjectName(group.key);
      menu->setToolTipsVisible(false);
      fill(*menu, group);
      continue;
    }
    for (const MenuTable& table : tables_.modules()) {
      QMenu* whole = nullptr;
      for (const MenuGroup& inside : table.groups) {
        if (inside.key == "menu" || whole == nullptr) {
          whole = bar.addMenu(withMnemonic(inside.name(), taken));
          fill(*whole, inside);
          if (inside.key == "menu") continue;
        }
        fill(*whole->addMenu(inside.name()), inside);
      }
    }
  }
}

void Actions::setStepName(const QString& command, const QString& name) {
  QAction* const action = of(command);
  const MenuRow* const row = tables_.row(command);
  if (action == nullptr || row == nullptr) return;
  QString text = row->name();
  action->setText(name.isEmpty() ? text.remove(": %1") : text.arg(name));
}

void Actions::setEnabledAll(bool enabled) {
  for (QAction* const action : byCommand_) action->setEnabled(enabled);
}

}  // namespace host::window

#include "Window/Frame/Palette.h"

#include <QMenu>
#include <QScrollArea>
#include <QSettings>

#include "Window/Frame/Theme.h"

namespace host::window {
namespace {

QScrollArea* scrolled(QWidget* inside) {
  auto* const area = new QScrollArea;
  area->setWidget(inside);
  area->setWidgetResizable(true);
  area->setFrameShape(QFrame::NoFrame);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setMinimumHeight(120);
  area->setFocusPolicy(Qt::NoFocus);
  return area;
}

}  // namespace

Palette::Palette(const CommandTables& tables, const Actions& actions, QWidget* parent)
    : QWidget(parent), tables_(tables), actions_(actions), layout_(new QVBoxLayout(this)) {
  layout_->setContentsMargins(0, 0, 0, 0);
  wide_ = wideView();
  narrow_ = narrowView();
  layout_->addWidget(wide_);
  layout_->addWidget(narrow_);
  setAccessibleName(tr("Palette"));
  narrow_->hide();
  setFixedWidth(kWide);
}

QWidget* Palette::wideView() {
  auto* const inside = new QWidget;
  auto* const rows = new QVBoxLayout(inside);
  rows->setContentsMargins(6, 6, 6, 6);
  rows->setSpacing(1);
  for (const MenuTable& table : tables_.modules()) {
    for (const MenuGroup& group : table.groups) {
      if (group.rows.empty()) continue;
      auto* const head = new QToolButton;
      head->setText(group.name());
      head->setCheckable(true);
      head->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
      head->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
      QFont bold = head->font();
      bold.setBold(true);
      head->setFont(bold);
      head->setStyleSheet("QToolButton:checked { background: transparent; } QToolButton:checked:hover { background: " +
                          Theme::current().line.name() + "; }");
      auto* const body = new QWidget;
      auto* const buttons = new QVBoxLayout(body);
      buttons->setContentsMargins(8, 0, 0, 6);
      buttons->setSpacing(0);
      for (const MenuRow* const row : group.rows) {
        auto* const button = new QToolButton;
        button->setDefaultAction(actions_.of(*row));
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setIconSize({18, 18});
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        button->setAccessibleName(row->name());
        button->setAccessibleDescription(row->tip());
        buttons->addWidget(button);
      }
      rows->addWidget(head);
      rows->addWidget(body);
      const QString key = "palette/" + group.key;
      const auto open = [head, body](bool isOpen) {
        head->setArrowType(isOpen ? Qt::DownArrow : Qt::RightArrow);
        body->setVisible(isOpen);
      };
      connect(head, &QToolButton::toggled, this, [open, key](bool isOpen) {
        open(isOpen);
        QSettings().setValue(key, isOpen);
      });
      const bool isOpen = QSettings().value(key, true).toBool();
      head->setChecked(isOpen);
      open(isOpen);
    }
  }
  rows->addStretch();
  return scrolled(inside);
}

QWidget* Palette::narrowView() {
  auto* const inside = new QWidget;
  auto* const rows = new QVBoxLayout(inside);
  rows->setContentsMargins(4, 6, 4, 6);
  rows->setSpacing(2);
  for (const MenuTable& table : tables_.modules()) {
    for (const MenuGroup& group : table.groups) {
      if (group.rows.empty()) continue;
      auto* const button = new QToolButton;
      auto* const menu = new QMenu(button);
      actions_.fill(*menu, group);
      button->setMenu(menu);
      button->setPopupMode(QToolButton::InstantPopup);
      button->setIcon(actions_.of(*group.rows.front())->icon());
      button->setIconSize({24, 24});
      button->setToolTip(group.name());
      button->setAccessibleName(group.name());
      button->setStyleSheet("QToolButton::menu-indicator { image: none; }");
      connect(actions_.of(*group.rows.front()), &QAction::changed, button,
              [button, action = actions_.of(*group.rows.front())] { button->setIcon(action->icon()); });
      rows->addWidget(button);
    }
  }
  rows->addStretch();
  return scrolled(inside);
}

void Palette::setNarrow(bool narrow) {
  isNarrow_ = narrow;
  wide_->setVisible(!narrow);
  narrow_->setVisible(narrow);
  setFixedWidth(narrow ? kNarrow : kWide);
}

}  // namespace host::window

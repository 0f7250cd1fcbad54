#include "Window/Frame/Theme.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPalette>
#include <algorithm>

namespace host::window {
namespace {

Theme light() {
  return {false,     "#F4F5F7", "#FFFFFF", "#1B1F24", "#57606A", "#0B5CAD",
          "#B3261E", "#8A5A00", "#1E7B34", "#FFF3C4", "#D5D9DF"};
}
Theme dark() {
  return {true,      "#2A2E34", "#1F2227", "#E6E8EB", "#A3ABB5", "#6CB2F7",
          "#FF8A80", "#F2B84B", "#6FD08C", "#4A3B12", "#3C424A"};
}

Theme& chosen() {
  static Theme theme = light();
  return theme;
}

QString styleSheet(const Theme& t) {
  // The focus ring is two pixels wide everywhere; controls keep their own shape otherwise.
  QString sheet = R"(
    QToolTip { background: %panel; color: %text; border: 1px solid %line; padding: 4px; }
    QMainWindow::separator { background: %line; width: 1px; height: 1px; }
    QStatusBar { border-top: 1px solid %line; }
    QStatusBar::item { border: none; }
    QToolBar { border: none; border-bottom: 1px solid %line; spacing: 2px; padding: 3px 6px; }
    QToolBar::separator { background: %line; width: 1px; margin: 5px 5px; }
    QToolButton { border: 2px solid transparent; border-radius: 5px; padding: 3px; }
    QToolButton:hover { background: %hover; }
    QToolButton:checked { background: %checked; }
    QToolButton:pressed { background: %checked; }
    QToolButton:focus { border-color: %accent; }
    QToolButton[popupMode="1"] { padding-right: 16px; }
    QToolButton::menu-button { border: none; width: 14px; }
    QDockWidget { titlebar-close-icon: none; }
    QTreeView, QListView, QTableView { border: none; outline: none; background: %panel; }
    QTreeView::item, QListView::item { padding: 2px 0px; }
    QTreeView:focus, QListView:focus { border: 2px solid %accent; }
    QLineEdit, QComboBox, QAbstractSpinBox { border: 1px solid %line; border-radius: 4px; padding: 2px 6px;
      background: %panel; min-height: 20px; }
    QLineEdit:focus, QComboBox:focus, QAbstractSpinBox:focus { border: 2px solid %accent; padding: 1px 5px; }
    QPushButton { border: 1px solid %line; border-radius: 5px; padding: 5px 5px; background: %panel; }
    QPushButton:hover { background: %hover; }
    QPushButton:default { border: 1px solid %accent; }
    QPushButton:focus { border: 2px solid %accent; padding: 4px 4px; }
    QMessageBox QPushButton, QDialogButtonBox QPushButton { min-width: 72px; padding: 5px 10px; }
    QPushButton:disabled { color: %muted; }
    QTabBar::tab { padding: 6px 12px; border: none; border-bottom: 2px solid transparent; color: %muted; }
    QTabBar::tab:selected { color: %text; border-bottom-color: %accent; }
    QTabBar::tab:hover { color: %text; }
    QTabBar:focus { border: none; }
    QMenuBar { border-bottom: 1px solid %line; }
    QMenuBar::item { padding: 4px 9px; border-radius: 4px; background: transparent; }
    QMenuBar::item:selected { background: %hover; }
    QProgressBar { border: 1px solid %line; border-radius: 4px; text-align: center; max-height: 14px; }
    QProgressBar::chunk { background: %accent; border-radius: 3px; }
  )";
  const QColor hover = t.isDark ? t.window.lighter(125) : t.window.darker(106);
  const QColor checked = t.isDark ? t.window.lighter(150) : t.window.darker(113);
  return sheet.replace("%panel", t.panel.name())
      .replace("%text", t.text.name())
      .replace("%line", t.line.name())
      .replace("%muted", t.muted.name())
      .replace("%accent", t.accent.name())
      .replace("%hover", hover.name())
      .replace("%checked", checked.name());
}

}  // namespace

const Theme& Theme::current() { return chosen(); }

void Theme::apply(QApplication& application) {
  constexpr int kMiddle = 128;
  const bool isDarkSystem = QGuiApplication::palette().color(QPalette::Window).lightness() < kMiddle;
  chosen() = isDarkSystem ? dark() : light();
  const Theme& t = chosen();
  QApplication::setStyle("Fusion");
  QPalette palette(t.text, t.window);
  const std::pair<QPalette::ColorRole, QColor> roles[] = {
      {QPalette::Base, t.panel},         {QPalette::AlternateBase, t.window},  {QPalette::Text, t.text},
      {QPalette::WindowText, t.text},    {QPalette::ButtonText, t.text},       {QPalette::Button, t.window},
      {QPalette::Highlight, t.accent},   {QPalette::HighlightedText, t.panel}, {QPalette::Link, t.accent},
      {QPalette::LinkVisited, t.accent}, {QPalette::PlaceholderText, t.muted}, {QPalette::ToolTipBase, t.panel},
      {QPalette::ToolTipText, t.text},
  };
  for (const auto& [role, color] : roles) palette.setColor(role, color);
  for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
    QColor pale = t.muted;
    pale.setAlphaF(0.6F);
    palette.setColor(QPalette::Disabled, role, pale);
  }
  QApplication::setPalette(palette);
  QFont font = QApplication::font();
  font.setPointSizeF(std::max(font.pointSizeF(), 9.0));
  QApplication::setFont(font);
  application.setStyleSheet(styleSheet(t));
}

QFont commandFont() {
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPointSize(10);
  return font;
}

QString linkStyle() { return "a { color: " + Theme::current().accent.name() + "; text-decoration: none; }"; }

}  // namespace host::window

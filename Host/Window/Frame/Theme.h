// Colours and fonts of the window. The ground of the canvas is no part of it.
#pragma once

#include <QColor>
#include <QFont>
#include <QString>

class QApplication;

namespace host::window {

struct Theme {
  bool isDark = false;
  QColor window, panel, text, muted, accent, error, warning, done, banner, line;

  static const Theme& current();
  /// Takes the system's, light or dark, and dresses the application in it.
  static void apply(QApplication& application);
};

/// The fixed font of command line and history, 10 pt.
QFont commandFont();
/// Style sheet of links in rich text.
QString linkStyle();

}  // namespace host::window

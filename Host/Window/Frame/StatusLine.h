// The status bar: what the buttons do now, progress with the way to stop it, cursor, scale, toggles.
#pragma once

#include <QLabel>
#include <QProgressBar>
#include <QStatusBar>
#include <QToolButton>
#include <cstdint>
#include <vector>

#include "gepnt3d.h"

namespace host::window {

class StatusLine : public QStatusBar {
  Q_OBJECT

 public:
  explicit StatusLine(QWidget* parent = nullptr);

  void setHint(const QString& hint);
  /// `fraction` below 0 takes it away.
  void setProgress(const QString& label, double fraction);
  void setCursorAt(const AcGePoint3d& at);
  /// Metres of the plan for each pixel of the screen.
  void setScale(double unitsPerPixel);
  /// The toggles without words.
  void setShort(bool isShort);
  QWidget* stopButton() const { return stop_; }
  QToolButton& snap() { return *snap_; }
  /// The kinds of points that are snapped to, as bits of geometry::snapBit; a menu at the toggle changes them.
  void setSnapKinds(std::uint32_t kinds);
  QToolButton& ortho() { return *ortho_; }
  QToolButton& ground() { return *ground_; }
  QString hintText() const { return hint_->text(); }

 signals:
  void stopWanted();
  void snapKindsChanged(std::uint32_t kinds);

 private:
  QLabel* hint_;
  QLabel* work_;
  QProgressBar* progress_;
  QToolButton* stop_;
  QLabel* cursor_;
  QLabel* scale_;
  QToolButton* snap_;
  std::vector<QAction*> kinds_;  // in the order of geometry::SnapKind
  QToolButton* ortho_;
  QToolButton* ground_;
};

}  // namespace host::window

// The palette: the commands of the modules in their groups, with words or, where there is little room, as icons.
#pragma once

#include <QToolButton>
#include <QVBoxLayout>
#include <QWidget>
#include <vector>

#include "Window/Frame/Actions.h"

namespace host::window {

class Palette : public QWidget {
  Q_OBJECT

 public:
  static constexpr int kWide = 212, kNarrow = 48;

  Palette(const CommandTables& tables, const Actions& actions, QWidget* parent = nullptr);
  void setNarrow(bool narrow);
  bool isNarrow() const { return isNarrow_; }

 private:
  QWidget* wideView();
  QWidget* narrowView();

  const CommandTables& tables_;
  const Actions& actions_;
  QVBoxLayout* layout_;
  QWidget* wide_;
  QWidget* narrow_;
  bool isNarrow_ = false;
};

}  // namespace host::window

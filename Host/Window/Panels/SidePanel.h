// The panels at the right: properties, elements, layers, problems. In little room a strip of icons, whose panel lies
// over the canvas until Esc or a click outside.
#pragma once

#include <QFrame>
#include <QPointer>
#include <QTabWidget>
#include <QToolButton>
#include <QWidget>
#include <array>

#include "Window/Panels/Panel.h"

namespace host::window {

class ElementsPanel;
class LayersPanel;
class ProblemsPanel;
class PropertiesPanel;

class SidePanel : public QWidget {
  Q_OBJECT

 public:
  enum Which { Properties, Elements, Layers, Problems, Count };
  static constexpr int kWidth = 312, kStrip = 40, kOver = 300;

  explicit SidePanel(const PanelContext& context, QWidget* parent = nullptr);
  ~SidePanel() override;
  /// `over` is the widget over which a panel lies while there is only a strip.
  void setNarrow(bool narrow, QWidget* over);
  bool isNarrow() const { return isNarrow_; }
  void open(int which);
  int current() const { return tabs_->currentIndex(); }
  /// Shuts the panel that lies over the canvas; false when none does.
  bool shut();
  void refresh();
  /// Only what follows the selection.
  void selectionChanged();

  PropertiesPanel& properties() { return *properties_; }
  ElementsPanel& elements() { return *elements_; }
  LayersPanel& layers() { return *layers_; }
  ProblemsPanel& problems() { return *problems_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void place();
  void nameProblems();

  PropertiesPanel* properties_;
  ElementsPanel* elements_;
  LayersPanel* layers_;
  ProblemsPanel* problems_;
  QTabWidget* tabs_;
  QWidget* strip_;
  std::array<QToolButton*, Count> buttons_{};
  QPointer<QFrame> overlay_;  // without a parent until it lies over something, which may go first
  QPointer<QWidget> over_;
  bool isNarrow_ = false;
};

}  // namespace host::window

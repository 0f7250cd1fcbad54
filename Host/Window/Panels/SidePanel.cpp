#include "Window/Panels/SidePanel.h"

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QTabBar>
#include <QVBoxLayout>

#include "Window/Commands/Icons.h"
#include "Window/Frame/Theme.h"
#include "Window/Panels/ElementsPanel.h"
#include "Window/Panels/LayersPanel.h"
#include "Window/Panels/ProblemsPanel.h"
#include "Window/Panels/PropertiesPanel.h"

namespace host::window {

SidePanel::SidePanel(const PanelContext& context, QWidget* parent)
    : QWidget(parent),
      properties_(new PropertiesPanel(context)),
      elements_(new ElementsPanel(context)),
      layers_(new LayersPanel(context)),
      problems_(new ProblemsPanel(context)),
      tabs_(new QTabWidget),
      strip_(new QWidget),
      overlay_(new QFrame) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  const std::array<std::pair<QWidget*, QString>, Count> panels = {{{properties_, tr("Properties")},
                                                                   {elements_, tr("Elements")},
                                                                   {layers_, tr("Layers")},
                                                                   {problems_, tr("Problems")}}};
  const std::array<const char*, Count> icons = {"panel-properties", "panel-elements", "layers", "panel-problems"};
  auto* const stripRows = new QVBoxLayout(strip_);
  stripRows->setContentsMargins(3, 6, 3, 6);
  for (int i = 0; i < Count; ++i) {
    const auto& [panel, name] = panels[static_cast<std::size_t>(i)];
    panel->setMinimumHeight(120);
    tabs_->addTab(panel, name);
    auto* const button = new QToolButton;
    button->setIcon(hostIcon(icons[static_cast<std::size_t>(i)], Theme::current().text));
    button->setIconSize({20, 20});
    button->setCheckable(true);
    button->setToolTip(name + " (Ctrl+" + QString::number(i + 1) + ")");
    button->setAccessibleName(name);
    stripRows->addWidget(button);
    buttons_[static_cast<std::size_t>(i)] = button;
    connect(button, &QToolButton::clicked, this, [this, i](bool isOn) {
      if (isOn) {
        open(i);
      } else {
        shut();
      }
    });
  }
  stripRows->addStretch();
  tabs_->setDocumentMode(true);
  tabs_->tabBar()->setExpanding(true);
  tabs_->tabBar()->setElideMode(Qt::ElideNone);
  tabs_->tabBar()->setUsesScrollButtons(false);
  tabs_->tabBar()->setDrawBase(false);
  tabs_->setStyleSheet("QTabBar::tab { padding: 6px 5px; }");
  layout->addWidget(tabs_);
  layout->addWidget(strip_);
  strip_->hide();
  overlay_->hide();
  overlay_->setObjectName("overlay");
  overlay_->setAutoFillBackground(true);
  overlay_->setFrameShape(QFrame::StyledPanel);
  auto* const overlayLayout = new QVBoxLayout(overlay_);
  overlayLayout->setContentsMargins(0, 0, 0, 0);
  connect(problems_, &ProblemsPanel::counted, this, &SidePanel::nameProblems);
  qApp->installEventFilter(this);
}

SidePanel::~SidePanel() {
  qApp->removeEventFilter(this);
  delete overlay_;
}

void SidePanel::nameProblems() {
  const int count = problems_->count();
  tabs_->setTabText(Problems, count == 0 ? tr("Problems") : tr("Problems") + QString(" (%1)").arg(count));
}

void SidePanel::setNarrow(bool narrow, QWidget* over) {
  over_ = over;
  if (narrow == isNarrow_) return;
  shut();
  isNarrow_ = narrow;
  strip_->setVisible(narrow);
  if (narrow) {
    overlay_->setParent(over);
    overlay_->layout()->addWidget(tabs_);
    over->installEventFilter(this);
    setMinimumWidth(kStrip);
    setMaximumWidth(kStrip);
  } else {
    if (over != nullptr) over->removeEventFilter(this);
    static_cast<QVBoxLayout*>(layout())->insertWidget(0, tabs_);
    setMinimumWidth(240);
    setMaximumWidth(QWIDGETSIZE_MAX);
  }
  tabs_->show();
}

void SidePanel::place() {
  if (over_ != nullptr) overlay_->setGeometry(over_->width() - kOver, 0, kOver, over_->height());
}

void SidePanel::open(int which) {
  tabs_->setCurrentIndex(which);
  if (isNarrow_) {
    place();
    overlay_->show();
    overlay_->raise();
    for (int i = 0; i < Count; ++i) buttons_[static_cast<std::size_t>(i)]->setChecked(i == which);
  }
  refresh();
  tabs_->currentWidget()->setFocus();
}

bool SidePanel::shut() {
  if (!overlay_->isVisible()) return false;
  overlay_->hide();
  for (QToolButton* const button : buttons_) button->setChecked(false);
  return true;
}

bool SidePanel::eventFilter(QObject* watched, QEvent* event) {
  // Events of other kinds come while the window is being destroyed, too.
  const bool isOurs = event->type() == QEvent::Resize || event->type() == QEvent::MouseButtonPress;
  if (!isOurs || overlay_ == nullptr) return QWidget::eventFilter(watched, event);
  if (watched == over_ && event->type() == QEvent::Resize && overlay_->isVisible()) place();
  if (overlay_->isVisible() && event->type() == QEvent::MouseButtonPress) {
    const auto* const widget = qobject_cast<const QWidget*>(watched);
    const bool isInside = widget != nullptr && (overlay_->isAncestorOf(widget) || widget == overlay_ ||
                                                isAncestorOf(widget) || widget->window() != window());
    if (widget != nullptr && !isInside) shut();
  }
  return QWidget::eventFilter(watched, event);
}

void SidePanel::refresh() {
  properties_->refresh();
  if (elements_->isVisible()) elements_->refresh();
  if (layers_->isVisible()) layers_->refresh();
  problems_->refresh();
}

void SidePanel::selectionChanged() { properties_->refresh(); }

}  // namespace host::window

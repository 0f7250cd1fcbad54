#include "Window/Frame/StatusLine.h"

#include <QMenu>
#include <cmath>

#include "Window/Commands/Icons.h"
#include "Window/Frame/Theme.h"

namespace host::window {
namespace {

/// Two figures are what a scale on a screen is worth.
double rounded(double value) {
  if (!(value > 0) || !std::isfinite(value)) return 0;
  const double step = std::pow(10, std::floor(std::log10(value)) - 1);
  return std::round(value / step) * step;
}

QToolButton* toggle(const QString& text, const QString& tip) {
  auto* const button = new QToolButton;
  button->setCheckable(true);
  button->setText(text);
  button->setToolTip(tip);
  button->setAccessibleName(text);
  button->setFocusPolicy(Qt::TabFocus);
  return button;
}

}  // namespace

StatusLine::StatusLine(QWidget* parent)
    : QStatusBar(parent),
      hint_(new QLabel),
      work_(new QLabel),
      progress_(new QProgressBar),
      stop_(new QToolButton),
      cursor_(new QLabel),
      scale_(new QLabel),
      snap_(toggle(tr("Snap"), tr("Snaps to ends, middles, centres and crossings (F3)"))),
      ortho_(toggle(tr("Ortho"), tr("Points straight to the right, up, left or down (F8)"))),
      ground_(toggle(tr("Dark"), tr("Dark ground; the drawing does not change (Ctrl+Shift+D)"))) {
  setSizeGripEnabled(false);
  hint_->setAccessibleName(tr("What the buttons do now"));
  hint_->setTextFormat(Qt::PlainText);
  hint_->setMinimumWidth(40);
  hint_->setContentsMargins(8, 0, 8, 0);
  progress_->setFixedWidth(120);
  progress_->setRange(0, 100);
  stop_->setText(tr("Stop"));
  stop_->setToolTip(tr("Stops the command (Esc)"));
  cursor_->setAccessibleName(tr("Cursor"));
  cursor_->setMinimumWidth(fontMetrics().horizontalAdvance("25496210.25, 6672431.80 m "));
  cursor_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  scale_->setAccessibleName(tr("Scale on the screen"));
  scale_->setMinimumWidth(fontMetrics().horizontalAdvance("1:50 000 "));
  scale_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  ground_->setIcon(hostIcon("ground", Theme::current().text));
  ground_->setToolButtonStyle(Qt::ToolButtonIconOnly);
  addWidget(hint_, 1);
  addPermanentWidget(work_);
  addPermanentWidget(progress_);
  addPermanentWidget(stop_);
  addPermanentWidget(cursor_);
  addPermanentWidget(scale_);
  addPermanentWidget(snap_);
  addPermanentWidget(ortho_);
  addPermanentWidget(ground_);
  const QString marks[] = {QStringLiteral("□"), QStringLiteral("△"), QStringLiteral("○"),
                           QStringLiteral("✕"), QStringLiteral("∟"), QStringLiteral("⧗")};
  const QString names[] = {tr("Ends"),      tr("Middles"),      tr("Centres"),
                           tr("Crossings"), tr("Right angles"), tr("Nearest")};
  auto* const kinds = new QMenu(snap_);
  kinds->setToolTipsVisible(true);
  for (std::size_t i = 0; i < std::size(names); ++i) {
    QAction* const kind = kinds->addAction(marks[i] + QStringLiteral("  ") + names[i]);
    kind->setCheckable(true);
    kinds_.push_back(kind);
    connect(kind, &QAction::triggered, this, [this] {
      std::uint32_t wanted = 0;
      for (std::size_t k = 0; k < kinds_.size(); ++k) wanted |= kinds_[k]->isChecked() ? 1U << k : 0;
      emit snapKindsChanged(wanted);
    });
  }
  snap_->setMenu(kinds);
  snap_->setPopupMode(QToolButton::MenuButtonPopup);
  connect(stop_, &QToolButton::clicked, this, &StatusLine::stopWanted);
  setProgress({}, -1);
}

void StatusLine::setHint(const QString& hint) {
  hint_->setText(hint);
  hint_->setToolTip(hint);
}

void StatusLine::setProgress(const QString& label, double fraction) {
  const bool isShown = fraction >= 0;
  work_->setVisible(isShown);
  progress_->setVisible(isShown);
  stop_->setVisible(isShown);
  if (!isShown) return;
  work_->setText(label);
  progress_->setValue(static_cast<int>(std::lround(fraction * 100)));
  setHint(tr("Esc: stop"));
}

void StatusLine::setCursorAt(const AcGePoint3d& at) {
  cursor_->setText(QString::number(at.x, 'f', 2) + ", " + QString::number(at.y, 'f', 2) + " m");
}

void StatusLine::setScale(double unitsPerPixel) {
  constexpr double kMetresPerInch = 0.0254;
  const double scale = rounded(unitsPerPixel * logicalDpiX() / kMetresPerInch);
  scale_->setText(scale > 0 ? "1:" + QString::number(scale, 'f', scale < 10 ? 1 : 0) : QString());
}

void StatusLine::setSnapKinds(std::uint32_t kinds) {
  for (std::size_t i = 0; i < kinds_.size(); ++i) kinds_[i]->setChecked((kinds & 1U << i) != 0);
}

void StatusLine::setShort(bool isShort) {
  snap_->setText(isShort ? QStringLiteral("□") : tr("Snap"));
  ortho_->setText(isShort ? QStringLiteral("∟") : tr("Ortho"));
}

}  // namespace host::window

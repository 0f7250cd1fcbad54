#include "Window/Frame/DocumentBar.h"

#include <QHBoxLayout>
#include <QToolButton>

#include "Window/Frame/Theme.h"

namespace host::window {

Banner::Banner(QWidget* parent) : QFrame(parent), label_(new QLabel) {
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(12, 4, 6, 4);
  auto* const close = new QToolButton;
  close->setText(QStringLiteral("×"));
  close->setToolTip(tr("Close this message"));
  close->setAccessibleName(tr("Close this message"));
  label_->setTextFormat(Qt::RichText);
  label_->setWordWrap(true);
  label_->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
  layout->addWidget(label_, 1);
  layout->addWidget(close);
  setMinimumHeight(34);
  setObjectName("banner");
  hide();
  connect(close, &QToolButton::clicked, this, &Banner::dismiss);
  connect(label_, &QLabel::linkActivated, this, &Banner::choose);
}

void Banner::show(const QString& text, const std::vector<Choice>& choices) {
  const Theme& theme = Theme::current();
  setStyleSheet("#banner { background: " + theme.banner.name() + "; } QLabel { background: transparent; }");
  choices_ = choices;
  QString html = text.toHtmlEscaped();
  for (const Choice& choice : choices_)
    html += " &nbsp; <a style=\"color:" + theme.accent.name() + "\" href=\"" + choice.first.toHtmlEscaped() + "\">" +
            choice.first.toHtmlEscaped() + "</a>";
  label_->setText(html);
  QFrame::show();
}

void Banner::dismiss() {
  choices_.clear();
  hide();
}

void Banner::choose(const QString& name) {
  for (const Choice& choice : choices_) {
    if (choice.first != name) continue;
    const auto act = choice.second;
    dismiss();
    if (act) act();
    return;
  }
}

}  // namespace host::window

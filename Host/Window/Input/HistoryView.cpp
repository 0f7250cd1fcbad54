#include "Window/Input/HistoryView.h"

#include <QEvent>
#include <QFontDatabase>
#include <QRegularExpression>
#include <QScrollBar>
#include <QVBoxLayout>

#include "Window/Commands/Language.h"
#include "Window/Frame/Theme.h"
#include "Window/Input/HostPhrases.h"

namespace host::window {
namespace {

constexpr int kMostLines = 5000;

/// Near commands become links.
QString withLinks(const QString& line) {
  static const QRegularExpression nearest("(:\\s+)([A-Z][A-Z0-9_]+(?:, [A-Z][A-Z0-9_]+)*)\\.$");
  QString html = line.toHtmlEscaped();
  const auto match = nearest.match(html);
  if (!match.hasMatch()) return html;
  QStringList links;
  for (const QString& name : match.captured(2).split(", ")) links += "<a href=\"run:" + name + "\">" + name + "</a>";
  return html.left(match.capturedStart(2)) + links.join(", ") + ".";
}

}  // namespace

HistoryView::HistoryView(QWidget* parent) : QWidget(parent), text_(new QTextBrowser), search_(new QLineEdit) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(search_);
  layout->addWidget(text_);
  text_->setFrameShape(QFrame::NoFrame);
  text_->setOpenLinks(false);
  text_->setFont(commandFont());
  text_->document()->setMaximumBlockCount(kMostLines);
  text_->document()->setDocumentMargin(4);
  text_->setFocusPolicy(Qt::ClickFocus);
  text_->setAccessibleName(tr("History"));
  search_->setPlaceholderText(tr("Search the history"));
  search_->setAccessibleName(tr("Search the history"));
  search_->setClearButtonEnabled(true);
  search_->setProperty("keepsTyping", true);
  search_->hide();
  connect(text_, &QTextBrowser::anchorClicked, this, [this](const QUrl& url) { emit linkClicked(url.toString()); });
  connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) {
    text_->moveCursor(QTextCursor::End);
    text_->find(text, QTextDocument::FindBackward);
  });
  connect(search_, &QLineEdit::returnPressed, this,
          [this] { text_->find(search_->text(), QTextDocument::FindBackward); });
  setHeight();
}

void HistoryView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) text_->document()->setDefaultStyleSheet(linkStyle());
  QWidget::changeEvent(event);
}

void HistoryView::print(std::wstring_view text) {
  for (const QChar c : toQt(text)) {
    if (c == '\n') {
      finishLine();
    } else {
      unfinished_ += c;
    }
  }
}

void HistoryView::finishLine() {
  const QString line = std::exchange(unfinished_, {});
  if (line.trimmed().isEmpty()) return;
  const Phrase phrase = hostPhrase(line);
  lastLine_ = phrase.text.trimmed();
  if (phrase.isRefusal) refusal_ = phrase.text;
  // A prompt with its answer: the prompt alone is translated.
  if (phrase.text == line) {
    const qsizetype colon = line.indexOf(": ");
    if (colon > 0) {
      const Phrase prompt = hostPhrase(line.left(colon + 2));
      tell((prompt.text + line.mid(colon + 2)).toHtmlEscaped(), Kind::Said);
      return;
    }
  }
  tell(phrase.isRefusal ? withLinks(phrase.text) : phrase.text.toHtmlEscaped(),
       phrase.isRefusal ? Kind::Error : Kind::Said);
}

void HistoryView::tell(const QString& html, Kind kind) {
  const Theme& theme = Theme::current();
  const QColor color = kind == Kind::Error  ? theme.error
                       : kind == Kind::Done ? theme.done
                       : kind == Kind::Note ? theme.muted
                                            : theme.text;
  QScrollBar* const bar = text_->verticalScrollBar();
  const bool isAtEnd = bar->value() >= bar->maximum() - 4;
  text_->append("<span style=\"color:" + color.name() + ";white-space:pre-wrap\">" + html + "</span>");
  if (isAtEnd) bar->setValue(bar->maximum());
}

void HistoryView::setLines(int lines) {
  lines_ = lines;
  setHeight();
}

void HistoryView::setLarge(bool large, int height) {
  isLarge_ = large;
  largeHeight_ = height;
  setHeight();
  text_->verticalScrollBar()->setValue(text_->verticalScrollBar()->maximum());
}

void HistoryView::setHeight() {
  search_->setVisible(isLarge_);
  setVisible(isLarge_ || lines_ > 0);
  constexpr int kMargins = 8;
  setFixedHeight(isLarge_ ? largeHeight_ : lines_ * text_->fontMetrics().lineSpacing() + kMargins);
}

}  // namespace host::window

#include "Window/Input/CommandLine.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTimer>
#include <algorithm>
#include <array>

#include "Window/Commands/Language.h"
#include "Window/Frame/Announce.h"
#include "Window/Frame/Theme.h"
#include "Window/Input/Prompt.h"

namespace host::window {
namespace {

constexpr std::size_t kRows = 8;
constexpr qsizetype kMostHistory = 500;

QString linkOf(const PromptPiece& piece) {
  switch (piece.sends) {
    case PromptPiece::Sends::Enter:
      return "enter:";
    case PromptPiece::Sends::Escape:
      return "escape:";
    default:
      return "text:" + piece.answer;
  }
}

/// Letters that with Ctrl edit a text: select, copy, paste, cut, redo, undo.
bool isForText(int key) {
  constexpr std::array kKeys{Qt::Key_A, Qt::Key_C, Qt::Key_V, Qt::Key_X, Qt::Key_Y, Qt::Key_Z};
  return std::find(kKeys.begin(), kKeys.end(), key) != kKeys.end();
}

}  // namespace

CommandLine::CommandLine(QWidget* parent)
    : QWidget(parent), prompt_(new QLabel), edit_(new QLineEdit), reason_(new QLabel), popup_(new QTreeWidget(this)) {
  setObjectName("commandLine");
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(8, 2, 8, 2);
  layout->setSpacing(4);
  layout->addWidget(prompt_);
  layout->addWidget(edit_, 1);
  layout->addWidget(reason_);
  prompt_->setFont(commandFont());
  prompt_->setTextFormat(Qt::RichText);
  prompt_->setTextInteractionFlags(Qt::LinksAccessibleByMouse);
  prompt_->setFocusPolicy(Qt::NoFocus);
  edit_->setFont(commandFont());
  edit_->setFrame(false);
  edit_->setAccessibleName(tr("Command line"));
  edit_->setContextMenuPolicy(Qt::DefaultContextMenu);
  edit_->installEventFilter(this);
  reason_->hide();

  // A child of the whole window, so that it takes neither the focus nor the window manager's notice.
  popup_->hide();
  popup_->setFocusPolicy(Qt::NoFocus);
  popup_->setHeaderHidden(true);
  popup_->setRootIsDecorated(false);
  popup_->setColumnCount(3);
  popup_->setUniformRowHeights(true);
  popup_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  popup_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  popup_->setObjectName("completion");
  popup_->setAccessibleName(tr("Commands that the letters may mean"));
  popup_->setIconSize({16, 16});

  connect(prompt_, &QLabel::linkActivated, this, &CommandLine::follow);
  connect(edit_, &QLineEdit::textEdited, this, [this] { complete(); });
  connect(edit_, &QLineEdit::textChanged, this, [this](const QString& text) {
    reason_->hide();
    emit typedChanged(text);
  });
  connect(popup_, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item) {
    edit_->setText(item->text(0));
    hidePopup();
    submitTyped();
  });
}

void CommandLine::showPrompt() {
  const Theme& theme = Theme::current();
  QString html;
  for (const PromptPiece& piece : promptPieces(promptText_)) {
    if (piece.sends == PromptPiece::Sends::Nothing || isClosed_) {
      html += piece.text.toHtmlEscaped();
    } else {
      html += "<a style=\"color:" + theme.accent.name() + "\" href=\"" + linkOf(piece).toHtmlEscaped() + "\">" +
              piece.text.toHtmlEscaped() + "</a>";
    }
  }
  if (!suffix_.isEmpty())
    html += " <span style=\"color:" + theme.muted.name() + "\">" + suffix_.toHtmlEscaped() + "</span>";
  prompt_->setText("<span style=\"white-space:pre;color:" + (isClosed_ ? theme.muted : theme.text).name() + "\">" +
                   html + "</span>");
}

void CommandLine::ask(const QString& prompt, editor::Wanted wanted, editor::AnswerForm form, const QString& suffix) {
  promptText_ = prompt.trimmed() + " ";
  suffix_ = suffix;
  wanted_ = wanted;
  form_ = form;
  isClosed_ = false;
  edit_->setReadOnly(false);
  announce(*edit_, prompt.trimmed());
  place_ = history_.size();
  showPrompt();
  complete();
}

void CommandLine::setClosed(const QString& why) {
  isClosed_ = true;
  edit_->setReadOnly(true);
  hidePopup();
  if (!why.isEmpty()) {
    promptText_ = why;
    suffix_.clear();
  }
  showPrompt();
}

void CommandLine::refuse(const QString& line, const QString& reason) {
  edit_->setText(line);
  edit_->selectAll();
  hidePopup();
  reason_->setText("<span style=\"color:" + Theme::current().error.name() + "\">" + reason.toHtmlEscaped() + "</span>");
  reason_->show();
}

void CommandLine::clearTyped() {
  edit_->clear();
  hidePopup();
}

void CommandLine::blink() {
  constexpr int kBlinkMs = 160;
  setStyleSheet("#commandLine { background: " + Theme::current().banner.name() + "; }");
  setAttribute(Qt::WA_StyledBackground);
  QTimer::singleShot(kBlinkMs, this, [this] { setStyleSheet({}); });
}

void CommandLine::insert(const QString& text) {
  edit_->setFocus();
  if (isClosed_) return;
  edit_->insert(text);
  complete();
}

bool CommandLine::escape() {
  if (popup_->isVisible()) {
    hidePopup();
    return true;
  }
  if (edit_->text().isEmpty()) return false;
  clearTyped();
  return true;
}

void CommandLine::follow(const QString& link) {
  if (isClosed_) return;
  edit_->setFocus();
  clearTyped();
  if (link == "enter:") {
    emit enterPressed();
  } else if (link == "escape:") {
    emit escapePressed();
  } else {
    emit submitted(link.mid(5));
  }
}

// ---- completion -----------------------------------------------------------------------------------------------------

void CommandLine::complete() {
  isChosen_ = false;
  const QString text = edit_->text();
  const bool isWanted = wanted_ == editor::Wanted::Command && !isClosed_ && completion_ && edit_->hasFocus();
  if (!isWanted || text.trimmed().isEmpty() || text.contains(' ')) {
    hidePopup();
    return;
  }
  popup_->clear();
  for (const Candidate& candidate : completion_->matching(text, kRows)) {
    auto* const item = new QTreeWidgetItem(popup_);
    item->setText(0, candidate.command);
    if (candidate.row == nullptr) continue;
    QString name = candidate.row->name();
    item->setText(1, name.remove(": %1"));
    item->setText(2, candidate.row->tip());
    if (!candidate.row->typed.isEmpty()) item->setToolTip(0, candidate.row->typed.join(", "));
  }
  if (popup_->topLevelItemCount() == 0) {
    hidePopup();
  } else {
    popup_->setCurrentItem(popup_->topLevelItem(0));
    showPopup();
  }
}

void CommandLine::showPopup() {
  QWidget* const whole = window();
  popup_->setParent(whole);
  popup_->setFont(font());
  for (int column = 0; column < 2; ++column) popup_->resizeColumnToContents(column);
  popup_->setColumnWidth(0, popup_->columnWidth(0) + 16);
  popup_->setColumnWidth(1, popup_->columnWidth(1) + 16);
  constexpr int kFrame = 10;
  const int height = popup_->sizeHintForRow(0) * popup_->topLevelItemCount() + kFrame;
  const QPoint corner = edit_->mapTo(whole, QPoint(0, 0));
  const int width = std::min(640, whole->width() - corner.x() - 12);
  const Theme& theme = Theme::current();
  popup_->setStyleSheet("#completion { border: 1px solid " + theme.line.name() +
                        "; border-radius: 6px; padding: 3px; }");
  popup_->setGeometry(corner.x() - 4, corner.y() - height - 6, width, height);
  popup_->show();
  popup_->raise();
}

void CommandLine::hidePopup() { popup_->hide(); }

void CommandLine::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (popup_->isVisible()) showPopup();
}

// ---- keys -----------------------------------------------------------------------------------------------------------

bool CommandLine::eventFilter(QObject* watched, QEvent* event) {
  if (watched == edit_) {
    // Keys of shortcuts that the line uses itself.
    if (event->type() == QEvent::ShortcutOverride) {
      const auto& key = *static_cast<QKeyEvent*>(event);
      if (key.matches(QKeySequence::Undo) && edit_->text().isEmpty()) return true;
      if (key.key() == Qt::Key_Delete && edit_->text().isEmpty()) return true;
      // Of Ctrl and a letter a field of text takes some as ways to move in it: they are keys of the menu.
      const bool isLetter = key.key() >= Qt::Key_A && key.key() <= Qt::Key_Z;
      if (key.modifiers() == Qt::ControlModifier && isLetter && (edit_->text().isEmpty() || !isForText(key.key())))
        return key.key() != Qt::Key_V;
    }
    if (event->type() == QEvent::KeyPress && keyPressed(*static_cast<QKeyEvent*>(event))) return true;
    if (event->type() == QEvent::FocusOut) hidePopup();
  }
  return QWidget::eventFilter(watched, event);
}

bool CommandLine::spaceEnds() const {
  if (form_ != editor::AnswerForm::Word) return false;
  const QString text = edit_->text();
  return !text.startsWith('(') && !text.startsWith('"') && edit_->cursorPosition() == text.size();
}

bool CommandLine::keyPressed(QKeyEvent& event) {
  const bool hasPopup = popup_->isVisible();
  switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (!isClosed_) submitTyped();
      return true;
    case Qt::Key_Space:
      if (event.modifiers() != Qt::NoModifier || !spaceEnds()) return false;
      if (!isClosed_ && !event.isAutoRepeat()) submitTyped();
      return true;
    case Qt::Key_Escape:
      if (!escape() || wanted_ != editor::Wanted::Command) emit escapePressed();
      return true;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
      if (hasPopup && popup_->currentItem() != nullptr) {
        edit_->setText(popup_->currentItem()->text(0));
        hidePopup();
      } else {
        emit tabPressed(event.key() == Qt::Key_Backtab);
      }
      return true;
    case Qt::Key_Up:
    case Qt::Key_Down: {
      if (event.modifiers() != Qt::NoModifier && event.modifiers() != Qt::KeypadModifier) return false;
      const int step = event.key() == Qt::Key_Up ? -1 : 1;
      if (!hasPopup) {
        recall(step);
        return true;
      }
      const int rows = popup_->topLevelItemCount();
      const int row = popup_->indexOfTopLevelItem(popup_->currentItem());
      popup_->setCurrentItem(popup_->topLevelItem((row + step + rows) % rows));
      isChosen_ = true;
      return true;
    }
    case Qt::Key_Comma:
      // The keypad's gives a point.
      if ((event.modifiers() & Qt::KeypadModifier) == 0 || isClosed_) return false;
      edit_->insert(".");
      return true;
    default:
      break;
  }
  if (event.matches(QKeySequence::Paste)) return paste();
  return false;
}

bool CommandLine::paste() {
  QString text = QApplication::clipboard()->text();
  text.remove('\r');
  if (text.endsWith('\n')) text.chop(1);
  if (!text.contains('\n') || isClosed_) return false;
  emit linesPasted(text.split('\n'));
  return true;
}

void CommandLine::recall(int step) {
  if (history_.isEmpty()) return;
  place_ = std::clamp<qsizetype>(place_ + step, 0, history_.size());
  edit_->setText(place_ < history_.size() ? history_[place_] : QString());
}

void CommandLine::submitTyped() {
  QString line = edit_->text();
  if (line.trimmed().isEmpty()) {
    clearTyped();
    emit enterPressed();
    return;
  }
  if (wanted_ == editor::Wanted::Command && completion_) {
    const qsizetype blank = line.indexOf(' ');
    const QString word = line.left(blank);
    QString meant = completion_->meant(word);
    if (isChosen_ && popup_->isVisible() && popup_->currentItem() != nullptr) meant = popup_->currentItem()->text(0);
    if (!meant.isEmpty()) line = meant + (blank < 0 ? QString() : line.mid(blank));
  }
  line = withDecimalPoint(line, wanted_);
  if (history_.isEmpty() || history_.back() != line) history_ += line;
  if (history_.size() > kMostHistory) history_.removeFirst();
  clearTyped();
  emit submitted(line);
}

}  // namespace host::window

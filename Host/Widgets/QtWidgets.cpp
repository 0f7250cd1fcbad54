#include "Widgets/QtWidgets.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QBuffer>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialog>
#include <QFrame>
#include <QGroupBox>
#include <QHash>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSignalBlocker>
#include <QStylePainter>
#include <QStyledItemDelegate>
#include <algorithm>

#include "Text/Text.h"
#include "Widgets/QtText.h"

namespace host::widgets {
namespace {

using win32::WindowKind;

constexpr int kItemMargin = 4;   // pixels of height that a list's item has beside its text
constexpr int kComboMargin = 8;  // pixels that a closed drop-down list has

/// What all widgets share: owning the toolkit's widget, place, visibility.
class QtWidget : public win32::Widget {
 public:
  QtWidget(QWidget* widget, Shown shown) : widget_(widget), shown_(shown) {}
  QtWidget(const QtWidget&) = delete;
  QtWidget& operator=(const QtWidget&) = delete;
  ~QtWidget() override {
    if (widget_ == nullptr) return;
    widget_->disconnect();
    if (shown_ == Shown::OnScreen) {
      widget_->hide();
      widget_->deleteLater();
    } else {
      delete widget_.data();
    }
  }

  QWidget* widget() const { return widget_; }
  void setRect(const RECT& rect) override { widget_->setGeometry(toQt(rect)); }
  void setVisible(bool visible) override { widget_->setVisible(visible); }
  void setEnabled(bool enabled) override { widget_->setEnabled(enabled); }
  void setFocus() override { widget_->setFocus(); }
  void repaint() override { widget_->update(); }
  // Drawn nowhere: a widget that no window system has shown yet paints itself too.
  void paintNow() override {
    QImage nowhere(1, 1, QImage::Format_RGB32);
    widget_->render(&nowhere, QPoint(), QRegion(0, 0, 1, 1), QWidget::RenderFlags());
  }

 private:
  QPointer<QWidget> widget_;
  Shown shown_;
};

/// A widget of one class of the toolkit.
template <class T>
class Typed : public QtWidget {
 public:
  Typed(T* widget, Shown shown) : QtWidget(widget, shown), t_(*widget) {}

 protected:
  T& t_;
};

// ---- dialog ---------------------------------------------------------------------------------------------------------

class DialogWindow : public QDialog {
 public:
  DialogWindow(HostWindow& window, QWidget* parent) : QDialog(parent), window_(window) {}
  /// Whoever sends the dialog away, the module hears of it: a dialog only hidden would wait for ever.
  void reject() override {
    if (isVisible()) win32::widgetEscaped(window_);
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_Escape) {
      win32::widgetEscaped(window_);
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
      win32::widgetEntered(window_);
    } else {
      QDialog::keyPressEvent(event);
    }
  }
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    win32::widgetClosed(window_);
  }
  void resizeEvent(QResizeEvent* event) override {
    QDialog::resizeEvent(event);
    if ((window_.style & WS_THICKFRAME) != 0)
      win32::widgetResized(window_, event->size().width(), event->size().height());
  }
  void paintEvent(QPaintEvent* event) override {
    QDialog::paintEvent(event);
    QPainter painter(this);
    PainterCanvas canvas(painter);
    win32::widgetPainted(window_, canvas);
  }

 private:
  HostWindow& window_;
};

/// A window's inside with the title bar that no window system has drawn.
QPixmap framed(const QPixmap& inside, const QWidget& window) {
  constexpr int kMargin = 8, kFrame = 1;
  QFont font = window.font();
  font.setBold(true);
  const int bar = QFontMetrics(font).height() + kMargin;
  QPixmap whole(inside.width() + 2 * kFrame, inside.height() + bar + 2 * kFrame);
  whole.fill(QColor(0x80, 0x88, 0x90));
  QPainter painter(&whole);
  const QRect title(kFrame, kFrame, inside.width(), bar);
  painter.fillRect(title, QColor(0xD0, 0xD8, 0xE0));
  painter.setFont(font);
  painter.drawText(title.adjusted(kMargin, 0, -kMargin, 0), Qt::AlignVCenter | Qt::TextSingleLine,
                   window.windowTitle());
  painter.drawPixmap(kFrame, kFrame + bar, inside);
  return whole;
}

/// Where dialogs were left, by their titles.
QHash<QString, QPoint>& formerPlaces() {
  static QHash<QString, QPoint> places;
  return places;
}

/// At the right edge of the plan, or of the front end's window; where it was left before.
QPoint openingPlace(const QDialog& dialog, const QWidget& window) {
  if (const auto left = formerPlaces().constFind(dialog.windowTitle()); left != formerPlaces().constEnd()) return *left;
  constexpr int kMargin = 12;
  const QRect given = qApp->property(win32::kDialogPlaceProperty).toRect();
  const QRect area = given.isValid() ? given : QRect(window.mapToGlobal(QPoint()), window.size());
  const QRect screen = window.screen()->availableGeometry();
  const int x = area.right() - dialog.width() - kMargin;
  return {std::clamp(x, screen.left(), std::max(screen.right() - dialog.width(), screen.left())),
          std::clamp(area.top() + kMargin, screen.top(), std::max(screen.bottom() - dialog.height(), screen.top()))};
}

class Dialog final : public Typed<DialogWindow> {
 public:
  Dialog(DialogWindow* dialog, Shown shown, bool isResizable)
      : Typed(dialog, shown), shown_(shown), isResizable_(isResizable) {}
  void setRect(const RECT& rect) override {
    const QSize size(rect.right - rect.left, rect.bottom - rect.top);
    if (isResizable_) {
      t_.resize(size);
    } else {
      t_.setFixedSize(size);
    }
  }
  void setStacking(win32::Stacking stacking) override {
    const bool wasVisible = t_.isVisible();
    t_.setWindowFlag(Qt::WindowStaysOnTopHint, stacking == win32::Stacking::Topmost);
    t_.setWindowFlag(Qt::WindowStaysOnBottomHint, stacking == win32::Stacking::Bottom);
    t_.setVisible(wasVisible);  // changed flags hide it
    if (stacking == win32::Stacking::Bottom && shown_ == Shown::OnScreen) t_.lower();
  }
  void setVisible(bool visible) override {
    const QWidget* const window = shown_ == Shown::OnScreen ? mainWindow() : nullptr;
    if (window != nullptr && visible && !t_.isVisible()) t_.move(openingPlace(t_, *window));
    if (window != nullptr && !visible && t_.isVisible()) formerPlaces()[t_.windowTitle()] = t_.pos();
    t_.setVisible(visible);
    if (visible) handleWaitingEvents();
  }
  std::wstring text() const override { return t_.windowTitle().toStdWString(); }
  void setText(std::wstring_view text) override { t_.setWindowTitle(toQt(text)); }
  std::string picture() override {
    handleWaitingEvents();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return framed(t_.grab(), t_).save(&buffer, "PNG") ? bytes.toStdString() : std::string();
  }

 private:
  /// A script never comes back to the loop of events: without this the window is not active, its focus does not
  /// move.
  static void handleWaitingEvents() { QApplication::processEvents(QEventLoop::ExcludeUserInputEvents); }

  Shown shown_;
  bool isResizable_;
};

// ---- buttons --------------------------------------------------------------------------------------------------------

class Button final : public Typed<QAbstractButton> {
 public:
  Button(QAbstractButton* button, HostWindow& window, Shown shown) : Typed(button, shown) {
    QObject::connect(button, &QAbstractButton::clicked, button, [&window] { win32::widgetClicked(window); });
  }
  std::wstring text() const override { return t_.text().toStdWString(); }
  void setText(std::wstring_view text) override { t_.setText(toQt(text)); }
  bool isChecked() const override { return t_.isChecked(); }
  void setChecked(bool checked) override { t_.setChecked(checked); }
  void click() override { t_.click(); }
};

class Group final : public Typed<QGroupBox> {
 public:
  using Typed::Typed;
  std::wstring text() const override { return t_.title().toStdWString(); }
  void setText(std::wstring_view text) override { t_.setTitle(toQt(text)); }
};

std::unique_ptr<win32::Widget> makeButton(HostWindow& window, QWidget* parent, Shown shown) {
  QAbstractButton* button = nullptr;
  switch (window.buttonType()) {
    case BS_GROUPBOX:
      return std::make_unique<Group>(new QGroupBox(parent), shown);
    case BS_CHECKBOX:
    case BS_AUTOCHECKBOX:
      button = new QCheckBox(parent);
      break;
    case BS_RADIOBUTTON:
    case BS_AUTORADIOBUTTON:
      button = new QRadioButton(parent);
      button->setAutoExclusive(false);  // groups are made by styles, not by parents
      break;
    default: {
      auto* const push = new QPushButton(parent);
      push->setAutoDefault(true);
      push->setDefault(window.buttonType() == BS_DEFPUSHBUTTON);
      button = push;
    }
  }
  return std::make_unique<Button>(button, window, shown);
}

// ---- texts ----------------------------------------------------------------------------------------------------------

class LabelWidget : public QLabel {
 public:
  LabelWidget(HostWindow& window, QWidget* parent) : QLabel(parent), window_(window) {}
  void show(const QImage& picture) {
    if (picture == picture_) return;
    picture_ = picture;
    update();
  }

 protected:
  void mousePressEvent(QMouseEvent* event) override {
    const QPoint place = event->position().toPoint();
    if (event->button() == Qt::LeftButton) win32::widgetPressed(window_, place.x(), place.y());
  }
  void paintEvent(QPaintEvent* event) override {
    if (!picture_.isNull()) QPainter(this).drawImage(0, 0, picture_);
    QLabel::paintEvent(event);
    QPainter painter(this);
    PainterCanvas canvas(painter);
    win32::widgetPainted(window_, canvas);
  }

 private:
  HostWindow& window_;
  QImage picture_;
};

class Label final : public Typed<LabelWidget> {
 public:
  Label(LabelWidget* label, Shown shown, bool hasShortcuts) : Typed(label, shown), hasShortcuts_(hasShortcuts) {}
  std::wstring text() const override { return text_; }
  void setText(std::wstring_view text) override {
    text_ = text;
    // One "&" marks a letter and is not shown, two are one.
    QString shown = toQt(text);
    if (hasShortcuts_) shown.replace("&&", QString(QChar(1))).remove('&').replace(QChar(1), "&");
    t_.setText(shown);
  }
  void setPicture(int width, int height, const std::uint32_t* pixels) override {
    if (pixels == nullptr) {
      t_.show(QImage());
    } else {
      t_.show(QImage(reinterpret_cast<const uchar*>(pixels), width, height, QImage::Format_ARGB32).copy());
    }
  }

 private:
  bool hasShortcuts_;
  std::wstring text_;
};

std::unique_ptr<win32::Widget> makeLabel(HostWindow& window, QWidget* parent, Shown shown) {
  auto* const label = new LabelWidget(window, parent);
  label->setTextFormat(Qt::PlainText);
  const DWORD type = window.style & SS_TYPEMASK;
  Qt::Alignment alignment = type == SS_CENTER ? Qt::AlignHCenter : type == SS_RIGHT ? Qt::AlignRight : Qt::AlignLeft;
  const bool isOneLine = (window.style & SS_CENTERIMAGE) != 0 || type == SS_LEFTNOWORDWRAP;
  alignment |= (window.style & SS_CENTERIMAGE) != 0 ? Qt::AlignVCenter : Qt::AlignTop;
  label->setAlignment(alignment);
  label->setWordWrap(!isOneLine);
  if (type == SS_BLACKFRAME || type == SS_GRAYFRAME) label->setFrameStyle(QFrame::Box | QFrame::Plain);
  return std::make_unique<Label>(label, shown, (window.style & SS_NOPREFIX) == 0);
}

// ---- edits ----------------------------------------------------------------------------------------------------------

class LineEditWidget : public QLineEdit {
 public:
  LineEditWidget(HostWindow& window, QWidget* parent) : QLineEdit(parent), window_(window) {}

 protected:
  // Digits only concerns typing: text set by programs or pasted is taken as it is.
  void keyPressEvent(QKeyEvent* event) override {
    const QString typed = event->text();
    const bool isShortcut = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) != 0;
    const bool isRefused = (window_.style & ES_NUMBER) != 0 && !isShortcut && !typed.isEmpty() && typed[0].isPrint() &&
                           !typed[0].isDigit();
    if (isRefused) return;
    if (isNumeric && !isShortcut && typed == "," && !isReadOnly()) {
      QKeyEvent point(event->type(), Qt::Key_Period, event->modifiers(), ".");
      QLineEdit::keyPressEvent(&point);
    } else {
      QLineEdit::keyPressEvent(event);
    }
  }

 private:
  HostWindow& window_;

 public:
  bool isNumeric = false;
};

class LineEdit final : public Typed<LineEditWidget> {
 public:
  LineEdit(LineEditWidget* edit, HostWindow& window, Shown shown) : Typed(edit, shown) {
    QObject::connect(edit, &QLineEdit::textEdited, edit, [&window] { win32::widgetEdited(window); });
    QObject::connect(edit, &QLineEdit::textChanged, edit, [&window] { win32::widgetTextChanged(window); });
  }
  std::wstring text() const override { return t_.text().toStdWString(); }
  void setText(std::wstring_view text) override { t_.setText(toQt(text)); }
  void setReadOnly(bool readOnly) override { t_.setReadOnly(readOnly); }
  void setNumeric() override { t_.isNumeric = true; }
  void select(int begin, int end) override {
    t_.setSelection(begin, end < 0 ? static_cast<int>(t_.text().size()) : end - begin);
  }
  void replaceSelection(std::wstring_view text) override { t_.insert(toQt(text)); }
  void type(wchar_t character) override {
    QKeyEvent event(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, toQt({&character, 1}));
    QApplication::sendEvent(&t_, &event);
  }
};

class TextEdit final : public Typed<QPlainTextEdit> {
 public:
  TextEdit(QPlainTextEdit* edit, HostWindow& window, Shown shown) : Typed(edit, shown) {
    QObject::connect(edit, &QPlainTextEdit::textChanged, edit, [&window] { win32::widgetTextChanged(window); });
  }
  std::wstring text() const override { return t_.toPlainText().toStdWString(); }
  void setText(std::wstring_view text) override { t_.setPlainText(toQt(text)); }
  void setReadOnly(bool readOnly) override { t_.setReadOnly(readOnly); }
  void select(int begin, int end) override {
    QTextCursor cursor = t_.textCursor();
    const int length = t_.document()->characterCount() - 1;
    cursor.setPosition(std::clamp(begin, 0, length));
    cursor.setPosition(end < 0 ? length : std::clamp(end, 0, length), QTextCursor::KeepAnchor);
    t_.setTextCursor(cursor);
  }
  void replaceSelection(std::wstring_view text) override { t_.insertPlainText(toQt(text)); }
  void scrollToCaret() override { t_.ensureCursorVisible(); }
};

std::unique_ptr<win32::Widget> makeEdit(HostWindow& window, QWidget* parent, Shown shown) {
  if ((window.style & ES_MULTILINE) != 0) {
    auto* const edit = new QPlainTextEdit(parent);
    if ((window.style & ES_AUTOHSCROLL) != 0) edit->setLineWrapMode(QPlainTextEdit::NoWrap);
    if ((window.style & WS_VSCROLL) == 0) edit->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    if ((window.style & WS_HSCROLL) == 0) edit->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    return std::make_unique<TextEdit>(edit, window, shown);
  }
  return std::make_unique<LineEdit>(new LineEditWidget(window, parent), window, shown);
}

// ---- lists ----------------------------------------------------------------------------------------------------------

class OwnerDrawnItems : public QStyledItemDelegate {
 public:
  OwnerDrawnItems(HostWindow& window, QObject* parent) : QStyledItemDelegate(parent), window_(window) {}
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    PainterCanvas canvas(*painter);
    const UINT state = (option.state & QStyle::State_Selected) != 0 ? ODS_SELECTED : 0;
    win32::widgetPaintsItem(window_, canvas, fromQt(option.rect), index.row(), state);
  }
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return {QStyledItemDelegate::sizeHint(option, index).width(), option.fontMetrics.height() + kItemMargin};
  }

 private:
  HostWindow& window_;
};

class ComboWidget : public QComboBox {
 public:
  ComboWidget(HostWindow& window, QWidget* parent) : QComboBox(parent), window_(window) {
    if (window.isOwnerDrawn()) setItemDelegate(new OwnerDrawnItems(window, this));
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    if (!window_.isOwnerDrawn()) {
      QComboBox::paintEvent(event);
      return;
    }
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    const QRect area = style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    painter.setClipRect(area);
    PainterCanvas canvas(painter);
    const UINT state = ODS_COMBOBOXEDIT | (isEnabled() ? 0U : ODS_DISABLED);
    win32::widgetPaintsItem(window_, canvas, fromQt(area), currentIndex(), state);
  }

 private:
  HostWindow& window_;
};

class Combo final : public Typed<ComboWidget> {
 public:
  Combo(ComboWidget* combo, HostWindow& window, Shown shown) : Typed(combo, shown) {
    QObject::connect(combo, &QComboBox::activated, combo, [&window] { win32::widgetChosen(window); });
  }
  // The rectangle of a drop-down list is that of the open list.
  void setRect(const RECT& rect) override {
    const int line = t_.fontMetrics().height();
    const int closed = line + kComboMargin;
    t_.setGeometry(rect.left, rect.top, rect.right - rect.left, closed);
    t_.setMaxVisibleItems(std::max((rect.bottom - rect.top - closed) / (line + kItemMargin), 4));
  }
  std::wstring text() const override { return t_.currentText().toStdWString(); }
  int count() const override { return t_.count(); }
  std::wstring item(int index) const override { return t_.itemText(index).toStdWString(); }
  void insertItem(int index, std::wstring_view text) override {
    const int former = t_.currentIndex();
    t_.insertItem(index, toQt(text));
    if (former < 0) t_.setCurrentIndex(-1);
  }
  void removeItem(int index) override {
    const bool wasCurrent = t_.currentIndex() == index;
    t_.removeItem(index);
    if (wasCurrent) t_.setCurrentIndex(-1);
  }
  void clear() override { t_.clear(); }
  int current() const override { return t_.currentIndex(); }
  void setCurrent(int index) override { t_.setCurrentIndex(index); }
};

// What is chosen is the selection: the toolkit also has a current row, which the focus alone can give to the first
// item.
class List final : public Typed<QListWidget> {
 public:
  List(QListWidget* list, HostWindow& window, Shown shown) : Typed(list, shown) {
    QObject::connect(list, &QListWidget::itemSelectionChanged, list, [&window] { win32::widgetChosen(window); });
    QObject::connect(list, &QListWidget::itemDoubleClicked, list, [&window] { win32::widgetDoubleClicked(window); });
  }
  int count() const override { return t_.count(); }
  std::wstring item(int index) const override { return t_.item(index)->text().toStdWString(); }
  void insertItem(int index, std::wstring_view text) override {
    const QSignalBlocker quiet(t_);
    t_.insertItem(index, toQt(text));
  }
  void removeItem(int index) override {
    const QSignalBlocker quiet(t_);
    const int chosen = current();
    delete t_.takeItem(index);
    choose(chosen == index ? -1 : chosen - (index < chosen ? 1 : 0));
  }
  void clear() override {
    const QSignalBlocker quiet(t_);
    t_.clear();
  }
  int current() const override {
    const QModelIndexList rows = t_.selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.front().row();
  }
  void setCurrent(int index) override {
    const QSignalBlocker quiet(t_);
    choose(index);
  }

 private:
  void choose(int index) {
    t_.setCurrentRow(index);
    if (index < 0) t_.clearSelection();
  }
};

}  // namespace

QWidget* widgetOf(HostWindow* window) {
  const auto* const widget = window != nullptr ? dynamic_cast<const QtWidget*>(window->widget.get()) : nullptr;
  return widget != nullptr ? widget->widget() : nullptr;
}

QWidget* mainWindow() { return qobject_cast<QWidget*>(qApp->property(win32::kMainWindowProperty).value<QObject*>()); }

QWidget* parentFor(HostWindow* window) {
  if (QWidget* const own = widgetOf(window)) return own;
  QWidget* const dialog = QApplication::activeModalWidget();
  return dialog != nullptr ? dialog : mainWindow();
}

std::unique_ptr<win32::Widget> makeWidget(HostWindow& window, const win32::DialogFont* font, Shown shown) {
  QWidget* const parent = widgetOf(window.parent);
  switch (window.kind) {
    case WindowKind::Dialog: {
      auto* const dialog = new DialogWindow(window, shown == Shown::OnScreen ? parentFor(window.parent) : parent);
      if (font != nullptr) dialog->setFont(dialogFont(*font));
      if (shown == Shown::OnScreen && window.dialog && window.dialog->isModal)
        dialog->setWindowModality(Qt::ApplicationModal);
      return std::make_unique<Dialog>(dialog, shown, (window.style & WS_THICKFRAME) != 0);
    }
    case WindowKind::Button:
      return makeButton(window, parent, shown);
    case WindowKind::Edit:
      return makeEdit(window, parent, shown);
    case WindowKind::ListBox:
      return std::make_unique<List>(new QListWidget(parent), window, shown);
    case WindowKind::ComboBox:
      return std::make_unique<Combo>(new ComboWidget(window, parent), window, shown);
    default:
      return makeLabel(window, parent, shown);
  }
}

}  // namespace host::widgets

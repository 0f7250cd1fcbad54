#include "Window/Files/StartPage.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QPainter>
#include <QPushButton>

#include "Platform/Paths.h"
#include "Preview/FilePreview.h"
#include "Window/Commands/Icons.h"
#include "Window/Commands/Language.h"
#include "Window/Files/FileDesk.h"
#include "Window/Frame/Theme.h"

namespace host::window {
namespace {

constexpr int kPictureWidth = 176, kPictureHeight = 116;
constexpr qint64 kLargestDrawn = qint64{24} << 20;  // a larger drawing would keep the page from answering

/// A sheet in the place of a picture.
QPixmap blank(bool isThere) {
  const Theme& theme = Theme::current();
  QPixmap pixmap(kPictureWidth, kPictureHeight);
  pixmap.fill(isThere ? QColor(Qt::white) : theme.window);
  QPainter painter(&pixmap);
  painter.setPen(theme.line);
  painter.drawRect(pixmap.rect().adjusted(0, 0, -1, -1));
  return pixmap;
}

QPixmap pictureOf(const QString& file) {
  const preview::FilePreview& made =
      preview::previewOf(platform::pathOf(file.toStdString()), {kPictureWidth - 12, kPictureHeight - 12, 0xFFFFFF});
  QPixmap pixmap = blank(true);
  if (!made.pixels) return pixmap;
  const QImage image(reinterpret_cast<const uchar*>(made.pixels->argb.data()), made.pixels->width, made.pixels->height,
                     QImage::Format_ARGB32);
  QPainter painter(&pixmap);
  painter.drawImage((kPictureWidth - image.width()) / 2, (kPictureHeight - image.height()) / 2, image);
  return pixmap;
}

QString whenChanged(const QDateTime& at) {
  const QLocale locale(language() == Language::Finnish ? QLocale::Finnish : QLocale::English);
  return locale.toString(at, QLocale::ShortFormat);
}

QPushButton* button(const QString& text, const QString& icon) {
  auto* const made = new QPushButton(hostIcon(icon, Theme::current().text), text);
  made->setMinimumHeight(36);
  made->setStyleSheet("text-align: left; padding-left: 14px;");
  return made;
}

}  // namespace

StartPage::StartPage(const std::vector<std::filesystem::path>& examples, QWidget* parent)
    : QWidget(parent), recent_(new QListWidget) {
  auto* const whole = new QHBoxLayout(this);
  whole->setContentsMargins(48, 40, 48, 24);
  whole->setSpacing(48);
  auto* const left = new QVBoxLayout;
  left->setSpacing(8);
  auto* const title = new QLabel("Tolmex");
  QFont large = title->font();
  large.setPointSizeF(large.pointSizeF() * 2.2);
  large.setWeight(QFont::DemiBold);
  title->setFont(large);
  auto* const about = new QLabel(tr("Plan lines become an illustration."));
  about->setStyleSheet("color: " + Theme::current().muted.name());
  left->addWidget(title);
  left->addWidget(about);
  left->addSpacing(20);
  QPushButton* const open = button(tr("Open…"), "open");
  QPushButton* const fresh = button(tr("New"), "new");
  left->addWidget(open);
  left->addWidget(fresh);
  connect(open, &QPushButton::clicked, this, &StartPage::openWanted);
  connect(fresh, &QPushButton::clicked, this, &StartPage::newWanted);
  for (const std::filesystem::path& example : examples) {
    const QString file = QString::fromStdString(example.string());
    QPushButton* const copy = button(tr("Example: %1").arg(QFileInfo(file).completeBaseName()), "picture");
    left->addWidget(copy);
    connect(copy, &QPushButton::clicked, this, [this, file] { emit exampleWanted(file); });
  }
  left->addSpacing(16);
  auto* const drop = new QLabel(tr("Files dropped here open."));
  drop->setStyleSheet("color: " + Theme::current().muted.name());
  left->addWidget(drop);
  left->addStretch();
  auto* const leftSide = new QWidget;
  leftSide->setLayout(left);
  left->setContentsMargins(0, 0, 0, 0);
  leftSide->setFixedWidth(270);
  whole->addWidget(leftSide);

  auto* const right = new QVBoxLayout;
  auto* const head = new QLabel(tr("Recent drawings"));
  QFont bold = head->font();
  bold.setBold(true);
  head->setFont(bold);
  right->addWidget(head);
  right->addWidget(recent_, 1);
  whole->addLayout(right, 1);
  recent_->setViewMode(QListView::IconMode);
  recent_->setResizeMode(QListView::Adjust);
  recent_->setMovement(QListView::Static);
  recent_->setIconSize({kPictureWidth, kPictureHeight});
  recent_->setGridSize({kPictureWidth + 28, kPictureHeight + 74});
  recent_->setWordWrap(true);
  recent_->setTextElideMode(Qt::ElideMiddle);
  recent_->setFrameShape(QFrame::NoFrame);
  recent_->setStyleSheet("QListWidget { background: transparent; }");
  recent_->setContextMenuPolicy(Qt::CustomContextMenu);
  recent_->setAccessibleName(tr("Recent drawings"));
  connect(recent_, &QListWidget::customContextMenuRequested, this, &StartPage::contextMenu);
  connect(recent_, &QListWidget::itemActivated, this,
          [this](QListWidgetItem* item) { emit recentWanted(item->data(Qt::UserRole).toString()); });
  connect(recent_, &QListWidget::itemClicked, this,
          [this](QListWidgetItem* item) { emit recentWanted(item->data(Qt::UserRole).toString()); });
  drawing_.setSingleShot(true);
  connect(&drawing_, &QTimer::timeout, this, &StartPage::drawNext);
}

void StartPage::showEvent(QShowEvent* event) {
  refresh();
  QWidget::showEvent(event);
}

void StartPage::refresh() {
  recent_->clear();
  for (const QString& file : FileDesk::recent()) {
    const QFileInfo info(file);
    QString folder = info.path();
    if (folder.startsWith(QDir::homePath())) folder.replace(0, QDir::homePath().size(), "~");
    auto* const item = new QListWidgetItem(recent_);
    item->setText(info.fileName() + '\n' + folder + '\n' +
                  (info.exists() ? whenChanged(info.lastModified()) : tr("no longer there")));
    item->setIcon(blank(info.exists()));
    item->setToolTip(file);
    item->setData(Qt::UserRole, file);
    item->setTextAlignment(Qt::AlignHCenter | Qt::AlignTop);
    if (!info.exists()) item->setFlags(Qt::ItemIsSelectable);
  }
  next_ = 0;
  drawing_.start(0);
}

/// One picture at a time, so that the page answers in between.
void StartPage::drawNext() {
  if (!isVisible() || next_ >= recent_->count()) return;
  QListWidgetItem* const item = recent_->item(next_++);
  const QString file = item->data(Qt::UserRole).toString();
  const QFileInfo info(file);
  if (info.exists() && info.size() <= kLargestDrawn && !file.endsWith(".dwg", Qt::CaseInsensitive))
    item->setIcon(pictureOf(file));
  drawing_.start(0);
}

void StartPage::contextMenu(const QPoint& at) {
  QListWidgetItem* const item = recent_->itemAt(at);
  if (item == nullptr) return;
  const QString file = item->data(Qt::UserRole).toString();
  QMenu menu;
  menu.addAction(tr("Remove from the List"));
  if (menu.exec(recent_->viewport()->mapToGlobal(at)) == nullptr) return;
  FileDesk::forgetRecent(file);
  refresh();
}

}  // namespace host::window

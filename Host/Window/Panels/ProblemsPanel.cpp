#include "Window/Panels/ProblemsPanel.h"

#include <QHeaderView>
#include <QMenu>
#include <QVBoxLayout>

#include "Problems/Problem.h"
#include "Text/Text.h"
#include "Window/Commands/Icons.h"
#include "Window/Commands/Language.h"
#include "Window/Frame/Theme.h"
#include "Window/Panels/Facts.h"

namespace host::window {
namespace {

constexpr int kHandle = Qt::UserRole;

/// Answers that were refused stand in the history; the list is of what stays wrong.
bool isListed(const Problem& problem) {
  return problem.code != Code::CommandUnknown && problem.code != Code::AnswerRefused &&
         problem.code != Code::Interrupted && problem.code != Code::AnswerMissing;
}

}  // namespace

ProblemsPanel::ProblemsPanel(const PanelContext& context, QWidget* parent)
    : QWidget(parent), context_(context), list_(new QTreeWidget), empty_(new QLabel(tr("No problems."))) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(empty_);
  layout->addWidget(list_, 1);
  empty_->setContentsMargins(12, 12, 12, 12);
  empty_->setStyleSheet("color: " + Theme::current().muted.name());
  list_->setColumnCount(3);
  list_->setHeaderLabels({tr("Problem"), tr("Handle"), tr("Line")});
  list_->setRootIsDecorated(false);
  list_->setWordWrap(true);
  list_->setUniformRowHeights(false);
  list_->header()->setStretchLastSection(false);
  list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  list_->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
  list_->header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
  list_->setContextMenuPolicy(Qt::CustomContextMenu);
  list_->setAccessibleName(tr("Problems"));
  setFocusProxy(list_);
  connect(list_, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item) { show(*item); });
  connect(list_, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) { show(*item); });
  connect(list_, &QTreeWidget::customContextMenuRequested, this, &ProblemsPanel::contextMenu);
}

void ProblemsPanel::refresh() {
  if (!context_.engine.isWaiting()) return;
  const database::DrawingDatabase* const drawing = context_.engine.drawing();
  const std::vector<Problem>& session = context_.engine.problems();
  const std::size_t own = drawing != nullptr ? drawing->problems().size() : 0;
  if (drawing == shown_ && own == shownOwn_ && session.size() == shownSession_) return;
  shown_ = drawing;
  shownOwn_ = own;
  shownSession_ = session.size();
  list_->clear();
  const auto add = [this](const Problem& problem) {
    if (!isListed(problem)) return;
    auto* const item = new QTreeWidgetItem(list_);
    item->setText(0, toQt(problem.text));
    item->setToolTip(0, toQt(problem.sentence()));
    if (problem.handle != 0) item->setText(1, toQt(text::formatHandle(problem.handle)));
    if (problem.line != 0) item->setText(2, QString::number(problem.line));
    item->setData(0, kHandle, static_cast<qulonglong>(problem.handle));
    if (!problem.isNote) item->setForeground(0, Theme::current().text);
  };
  if (drawing != nullptr) {
    for (const Problem& problem : drawing->problems()) add(problem);
  }
  // What reading has found was reported too, with the file's name.
  for (const Problem& problem : session) {
    const bool isOfReading = problem.status() == RunStatus::Done && !problem.file.empty();
    if (!isOfReading) add(problem);
  }
  empty_->setVisible(count() == 0);
  list_->setVisible(count() > 0);
  emit counted();
}

void ProblemsPanel::show(QTreeWidgetItem& item) {
  if (!context_.engine.isWaiting() || context_.engine.drawing() == nullptr) return;
  const auto handle = item.data(0, kHandle).toULongLong();
  database::Slot* const entity = handle != 0 ? context_.engine.drawing()->findHandle(handle) : nullptr;
  if (entity == nullptr || !entity->isEntity() || entity->isErased()) return;
  context_.canvas.zoomTo(std::vector<database::Slot*>{entity});
  if (context_.engine.input().isAtRest()) context_.talk.select({entity});
}

void ProblemsPanel::contextMenu(const QPoint& at) {
  QTreeWidgetItem* const item = list_->itemAt(at);
  if (item == nullptr || !context_.engine.isWaiting() || context_.engine.drawing() == nullptr) return;
  const auto handle = item->data(0, kHandle).toULongLong();
  database::Slot* const entity = handle != 0 ? context_.engine.drawing()->findHandle(handle) : nullptr;
  QMenu menu;
  QAction* const place = menu.addAction(tr("Show"));
  place->setEnabled(entity != nullptr);
  QAction* close = nullptr;
  if (entity != nullptr && entity->isEntity() && !factsOf(*entity).isClosed.value_or(true))
    close = menu.addAction(tr("Close Line"));
  QAction* const chosen = menu.exec(list_->viewport()->mapToGlobal(at));
  if (chosen == nullptr) return;
  if (chosen == place) show(*item);
  if (chosen == close) context_.talk.runLines({"JOIN", handentOf(*entity), ""});
}

}  // namespace host::window

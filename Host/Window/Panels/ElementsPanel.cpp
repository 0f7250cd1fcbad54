#include "Window/Panels/ElementsPanel.h"

#include <QHeaderView>
#include <QPainter>
#include <QVBoxLayout>
#include <map>

#include "Text/Text.h"
#include "Window/Commands/Icons.h"
#include "Window/Commands/Language.h"
#include "Window/Frame/Theme.h"
#include "Window/Panels/Facts.h"

namespace host::window {
namespace {

constexpr int kKind = Qt::UserRole, kHandle = Qt::UserRole + 1;
constexpr std::size_t kMostItems = 500;  // of one kind in the list

/// Length for lines, area for what is closed.
QString sizeOf(const EntityFacts& facts) {
  if (facts.area) return squareMetres(*facts.area);
  if (facts.length) return metres(*facts.length);
  return {};
}

}  // namespace

ElementsPanel::ElementsPanel(const PanelContext& context, QWidget* parent)
    : QWidget(parent), context_(context), tree_(new QTreeWidget), empty_(new QLabel) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(empty_);
  layout->addWidget(tree_, 1);
  empty_->setText(tr("No elements yet. Choose Grass, point at a polyline."));
  empty_->setWordWrap(true);
  empty_->setContentsMargins(12, 12, 12, 12);
  empty_->setStyleSheet("color: " + Theme::current().muted.name());
  tree_->setColumnCount(3);
  tree_->setHeaderLabels({tr("Kind"), tr("Count"), tr("In all")});
  tree_->header()->setStretchLastSection(false);
  tree_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  tree_->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
  tree_->header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
  tree_->setAccessibleName(tr("Elements"));
  tree_->setIconSize({16, 16});
  setFocusProxy(tree_);
  connect(tree_, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) { fill(*item); });
  connect(tree_, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item) { choose(*item); });
  connect(tree_, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) { choose(*item); });
}

void ElementsPanel::showEvent(QShowEvent* event) {
  refresh();
  QWidget::showEvent(event);
}

void ElementsPanel::refresh() {
  if (!context_.engine.isWaiting()) return;
  const database::DrawingDatabase* const drawing = context_.engine.drawing();
  const database::BlockContents* const space = context_.engine.application().currentSpace();
  const quint64 count = drawing != nullptr ? drawing->changeCount() : 0;
  if (space == shown_ && count == shownCount_) return;
  shown_ = space;
  shownCount_ = count;
  QStringList open;
  for (int i = 0; i < tree_->topLevelItemCount(); ++i) {
    if (tree_->topLevelItem(i)->isExpanded()) open += tree_->topLevelItem(i)->text(0);
  }
  tree_->clear();
  kinds_.clear();
  std::map<const MenuRow*, std::vector<database::Slot*>> found;
  if (space != nullptr) {
    std::vector<const MenuRow*> makers;  // by layer index
    std::vector<bool> isKnown;
    for (database::Slot* const entity : livingEntities(*space)) {
      if (entity->layer >= makers.size()) {
        makers.resize(entity->layer + 1);
        isKnown.resize(entity->layer + 1);
      }
      if (!isKnown[entity->layer]) {
        isKnown[entity->layer] = true;
        const QString layer = toQt(drawing->layerName(entity->layer));
        if (!context_.tables.isFillLayer(layer)) makers[entity->layer] = context_.tables.makerOf(layer);
      }
      if (const MenuRow* const maker = makers[entity->layer]) found[maker].push_back(entity);
    }
  }
  for (const MenuRow* const row : context_.tables.all()) {
    const auto kind = found.find(row);
    if (kind == found.end()) continue;
    double length = 0, area = 0;
    bool isArea = false;
    for (const database::Slot* const entity : kind->second) {
      const EntityFacts facts = factsOf(*entity);
      length += facts.length.value_or(0);
      area += facts.area.value_or(0);
      isArea = isArea || facts.area.has_value();
    }
    auto* const item = new QTreeWidgetItem(tree_);
    item->setText(0, row->name());
    item->setIcon(0, iconOf(row->icon, Theme::current().text, colourOfLayer(*drawing, row->colour)));
    item->setText(1, QString::number(kind->second.size()));
    item->setText(2, isArea ? squareMetres(area) : length > 0 ? metres(length) : QString());
    for (const int column : {1, 2}) item->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    item->setData(0, kKind, static_cast<int>(kinds_.size()));
    item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    kinds_.push_back(kind->second);
    if (open.contains(row->name())) item->setExpanded(true);
  }
  empty_->setVisible(kinds_.empty());
  tree_->setVisible(!kinds_.empty());
}

void ElementsPanel::fill(QTreeWidgetItem& kind) {
  if (kind.childCount() > 0 || !context_.engine.isWaiting()) return;
  const auto& entities = kinds_[static_cast<std::size_t>(kind.data(0, kKind).toInt())];
  int number = 0;
  for (const database::Slot* const entity : entities) {
    if (static_cast<std::size_t>(++number) > kMostItems) {
      auto* const rest = new QTreeWidgetItem(&kind);
      rest->setText(0, tr("and %1 more").arg(entities.size() - kMostItems));
      break;
    }
    auto* const item = new QTreeWidgetItem(&kind);
    item->setText(0, kind.text(0) + ' ' + QString::number(number));
    item->setText(2, sizeOf(factsOf(*entity)));
    item->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
    item->setData(0, kHandle, static_cast<qulonglong>(entity->handle));
  }
}

void ElementsPanel::choose(QTreeWidgetItem& item) {
  if (!context_.engine.isWaiting() || context_.engine.drawing() == nullptr) return;
  std::vector<database::Slot*> chosen;
  if (item.parent() == nullptr) {
    chosen = kinds_[static_cast<std::size_t>(item.data(0, kKind).toInt())];
  } else if (database::Slot* const entity =
                 context_.engine.drawing()->findHandle(item.data(0, kHandle).toULongLong())) {
    chosen.push_back(entity);
  }
  std::erase_if(chosen, [](const database::Slot* entity) { return entity->isErased(); });
  if (chosen.empty()) return;
  context_.canvas.zoomTo(chosen);
  // While a command asks for objects a click in the list is an answer.
  if (context_.engine.input().isAtRest()) {
    context_.talk.select(chosen);
  } else if (context_.talk.state() == Conversation::State::Selection ||
             (context_.talk.state() == Conversation::State::Entity && chosen.size() == 1)) {
    QStringList lines;
    for (const database::Slot* const entity : chosen) lines += handentOf(*entity);
    context_.talk.answer(lines);
  }
}

}  // namespace host::window

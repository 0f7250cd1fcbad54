#include "Window/Panels/LayersPanel.h"

#include <QColorDialog>
#include <QHeaderView>
#include <QMenu>
#include <QPainter>
#include <QVBoxLayout>
#include <unordered_map>

#include "Database/Palette.h"
#include "Database/TagValues.h"
#include "Geometry/Layers.h"
#include "Window/Commands/Icons.h"
#include "Window/Commands/Language.h"
#include "Window/Frame/Theme.h"
#include "Window/Panels/Facts.h"

namespace host::window {
namespace {

constexpr int kName = Qt::UserRole, kState = Qt::UserRole + 1;
enum State { Off = 1, Frozen = 2, Locked = 4 };

QIcon swatch(const QColor& colour) {
  QPixmap pixmap(28, 28);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Theme::current().line);
  painter.setBrush(colour);
  painter.drawRoundedRect(QRectF(2, 2, 24, 24), 5, 5);
  painter.end();
  pixmap.setDevicePixelRatio(2);
  return pixmap;
}

}  // namespace

LayersPanel::LayersPanel(const PanelContext& context, QWidget* parent)
    : QWidget(parent), context_(context), filter_(new QLineEdit), tree_(new QTreeWidget) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 6, 0, 0);
  layout->setSpacing(6);
  auto* const top = new QVBoxLayout;
  top->setContentsMargins(8, 0, 8, 0);
  top->addWidget(filter_);
  layout->addLayout(top);
  layout->addWidget(tree_, 1);
  filter_->setPlaceholderText(tr("Filter the layers"));
  filter_->setAccessibleName(tr("Filter the layers"));
  filter_->setClearButtonEnabled(true);
  filter_->setProperty("keepsTyping", true);
  tree_->setColumnCount(6);
  tree_->setHeaderLabels({QString(), QString(), QString(), QString(), tr("Layer"), tr("Things")});
  tree_->header()->setStretchLastSection(false);
  tree_->header()->setMinimumSectionSize(24);
  for (const int column : {Thawed, Unlocked, Colour}) {
    tree_->header()->setSectionResizeMode(column, QHeaderView::Fixed);
    tree_->setColumnWidth(column, 28);
  }
  tree_->header()->setSectionResizeMode(Shown, QHeaderView::Fixed);
  tree_->setColumnWidth(Shown, 48);
  tree_->header()->setSectionResizeMode(Name, QHeaderView::Stretch);
  tree_->header()->setSectionResizeMode(Things, QHeaderView::ResizeToContents);
  tree_->setIndentation(14);
  tree_->setIconSize({16, 16});
  tree_->setUniformRowHeights(true);
  tree_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  tree_->setContextMenuPolicy(Qt::CustomContextMenu);
  tree_->setAccessibleName(tr("Layers"));
  setFocusProxy(tree_);
  connect(tree_, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item, int column) { click(*item, column); });
  connect(tree_, &QTreeWidget::customContextMenuRequested, this, &LayersPanel::contextMenu);
  connect(filter_, &QLineEdit::textChanged, this, &LayersPanel::filter);
}

void LayersPanel::showEvent(QShowEvent* event) {
  refresh();
  QWidget::showEvent(event);
}

void LayersPanel::refresh() {
  if (!context_.engine.isWaiting()) return;
  const database::DrawingDatabase* const drawing = context_.engine.drawing();
  const quint64 count = drawing != nullptr ? drawing->changeCount() : 0;
  if (drawing == shown_ && count == shownCount_) return;
  shown_ = drawing;
  shownCount_ = count;
  tree_->clear();
  if (drawing == nullptr) return;
  std::unordered_map<std::uint32_t, int> things;
  if (const database::BlockContents* const space = context_.engine.application().currentSpace()) {
    for (const database::Slot* const entity : livingEntities(*space)) ++things[entity->layer];
  }
  geometry::LayerStates states(*drawing);
  const QColor text = Theme::current().text, muted = Theme::current().muted;
  QTreeWidgetItem* modules = nullptr;
  std::vector<std::pair<QString, const database::Slot*>> records;
  for (const database::Slot* const record : drawing->records(database::DxfType::Layer)) {
    if (!record->isErased()) records.emplace_back(toQt(drawing->recordName(*record)), record);
  }
  std::ranges::sort(records,
                    [](const auto& a, const auto& b) { return a.first.compare(b.first, Qt::CaseInsensitive) < 0; });
  const std::wstring current = drawing->headerText("$CLAYER", 8).value_or(std::wstring());
  for (const auto& [name, record] : records) {
    const std::uint32_t index = drawing->findLayer(fromQt(name));
    const geometry::LayerState& state = states.at(index);
    const MenuRow* const emptier = context_.tables.emptierOf(name);
    const bool isOfModule = emptier != nullptr || context_.tables.makerOf(name) != nullptr;
    if (isOfModule && modules == nullptr) {
      modules = new QTreeWidgetItem;
      const auto& tables = context_.tables.modules();
      modules->setText(
          Name, tables.empty() || tables.front().groups.empty() ? QString() : tables.front().groups.front().name());
      modules->setFirstColumnSpanned(false);
    }
    auto* const item = isOfModule ? new QTreeWidgetItem(modules) : new QTreeWidgetItem(tree_);
    item->setIcon(Shown, hostIcon(state.off ? "states/layer-off" : "states/layer-on", state.off ? muted : text));
    item->setIcon(Thawed,
                  hostIcon(state.frozen ? "states/layer-frozen" : "states/layer-thawed", state.frozen ? text : muted));
    item->setIcon(Unlocked, hostIcon(state.locked ? "states/layer-locked" : "states/layer-unlocked",
                                     state.locked ? text : muted));
    item->setIcon(Colour, swatch(colourOfLayer(*drawing, name)));
    item->setText(Name, name + (emptier != nullptr ? QStringLiteral(" · ") + tr("emptied by updates") : QString()));
    item->setText(Things, QString::number(things[index]));
    item->setTextAlignment(Things, Qt::AlignRight | Qt::AlignVCenter);
    item->setToolTip(Shown, state.off ? tr("Off: click shows the layer") : tr("On: click hides the layer"));
    item->setToolTip(Thawed, state.frozen ? tr("Frozen: click thaws the layer") : tr("Click freezes the layer"));
    item->setToolTip(Unlocked, state.locked ? tr("Locked: click unlocks the layer") : tr("Click locks the layer"));
    item->setToolTip(Colour, tr("Click changes the colour"));
    item->setToolTip(Name, name);
    item->setData(Name, kName, name);
    item->setData(Name, kState, (state.off ? Off : 0) | (state.frozen ? Frozen : 0) | (state.locked ? Locked : 0));
    if (fromQt(name) == current) {
      QFont bold = item->font(Name);
      bold.setBold(true);
      item->setFont(Name, bold);
      item->setToolTip(Name, tr("%1 is the current layer").arg(name));
    }
  }
  if (modules != nullptr) tree_->addTopLevelItem(modules);
  filter();
}

void LayersPanel::filter() {
  const QString text = filter_->text();
  const auto apply = [&text](QTreeWidgetItem& item) {
    const QString name = item.data(Name, kName).toString();
    item.setHidden(!name.isEmpty() && !text.isEmpty() && !name.contains(text, Qt::CaseInsensitive));
  };
  for (int i = 0; i < tree_->topLevelItemCount(); ++i) {
    QTreeWidgetItem* const item = tree_->topLevelItem(i);
    apply(*item);
    for (int j = 0; j < item->childCount(); ++j) apply(*item->child(j));
    if (item->childCount() > 0 && !text.isEmpty()) item->setExpanded(true);
  }
}

QStringList LayersPanel::namesFor(QTreeWidgetItem& item) const {
  QStringList names;
  if (item.isSelected()) {
    for (const QTreeWidgetItem* const each : tree_->selectedItems()) names += each->data(Name, kName).toString();
  }
  if (names.size() < 2) names = QStringList{item.data(Name, kName).toString()};
  names.removeAll(QString());
  return names;
}

void LayersPanel::run(const QString& option, const QStringList& names) {
  QStringList patterns;
  for (const QString& name : names) patterns += patternOf(name);
  if (!patterns.isEmpty()) context_.talk.runLines({"LAYER", option, quotedAnswer(patterns.join(',')), QString()});
}

void LayersPanel::click(QTreeWidgetItem& item, int column) {
  const QStringList names = namesFor(item);
  const int state = item.data(Name, kState).toInt();
  if (names.isEmpty()) return;
  if (column == Shown) run((state & Off) != 0 ? "ON" : "OFF", names);
  if (column == Thawed) run((state & Frozen) != 0 ? "Thaw" : "Freeze", names);
  if (column == Unlocked) run((state & Locked) != 0 ? "Unlock" : "LOck", names);
  if (column == Colour) chooseColour(names, tree_->viewport()->mapToGlobal(tree_->visualItemRect(&item).bottomLeft()));
}

void LayersPanel::chooseColour(const QStringList& names, const QPoint& at) {
  QMenu menu;
  constexpr int kNamedColours = 9;
  for (int index = 1; index <= kNamedColours; ++index) {
    QAction* const action =
        menu.addAction(swatch(QColor::fromRgb(database::paletteColor(index))), QString::number(index));
    action->setData(QString::number(index));
  }
  menu.addSeparator();
  QAction* const other = menu.addAction(tr("Other…"));
  QAction* const chosen = menu.exec(at);
  if (chosen == nullptr) return;
  QString colour = chosen->data().toString();
  if (chosen == other) {
    const QColor picked = QColorDialog::getColor(Qt::white, this, tr("Colour of the Layer"));
    if (!picked.isValid()) return;
    colour = QString("%1,%2,%3").arg(picked.red()).arg(picked.green()).arg(picked.blue());
  }
  QStringList patterns;
  for (const QString& name : names) patterns += patternOf(name);
  context_.talk.runLines({"LAYER", "Color", colour, quotedAnswer(patterns.join(',')), QString()});
}

void LayersPanel::contextMenu(const QPoint& at) {
  QTreeWidgetItem* const item = tree_->itemAt(at);
  if (item == nullptr) return;
  const QStringList names = namesFor(*item);
  if (names.isEmpty()) return;
  QMenu menu;
  QAction* const only = menu.addAction(tr("Only This"));
  QAction* const all = menu.addAction(tr("Show All"));
  QAction* const current = menu.addAction(tr("Make Current"));
  QAction* const select = menu.addAction(tr("Select Its Things"));
  QAction* const chosen = menu.exec(tree_->viewport()->mapToGlobal(at));
  if (chosen == nullptr) return;
  QStringList patterns;
  for (const QString& name : names) patterns += patternOf(name);
  if (chosen == only) context_.talk.runLines({"LAYER", "OFF", "*", "ON", quotedAnswer(patterns.join(',')), QString()});
  if (chosen == all) context_.talk.runLines({"LAYER", "ON", "*", QString()});
  if (chosen == current) context_.talk.runLines({"LAYER", "Set", quotedAnswer(names.front()), QString()});
  if (chosen == select && context_.engine.isWaiting()) {
    std::vector<database::Slot*> found;
    for (database::Slot* const entity : livingEntities(*context_.engine.application().currentSpace())) {
      if (names.contains(toQt(context_.engine.drawing()->layerName(entity->layer)))) found.push_back(entity);
    }
    context_.talk.select(found);
  }
}

}  // namespace host::window

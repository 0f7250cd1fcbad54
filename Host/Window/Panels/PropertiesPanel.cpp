#include "Window/Panels/PropertiesPanel.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <algorithm>

#include "Editor/Answers.h"
#include "Window/Commands/Icons.h"
#include "Window/Commands/Language.h"
#include "Window/Frame/Feedback.h"
#include "Window/Frame/Theme.h"

namespace host::window {
namespace {

/// A line to edit whose Esc brings back what stood there.
class ValueEdit : public QLineEdit {
 public:
  explicit ValueEdit(const QString& value) : QLineEdit(value), value_(value) {}
  bool isChanged() const { return text() != value_; }
  void restore() {
    setText(value_);
    selectAll();
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() != Qt::Key_Escape || !isChanged()) return QLineEdit::keyPressEvent(event);
    restore();
  }

 private:
  QString value_;
};

QString versionName(database::DrawingVersion version) {
  switch (version) {
    case database::DrawingVersion::V2000:
      return "2000";
    case database::DrawingVersion::V2004:
      return "2004";
    case database::DrawingVersion::V2007:
      return "2007";
    case database::DrawingVersion::V2010:
      return "2010";
    case database::DrawingVersion::V2013:
      return "2013";
    case database::DrawingVersion::V2018:
      return "2018";
    default:
      return "R" + QString::number(static_cast<int>(version) - 997);
  }
}

template <class Get>
std::optional<QString> shared(const std::vector<EntityFacts>& all, const Get& get) {
  const QString first = get(all.front());
  const bool isSame = std::ranges::all_of(all, [&](const EntityFacts& facts) { return get(facts) == first; });
  return isSame ? std::optional(first) : std::nullopt;
}

}  // namespace

PropertiesPanel::PropertiesPanel(const PanelContext& context, QWidget* parent)
    : QScrollArea(parent), context_(context) {
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setAccessibleName(tr("Properties"));
}

void PropertiesPanel::refresh() {
  if (!context_.engine.isWaiting()) return;
  if (context_.engine.drawing() == nullptr) {
    begin({});
    end();
    return;
  }
  std::vector<database::Slot*> entities =
      context_.engine.input().isAtRest() ? context_.talk.selection() : context_.engine.highlighted();
  std::erase_if(entities, [](const database::Slot* entity) { return entity->isErased(); });
  if (entities.empty()) {
    showDrawing();
  } else if (entities.size() == 1) {
    showOne(*entities.front());
  } else {
    showSeveral(entities);
  }
}

QString PropertiesPanel::value(const QString& name) const {
  for (const auto& [known, value] : values_) {
    if (known == name) return value;
  }
  return {};
}

// ---- rows -----------------------------------------------------------------------------------------------------------

void PropertiesPanel::begin(const QString& title) {
  values_.clear();
  rows_ = 0;
  page_ = new QWidget;
  grid_ = new QGridLayout(page_);
  grid_->setContentsMargins(12, 10, 12, 12);
  grid_->setHorizontalSpacing(12);
  grid_->setVerticalSpacing(5);
  grid_->setColumnStretch(1, 1);
  grid_->setColumnMinimumWidth(0, 100);
  if (title.isEmpty()) return;
  auto* const head = new QLabel(title);
  QFont bold = head->font();
  bold.setBold(true);
  bold.setPointSizeF(bold.pointSizeF() + 1);
  head->setFont(bold);
  head->setWordWrap(true);
  head->setContentsMargins(0, 0, 0, 4);
  grid_->addWidget(head, rows_++, 0, 1, 2);
}

QLabel* PropertiesPanel::label(const QString& name) {
  auto* const made = new QLabel(name);
  made->setStyleSheet("color: " + Theme::current().muted.name());
  made->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  grid_->addWidget(made, rows_, 0);
  return made;
}

void PropertiesPanel::row(const QString& name, const QString& value) {
  if (value.isEmpty()) return;
  label(name);
  auto* const shown = new QLabel(value);
  shown->setTextInteractionFlags(Qt::TextSelectableByMouse);
  shown->setWordWrap(true);
  shown->setTextFormat(Qt::PlainText);
  shown->setAccessibleName(name);
  grid_->addWidget(shown, rows_++, 1);
  values_.emplace_back(name, value);
}

void PropertiesPanel::choice(const QString& name, const QString& value, const QStringList& values,
                             const std::function<QStringList(const QString&)>& lines) {
  QLabel* const named = label(name);
  auto* const box = new QComboBox;
  if (!values.contains(value)) box->addItem(value);
  box->addItems(values);
  box->setCurrentText(value);
  box->setAccessibleName(name);
  box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  box->setMinimumContentsLength(8);
  named->setBuddy(box);
  grid_->addWidget(box, rows_++, 1);
  values_.emplace_back(name, value);
  connect(box, &QComboBox::textActivated, this, [this, value, lines](const QString& chosen) {
    if (chosen != value && context_.engine.input().isAtRest()) context_.talk.runLines(lines(chosen));
  });
}

void PropertiesPanel::field(const QString& name, const QString& value,
                            const std::function<QStringList(const QString&)>& lines) {
  QLabel* const named = label(name);
  auto* const edit = new ValueEdit(value);
  edit->setAccessibleName(name);
  named->setBuddy(edit);
  grid_->addWidget(edit, rows_++, 1);
  values_.emplace_back(name, value);
  connect(edit, &QLineEdit::returnPressed, this, [this, edit, lines] {
    if (edit->isChanged() && context_.engine.input().isAtRest()) context_.talk.runLines(lines(edit->text()));
  });
}

void PropertiesPanel::button(const QString& text, const MenuRow& command) {
  auto* const made = new QPushButton(
      iconOf(command.icon, Theme::current().text, colourOfLayer(*context_.engine.drawing(), command.colour)), text);
  made->setToolTip(command.tip());
  grid_->addWidget(made, rows_++, 0, 1, 2);
  connect(made, &QPushButton::clicked, this, [this, row = &command] { context_.talk.run(*row); });
}

void PropertiesPanel::end() {
  grid_->setRowStretch(rows_, 1);
  setWidget(page_);
}

// ---- contents -------------------------------------------------------------------------------------------------------

void PropertiesPanel::showDrawing() {
  const database::DrawingDatabase& drawing = *context_.engine.drawing();
  const std::filesystem::path file = context_.engine.application().drawingFile();
  const QFileInfo info(QString::fromStdString(file.string()));
  begin(tr("Drawing"));
  row(tr("File"), file.empty() ? tr("not saved yet") : info.fileName());
  if (!file.empty()) {
    const QString home = QDir::homePath(), folder = info.path();
    const bool isAtHome = folder == home || folder.startsWith(home + '/');
    row(tr("Folder"), isAtHome ? "~" + folder.mid(home.size()) : folder);
  }
  row(tr("Version"), versionName(drawing.version()));
  const database::BlockContents* const space = context_.engine.application().currentSpace();
  if (space != nullptr) {
    const std::vector<database::Slot*> living = livingEntities(*space);
    row(tr("Things"), QString::number(living.size()));
    const auto elements = std::ranges::count_if(living, [&](const database::Slot* entity) {
      const QString layer = toQt(drawing.layerName(entity->layer));
      return context_.tables.makerOf(layer) != nullptr && !context_.tables.isFillLayer(layer);
    });
    row(tr("Elements"), QString::number(elements));
    const geometry::Box box = geometry::blockExtents(drawing, *space);
    if (!box.isEmpty())
      row(tr("Extents"), QString::number(box.maxX - box.minX, 'f', 2) + " × " + metres(box.maxY - box.minY));
  }
  row(tr("Layout"), toQt(context_.engine.application().currentLayoutName()));
  end();
}

QStringList PropertiesPanel::changed(const QString& option, const QString& value) const {
  QStringList lines{"CHPROP"};
  // What is selected answers the question for objects.
  lines += {option, quotedAnswer(value), QString()};
  return lines;
}

void PropertiesPanel::showPlain(const std::vector<database::Slot*>& entities, const EntityFacts& facts) {
  const database::DrawingDatabase& drawing = entities.front()->database();
  QStringList layers, linetypes{"ByLayer"};
  for (const database::Slot* const record : drawing.records(database::DxfType::Layer)) {
    if (!record->isErased()) layers += toQt(drawing.recordName(*record));
  }
  for (const database::Slot* const record : drawing.records(database::DxfType::LineType)) {
    const QString name = toQt(drawing.recordName(*record));
    if (!record->isErased() && !name.startsWith("By", Qt::CaseInsensitive)) linetypes += name;
  }
  layers.sort(Qt::CaseInsensitive);
  choice(tr("Layer"), facts.layer, layers, [this](const QString& name) { return changed("LAyer", name); });
  field(tr("Colour"), facts.colour, [this](const QString& colour) { return changed("Color", colour); });
  choice(tr("Linetype"), facts.linetype, linetypes, [this](const QString& name) { return changed("LType", name); });
  row(tr("Lineweight"), facts.lineweight);
}

void PropertiesPanel::showOne(database::Slot& entity) {
  const EntityFacts facts = factsOf(entity);
  const MenuRow* const maker = context_.tables.makerOf(facts.layer);
  begin(maker != nullptr ? maker->name() : facts.kind);
  if (maker == nullptr) {
    row(tr("Type"), facts.kind);
  } else if (!context_.tables.isFillLayer(facts.layer) && facts.isClosed.value_or(false) && !maker->colour.isEmpty()) {
    // Kinds of one group stand for one another: the command of the other kind makes this one into it.
    QStringList kinds;
    for (const MenuRow* const row : context_.tables.all()) {
      if (row->group == maker->group && !row->layers.isEmpty()) kinds += row->name();
    }
    choice(tr("Kind"), maker->name(), kinds, [this, group = maker->group](const QString& name) {
      for (const MenuRow* const row : context_.tables.all()) {
        if (row->group == group && row->name() == name) return row->lines();
      }
      return QStringList();
    });
  } else {
    row(tr("Kind"), maker->name());
  }
  if (const auto point = pointOn(entity); point && maker != nullptr) {
    const QStringList told =
        toQt(context_.engine.application().tooltipAt({point->x, point->y, 0})).split('\n', Qt::SkipEmptyParts);
    for (const QString& line : told) row(tr("Says"), line);
  }
  const std::vector<OwnFact> own = context_.ownFacts ? context_.ownFacts(entity) : std::vector<OwnFact>();
  const bool isFinnish = language() == Language::Finnish;
  for (const OwnFact& fact : own) {
    if (fact.timesArea <= 0) row(toQt(isFinnish ? fact.nameFi : fact.nameEn), toQt(fact.value));
  }
  if (facts.area) row(tr("Area"), squareMetres(*facts.area));
  for (const OwnFact& fact : own) {
    if (fact.timesArea > 0 && facts.area)
      row(toQt(isFinnish ? fact.nameFi : fact.nameEn), squareMetres(*facts.area * fact.timesArea));
  }
  if (facts.length) row(facts.isClosed.value_or(false) ? tr("Perimeter") : tr("Length"), metres(*facts.length));
  if (maker != nullptr) {
    row(tr("Layer"), facts.layer);
  } else {
    showPlain({&entity}, facts);
  }
  if (facts.isClosed) row(tr("Closed"), *facts.isClosed ? tr("yes") : tr("no"));
  if (facts.points) row(tr("Points"), QString::number(*facts.points));
  row(entity.type == database::DxfType::Insert ? tr("Name") : tr("Content"), facts.content);
  if (facts.at) row(tr("Point"), QString::number(facts.at->x, 'f', 2) + ", " + metres(facts.at->y));
  if (facts.angle) row(tr("Angle"), QString::number(*facts.angle, 'f', 1) + QStringLiteral("°"));
  row(tr("Handle"), facts.handle);
  if (maker != nullptr && !maker->doubleClick.isEmpty()) {
    if (const MenuRow* const edit = context_.tables.find(maker->doubleClick)) button(edit->name() + "…", *edit);
  }
  end();
}

void PropertiesPanel::showSeveral(const std::vector<database::Slot*>& entities) {
  constexpr std::size_t kMostRead = 20000;  // more are counted only
  const QString varies = tr("varies");
  begin(tr("%1 things").arg(entities.size()));
  row(tr("Kinds"), countsByKind(entities));
  if (entities.size() > kMostRead) {
    end();
    return;
  }
  std::vector<EntityFacts> all;
  double length = 0, area = 0;
  QMap<QString, int> makers;
  for (const database::Slot* const entity : entities) {
    all.push_back(factsOf(*entity));
    length += all.back().length.value_or(0);
    area += all.back().area.value_or(0);
    if (const MenuRow* const maker = context_.tables.makerOf(all.back().layer)) ++makers[maker->name()];
  }
  QStringList elements;
  for (auto it = makers.constBegin(); it != makers.constEnd(); ++it)
    elements += QString::number(it.value()) + ' ' + it.key();
  row(tr("Elements"), elements.join(", "));
  if (area > 0) row(tr("Area in all"), squareMetres(area));
  if (length > 0) row(tr("Length in all"), metres(length));
  EntityFacts common;
  common.layer = shared(all, [](const EntityFacts& f) { return f.layer; }).value_or(varies);
  common.colour = shared(all, [](const EntityFacts& f) { return f.colour; }).value_or(varies);
  common.linetype = shared(all, [](const EntityFacts& f) { return f.linetype; }).value_or(varies);
  common.lineweight = shared(all, [](const EntityFacts& f) { return f.lineweight; }).value_or(varies);
  if (makers.isEmpty()) {
    showPlain(entities, common);
  } else {
    row(tr("Layer"), common.layer);
    row(tr("Colour"), common.colour);
  }
  end();
}

}  // namespace host::window

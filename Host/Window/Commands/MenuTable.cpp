#include "Window/Commands/MenuTable.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <array>

#include "Window/Commands/Language.h"

namespace host::window {
namespace {

const QString& inLanguage(const QString& finnish, const QString& english) {
  return language() == Language::Finnish ? finnish : english;
}

QStringList words(const QString& cell) { return cell.split(',', Qt::SkipEmptyParts); }

enum Column {
  Group,
  Command,
  NameFi,
  NameEn,
  TipFi,
  TipEn,
  Key,
  Typed,
  Icon,
  Colour,
  Layers,
  Double,
  Preview,
  Emptied
};
constexpr int kColumns = Emptied + 1;

}  // namespace

const QString& MenuRow::name() const { return inLanguage(nameFi, nameEn); }
const QString& MenuRow::tip() const { return inLanguage(tipFi, tipEn); }
const QString& MenuGroup::name() const { return inLanguage(nameFi, nameEn); }

bool MenuTable::read(const QString& file, bool ofModule) {
  QFile in(file);
  if (!in.open(QIODevice::ReadOnly)) return false;
  isOfModule = ofModule;
  const QString folder = QFileInfo(file).path() + "/icons/";
  bool isHeader = true;
  for (const QString& line : QString::fromUtf8(in.readAll()).split('\n')) {
    if (line.isEmpty() || line.startsWith('#')) continue;
    if (isHeader) {
      isHeader = false;
      continue;
    }
    QStringList cells = line.split('\t');
    while (cells.size() < kColumns) cells += QString();
    if (cells[Command].isEmpty()) {
      groups.push_back({cells[Group], cells[NameFi], cells[NameEn], {}});
      continue;
    }
    MenuRow row{
        cells[Group],   cells[Command],        cells[NameFi], cells[NameEn], cells[TipFi],         cells[TipEn],
        cells[Key],     words(cells[Typed]),   QString(),     cells[Colour], words(cells[Layers]), cells[Double],
        cells[Preview], words(cells[Emptied]), ofModule};
    if (!cells[Icon].isEmpty()) row.icon = folder + cells[Icon] + ".svg";
    rows.push_back(row);
    const auto group = std::ranges::find(groups, row.group, &MenuGroup::key);
    if (group != groups.end()) group->rows.push_back(&rows.back());
  }
  return !isHeader;
}

void CommandTables::load(const QString& hostFolder, const QStringList& modules) {
  host_ = {};
  modules_.clear();
  all_.clear();
  byWord_.clear();
  byLayer_.clear();
  byEmptied_.clear();
  placeOfLayer_.clear();
  host_.read(hostFolder + "/menu.tsv", false);
  for (const QString& module : modules) {
    const QFileInfo file(module);
    MenuTable table;
    if (table.read(file.path() + "/" + file.completeBaseName() + ".menu/menu.tsv", true))
      modules_.push_back(std::move(table));
  }
  const auto enter = [this](const MenuTable& table) {
    for (const MenuRow& row : table.rows) {
      all_.push_back(&row);
      if (!row.isOfWindow() && !byWord_.contains(row.commandName().toUpper()))
        byWord_.insert(row.commandName().toUpper(), &row);
      for (const QString& word : row.typed) byWord_.insert(word.toUpper(), &row);
      for (int i = 0; i < row.layers.size(); ++i) {
        const QString layer = row.layers[i].toLower();
        if (byLayer_.contains(layer)) continue;
        byLayer_.insert(layer, &row);
        placeOfLayer_.insert(layer, i);
      }
      for (const QString& layer : row.emptied) byEmptied_.insert(layer.toLower(), &row);
    }
  };
  for (const MenuTable& table : modules_) enter(table);
  enter(host_);
}

const MenuRow* CommandTables::find(const QString& command) const {
  QString word = command.trimmed().toUpper();
  while (!word.isEmpty() && QStringLiteral("'_-.").contains(word.front())) word.remove(0, 1);
  return byWord_.value(word);
}

const MenuRow* CommandTables::row(const QString& command) const {
  const auto found = std::ranges::find(all_, command, [](const MenuRow* row) { return row->command; });
  return found == all_.end() ? nullptr : *found;
}

const MenuRow* CommandTables::makerOf(const QString& layer) const { return byLayer_.value(layer.toLower()); }
const MenuRow* CommandTables::emptierOf(const QString& layer) const { return byEmptied_.value(layer.toLower()); }
bool CommandTables::isFillLayer(const QString& layer) const { return placeOfLayer_.value(layer.toLower(), 0) > 0; }

QString CommandTables::title(const QString& command) const {
  const MenuRow* const row = find(command);
  if (row == nullptr) return command;
  QString name = row->name();
  name.remove(": %1");
  if (name.endsWith(QChar(0x2026))) name.chop(1);
  return name;
}

}  // namespace host::window

#include "Window/Frame/Feedback.h"

#include <QCoreApplication>
#include <QMap>
#include <QSet>
#include <algorithm>
#include <array>
#include <unordered_set>

#include "Database/DrawingDatabase.h"
#include "Window/Commands/Language.h"

namespace host::window {
namespace {

struct KindName {
  const char* type;
  const char* one;
  const char* many;
};
constexpr KindName kKinds[] = {
    {"LWPOLYLINE", QT_TRANSLATE_NOOP("Feedback", "polyline"), QT_TRANSLATE_NOOP("Feedback", "polylines")},
    {"POLYLINE", QT_TRANSLATE_NOOP("Feedback", "polyline"), QT_TRANSLATE_NOOP("Feedback", "polylines")},
    {"LINE", QT_TRANSLATE_NOOP("Feedback", "line"), QT_TRANSLATE_NOOP("Feedback", "lines")},
    {"CIRCLE", QT_TRANSLATE_NOOP("Feedback", "circle"), QT_TRANSLATE_NOOP("Feedback", "circles")},
    {"ARC", QT_TRANSLATE_NOOP("Feedback", "arc"), QT_TRANSLATE_NOOP("Feedback", "arcs")},
    {"ELLIPSE", QT_TRANSLATE_NOOP("Feedback", "ellipse"), QT_TRANSLATE_NOOP("Feedback", "ellipses")},
    {"SPLINE", QT_TRANSLATE_NOOP("Feedback", "spline"), QT_TRANSLATE_NOOP("Feedback", "splines")},
    {"POINT", QT_TRANSLATE_NOOP("Feedback", "point"), QT_TRANSLATE_NOOP("Feedback", "points")},
    {"TEXT", QT_TRANSLATE_NOOP("Feedback", "text"), QT_TRANSLATE_NOOP("Feedback", "texts")},
    {"MTEXT", QT_TRANSLATE_NOOP("Feedback", "text"), QT_TRANSLATE_NOOP("Feedback", "texts")},
    {"HATCH", QT_TRANSLATE_NOOP("Feedback", "fill"), QT_TRANSLATE_NOOP("Feedback", "fills")},
    {"INSERT", QT_TRANSLATE_NOOP("Feedback", "symbol"), QT_TRANSLATE_NOOP("Feedback", "symbols")},
    {"DIMENSION", QT_TRANSLATE_NOOP("Feedback", "dimension"), QT_TRANSLATE_NOOP("Feedback", "dimensions")},
};

QString translated(const char* text) { return QCoreApplication::translate("Feedback", text); }

QString kindOf(const database::Slot& entity, bool many) {
  const std::string_view type = entity.database().typeName(entity);
  for (const KindName& kind : kKinds) {
    if (type == kind.type) return translated(many ? kind.many : kind.one);
  }
  return toQt(type).toLower();
}

const QSet<QString>& silentCommands() {
  static const QSet<QString> names = {"U",      "UNDO",       "REDO",   "ZOOM",   "REGEN",     "QSAVE",
                                      "SAVEAS", "OPEN",       "NEW",    "CLOSE",  "QUIT",      "PICTURE",
                                      "LIST",   "SAVESCRIPT", "LAYOUT", "SELECT", "HOVER",     "DIST",
                                      "AREA",   "HELP",       "SETVAR", "ARX",    "SCREENSHOT"};
  return names;
}

}  // namespace

QString kindOf(const database::Slot& entity) { return kindOf(entity, false); }

QString countsByKind(const std::vector<database::Slot*>& entities) {
  QMap<QString, int> counts;
  QMap<QString, QString> many;
  for (const database::Slot* const entity : entities) {
    const QString kind = kindOf(*entity, false);
    ++counts[kind];
    many[kind] = kindOf(*entity, true);
  }
  std::vector<std::pair<int, QString>> sorted;
  for (auto it = counts.constBegin(); it != counts.constEnd(); ++it)
    sorted.emplace_back(it.value(), it.value() == 1 ? it.key() : many[it.key()]);
  std::ranges::stable_sort(sorted, [](const auto& a, const auto& b) { return a.first > b.first; });
  QStringList parts;
  for (const auto& [count, kind] : sorted) parts += QString::number(count) + ' ' + kind;
  return parts.join(", ");
}

Feedback feedbackOf(const CommandResult& result, const CommandTables& tables) {
  Feedback feedback;
  QString command = result.command.toUpper();
  while (!command.isEmpty() && QStringLiteral("'_-.").contains(command.front())) command.remove(0, 1);
  if (result.isWhole || silentCommands().contains(command)) return feedback;
  std::vector<database::Slot*> unchanged;
  std::unordered_set<const database::Slot*> touched;
  for (const auto* const list : {&result.changed, &result.made, &result.erased})
    touched.insert(list->begin(), list->end());
  for (database::Slot* const entity : result.chosen)
    if (!touched.contains(entity)) unchanged.push_back(entity);
  const auto say = [](const char* text) { return translated(text); };
  QStringList parts;
  if (!result.changed.empty()) parts += say(QT_TRANSLATE_NOOP("Feedback", "changed %1")).arg(result.changed.size());
  if (!result.made.empty()) parts += say(QT_TRANSLATE_NOOP("Feedback", "new %1")).arg(result.made.size());
  if (!result.erased.empty()) parts += say(QT_TRANSLATE_NOOP("Feedback", "erased %1")).arg(result.erased.size());
  if (parts.isEmpty()) {
    const MenuRow* const row = tables.find(result.command);
    // Only commands that make something of what they are given.
    if (result.wasCancelled || unchanged.empty() || row == nullptr || !row->isOfModule) return feedback;
    feedback.isNothing = true;
    feedback.shown = unchanged;
    feedback.text =
        say(QT_TRANSLATE_NOOP("Feedback", "Nothing has changed: selected was %1.")).arg(countsByKind(unchanged));
    return feedback;
  }
  if (!unchanged.empty()) {
    QString kinds = countsByKind(unchanged);
    if (unchanged.size() == 1) kinds = kindOf(*unchanged.front(), false);
    parts += say(QT_TRANSLATE_NOOP("Feedback", "unchanged %1 (%2)")).arg(unchanged.size()).arg(kinds);
  }
  feedback.text = tables.title(result.command) + ": " + parts.join(", ");
  feedback.shown = result.changed;
  feedback.shown.insert(feedback.shown.end(), result.made.begin(), result.made.end());
  return feedback;
}

}  // namespace host::window

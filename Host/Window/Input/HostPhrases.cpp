#include "Window/Input/HostPhrases.h"

#include <QCoreApplication>
#include <QHash>
#include <QRegularExpression>
#include <array>
#include <vector>

#include "Window/Commands/Language.h"

namespace host::window {
namespace {

// "%1" stands for what differs. Option keys of scripts are not translated: a translation shows them in parentheses.
constexpr const char* kSaid[] = {
    QT_TRANSLATE_NOOP("HostPhrases", "Command: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Select objects: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Remove objects: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Select object: "),
    QT_TRANSLATE_NOOP("HostPhrases", "%1 found"),
    QT_TRANSLATE_NOOP("HostPhrases", "%1 found, %2 total"),
    QT_TRANSLATE_NOOP("HostPhrases", "%1 found (%2 duplicate), %3 total"),
    QT_TRANSLATE_NOOP("HostPhrases", "%1 found (%2 duplicate)"),
    QT_TRANSLATE_NOOP("HostPhrases", "%1 found, %2 removed, %3 total"),
    QT_TRANSLATE_NOOP("HostPhrases", "%1 found, %2 filtered out"),
    QT_TRANSLATE_NOOP("HostPhrases", "%1 found, %2 filtered out, %3 total"),
    QT_TRANSLATE_NOOP("HostPhrases", "%1 was on a locked layer."),
    QT_TRANSLATE_NOOP("HostPhrases", "%1 were on a locked layer."),
    QT_TRANSLATE_NOOP("HostPhrases", "%1 was not in current space."),
    QT_TRANSLATE_NOOP("HostPhrases", "%1 were not in current space."),
    QT_TRANSLATE_NOOP("HostPhrases", "*Cancel*"),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify first point: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify start point: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify next point or [Undo]: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify next point or [Close/Undo]: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify next point or [Arc/Halfwidth/Length/Undo/Width]: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify next point or [Arc/Close/Halfwidth/Length/Undo/Width]: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Current line-width is %1"),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify first corner: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify opposite corner: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify point: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify center point: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify base point: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify second point: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify base point or [Displacement] <Displacement>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify displacement: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify second point or <use first point as displacement>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify second point or [Exit/Undo] <Exit>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify rotation angle or [Copy/Reference] <0>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify the reference angle <0>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify the new angle <0>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter property to change [Color/LAyer/LType/ltScale/LWeight]: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter new color <BYLAYER>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter new layer name <0>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter new linetype name <ByLayer>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter new lineweight <ByLayer>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify new linetype scale <1>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify first corner point or [Object] <Object>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify next point or [Undo] <total>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify start point of text or [Justify/Style]: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify height <%1>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify rotation angle of text <0>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter text: "),
    QT_TRANSLATE_NOOP("HostPhrases",
                      // One text of two lines. NOLINTNEXTLINE(bugprone-suspicious-missing-comma)
                      "Specify corner of window, enter a scale factor (nX), or "
                      "[All/Center/Extents/Previous/Scale/Window/Object]: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter name of drawing to open: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter name of picture file: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter script file name: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Save drawing as <%1>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Saved %1"),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter variable name or [?]: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter new value for %1 <%2>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter layout option [Set/?] <Set>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter layout to make current <%1>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Current layer:  %1"),
    QT_TRANSLATE_NOOP("HostPhrases",
                      "Enter an option [?/Make/Set/New/ON/OFF/Color/Ltype/LWeight/Freeze/Thaw/LOck/Unlock]: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter an option [?/Load/Set]: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter an option [?/Load/Unload/LIst/Commands]: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter name list for new layer(s): "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter name for new layer (becomes the current layer) <%1>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter layer name to make current <%1>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter name list of layer(s) to turn on: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter name list of layer(s) to turn off: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter name list of layer(s) to freeze: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter name list of layer(s) to thaw: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter name list of layer(s) to lock: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter name list of layer(s) to unlock: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter name list of layer(s) for %1 <%2>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "New color: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter linetype(s) to load: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter name of linetype file to search <%1>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Specify linetype name or [?] <%1>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Linetype %1 loaded."),
    QT_TRANSLATE_NOOP("HostPhrases", "Enter the number of operations to undo <1>: "),
    QT_TRANSLATE_NOOP("HostPhrases", "Everything has been undone"),
    QT_TRANSLATE_NOOP("HostPhrases", "Nothing to redo"),
    QT_TRANSLATE_NOOP("HostPhrases", "Regenerating model."),
    QT_TRANSLATE_NOOP("HostPhrases", "No tooltip."),
    QT_TRANSLATE_NOOP("HostPhrases", "Resuming %1 command."),
    QT_TRANSLATE_NOOP("HostPhrases", "%1 is open already; it is the current drawing now."),
    QT_TRANSLATE_NOOP("HostPhrases", "Save changes to %1? [Yes/No/Cancel] <Y>: "),
};

constexpr const char* kRefused[] = {
    QT_TRANSLATE_NOOP("HostPhrases", "Unknown command \"%1\"."),
    QT_TRANSLATE_NOOP("HostPhrases", "Unknown command \"%1\".  Nearest: %2."),
    QT_TRANSLATE_NOOP("HostPhrases", "Invalid point."),
    QT_TRANSLATE_NOOP("HostPhrases", "Requires numeric value."),
    QT_TRANSLATE_NOOP("HostPhrases", "Requires an integer value."),
    QT_TRANSLATE_NOOP("HostPhrases", "Requires text."),
    QT_TRANSLATE_NOOP("HostPhrases", "An answer is needed here."),
    QT_TRANSLATE_NOOP("HostPhrases", "Invalid option keyword."),
    QT_TRANSLATE_NOOP("HostPhrases", "*Invalid selection*%1"),
    QT_TRANSLATE_NOOP("HostPhrases", "Value must be positive and nonzero."),
    QT_TRANSLATE_NOOP("HostPhrases", "Value must be positive or zero."),
    QT_TRANSLATE_NOOP("HostPhrases", "Value must be nonzero."),
    QT_TRANSLATE_NOOP("HostPhrases", "A file name is needed."),
    QT_TRANSLATE_NOOP("HostPhrases", "No drawing is open: %1 needs one."),
    QT_TRANSLATE_NOOP("HostPhrases", "No drawing is open."),
    QT_TRANSLATE_NOOP("HostPhrases", "No layout is named \"%1\"; there are: %2."),
    QT_TRANSLATE_NOOP("HostPhrases", "No previous selection set."),
    QT_TRANSLATE_NOOP("HostPhrases", "No matching layer names found: %1."),
    QT_TRANSLATE_NOOP("HostPhrases", "Cannot freeze layer %1: it is the current layer."),
    QT_TRANSLATE_NOOP("HostPhrases", "The script %1 cannot be read."),
    QT_TRANSLATE_NOOP("HostPhrases", "** %1 may not be invoked transparently **"),
};

struct Pattern {
  QRegularExpression said;
  const char* source;
  bool isRefusal;
};

Pattern patternOf(const char* source, bool isRefusal) {
  QString expression = QRegularExpression::escape(QString::fromUtf8(source).trimmed());
  for (const char* const place : {"\\%1", "\\%2", "\\%3"}) expression.replace(place, "(.*?)");
  return {QRegularExpression("^" + expression + "\\s*$"), source, isRefusal};
}

struct Table {
  QHash<QString, std::pair<const char*, bool>> whole;  // without "%1"
  std::vector<Pattern> patterns;
};

Table makeTable() {
  Table table;
  const auto enter = [&table](const char* source, bool isRefusal) {
    const QString text = QString::fromUtf8(source);
    if (text.contains("%1")) {
      table.patterns.push_back(patternOf(source, isRefusal));
    } else {
      table.whole.insert(text.trimmed(), {source, isRefusal});
    }
  };
  for (const char* const source : kSaid) enter(source, false);
  for (const char* const source : kRefused) enter(source, true);
  return table;
}

QString inLanguage(const char* source) { return QCoreApplication::translate("HostPhrases", source); }

}  // namespace

Phrase hostPhrase(const QString& said) {
  static const Table& table = *new Table(makeTable());
  qsizetype begin = 0;
  while (begin < said.size() && said[begin] == '\n') ++begin;
  const QString core = said.mid(begin).trimmed();
  const QString lead = said.left(begin);
  const QString tail = said.endsWith(' ') ? QStringLiteral(" ") : QString();
  if (core.isEmpty()) return {said, false};
  if (const auto found = table.whole.constFind(core); found != table.whole.constEnd())
    return {lead + inLanguage(found->first).trimmed() + tail, found->second};
  for (const Pattern& pattern : table.patterns) {
    const QRegularExpressionMatch match = pattern.said.match(core);
    if (!match.hasMatch()) continue;
    QString text = inLanguage(pattern.source).trimmed();
    // All at once, so that a "%2" in what differs stays.
    const QStringList parts = match.capturedTexts();
    if (parts.size() == 2) text = text.arg(parts[1]);
    if (parts.size() == 3) text = text.arg(parts[1], parts[2]);
    if (parts.size() == 4) text = text.arg(parts[1], parts[2], parts[3]);
    return {lead + text + tail, pattern.isRefusal};
  }
  return {said, false};
}

}  // namespace host::window

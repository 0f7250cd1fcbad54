#include "Window/Input/Prompt.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <cmath>

#include "Editor/Answers.h"
#include "Window/Commands/Language.h"

namespace host::window {
namespace {

bool isNumber(const QString& text) { return editor::parseNumber(fromQt(text.trimmed())).has_value(); }

PromptPiece option(const QString& text, bool isOnly) {
  const QString word = text.trimmed();
  if (isOnly && isNumber(word)) return {text, PromptPiece::Sends::Enter, {}};
  if (word.startsWith("Esc", Qt::CaseInsensitive) && (word.size() == 3 || !word[3].isLetter()))
    return {text, PromptPiece::Sends::Escape, {}};
  if (word.startsWith("Enter", Qt::CaseInsensitive) && (word.size() == 5 || !word[5].isLetter()))
    return {text, PromptPiece::Sends::Enter, {}};
  static const QRegularExpression keyed("\\(([^()]+)\\)$");
  if (const auto match = keyed.match(word); match.hasMatch())
    return {text, PromptPiece::Sends::Text, match.captured(1)};
  return {text, PromptPiece::Sends::Text, word};
}

}  // namespace

std::vector<PromptPiece> promptPieces(const QString& prompt) {
  std::vector<PromptPiece> pieces;
  const auto plain = [&pieces](const QString& text) {
    if (text.isEmpty()) return;
    if (!pieces.empty() && pieces.back().sends == PromptPiece::Sends::Nothing) {
      pieces.back().text += text;
    } else {
      pieces.push_back({text, PromptPiece::Sends::Nothing, {}});
    }
  };
  static const QRegularExpression bracket("\\[([^\\[\\]]*)\\]|<([^<>]*)>|\\(((?:Esc|Enter)\\b[^()]*)\\)");
  qsizetype at = 0;
  for (auto it = bracket.globalMatch(prompt); it.hasNext();) {
    const QRegularExpressionMatch match = it.next();
    plain(prompt.mid(at, match.capturedStart() - at));
    at = match.capturedEnd();
    const QChar open = match.captured(0).front(), close = match.captured(0).back();
    plain(open);
    if (open == '<') {
      if (!match.captured(2).isEmpty()) pieces.push_back({match.captured(2), PromptPiece::Sends::Enter, {}});
    } else {
      const QStringList options =
          open == '[' ? match.captured(1).split('/', Qt::SkipEmptyParts) : QStringList(match.captured(3));
      for (qsizetype i = 0; i < options.size(); ++i) {
        if (i > 0) plain("/");
        pieces.push_back(option(options[i], options.size() == 1));
      }
    }
    plain(close);
  }
  plain(prompt.mid(at));
  return pieces;
}

QString defaultOf(const QString& prompt) {
  for (const PromptPiece& piece : promptPieces(prompt)) {
    if (piece.sends == PromptPiece::Sends::Enter && !piece.text.trimmed().startsWith("Enter")) return piece.text;
  }
  return {};
}

QString withDecimalPoint(const QString& text, editor::Wanted wanted) {
  static const QRegularExpression decimal("^\\s*[-+]?\\d*,\\d+\\s*$");
  if (wanted != editor::Wanted::Number || !decimal.match(text).hasMatch()) return text;
  return QString(text).replace(',', '.');
}

std::optional<QString> typedDistance(const QString& text, const AcGePoint3d& base, const AcGePoint3d& cursor,
                                     bool isOrtho) {
  const auto length = editor::parseNumber(fromQt(text.trimmed()));
  const double dx = cursor.x - base.x, dy = cursor.y - base.y;
  if (!length || (dx == 0 && dy == 0)) return std::nullopt;
  double degrees = std::atan2(dy, dx) * 180 / M_PI;
  if (isOrtho) degrees = std::round(degrees / 90) * 90;
  if (degrees < 0) degrees += 360;
  constexpr int kAllDigits = 17;
  return "@" + text.trimmed() + "<" + QString::number(degrees, 'g', kAllDigits);
}

QString exampleOf(editor::Wanted wanted) {
  const auto say = [](const char* text) { return QCoreApplication::translate("Prompt", text); };
  switch (wanted) {
    case editor::Wanted::Point:
      return say(QT_TRANSLATE_NOOP("Prompt", "Not a point. For example 10,5 or @5<90."));
    case editor::Wanted::Number:
      return say(QT_TRANSLATE_NOOP("Prompt", "Give a number, for example 2.5."));
    case editor::Wanted::Entity:
    case editor::Wanted::Entities:
      return say(QT_TRANSLATE_NOOP("Prompt", "Point at an object, or type W, C, L, P or ALL."));
    case editor::Wanted::Keyword:
      return say(QT_TRANSLATE_NOOP("Prompt", "Click one of the choices or type its letters."));
    default:
      return {};
  }
}

}  // namespace host::window

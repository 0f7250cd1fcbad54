#include "Window/Commands/Completion.h"

#include <QSet>
#include <algorithm>

namespace host::window {
namespace {

constexpr int kNone = 4;

int rankOf(const QString& typed, const QString& command, const MenuRow* row) {
  const QString name = foldedLetters(command);
  if (name == typed) return 0;
  if (row != nullptr && row->typed.contains(typed, Qt::CaseInsensitive)) return 0;
  int rank = kNone;
  if (name.startsWith(typed)) rank = 1;
  for (qsizetype i = name.indexOf('_'); i >= 0 && rank > 1; i = name.indexOf('_', i + 1)) {
    if (QStringView(name).mid(i + 1).startsWith(typed)) rank = 1;
  }
  if (rank > 2 && row != nullptr) {
    for (const QString* const text : {&row->nameFi, &row->nameEn, &row->tipFi, &row->tipEn}) {
      const QString folded = foldedLetters(*text);
      for (qsizetype i = 0; i >= 0 && i < folded.size();
           i = folded.indexOf(' ', i) < 0 ? -1 : folded.indexOf(' ', i) + 1) {
        if (QStringView(folded).mid(i).startsWith(typed)) rank = std::min(rank, 2);
      }
    }
  }
  if (rank > 3 && name.contains(typed)) rank = 3;
  return rank;
}

}  // namespace

QString foldedLetters(const QString& text) {
  QString folded = text.toLower();
  for (QChar& c : folded) {
    if (c == QChar(0xE5) || c == QChar(0xE4)) c = 'a';
    if (c == QChar(0xF6)) c = 'o';
  }
  return folded;
}

std::vector<Candidate> Completion::matching(const QString& typed, std::size_t most) const {
  std::vector<Candidate> found;
  QString text = foldedLetters(typed);
  while (!text.isEmpty() && QStringLiteral("'_-.").contains(text.front())) text.remove(0, 1);
  if (text.isEmpty()) return found;
  QSet<QString> known;
  for (const MenuRow* const row : tables_.all()) {
    if (row->isOfWindow()) continue;
    const QString command = row->commandName();
    if (known.contains(command)) continue;
    known.insert(command);
    if (const int rank = rankOf(text, command, row); rank < kNone) found.push_back({command, row, rank});
  }
  for (const QString& name : names_) {
    if (known.contains(name)) continue;
    known.insert(name);
    if (const int rank = rankOf(text, name, nullptr); rank < kNone) found.push_back({name, nullptr, rank});
  }
  std::ranges::stable_sort(found, {}, &Candidate::rank);
  if (found.size() > most) found.resize(most);
  return found;
}

bool Completion::isCommand(const QString& typed) const {
  QString word = typed.trimmed().toUpper();
  while (!word.isEmpty() && QStringLiteral("'_-.").contains(word.front())) word.remove(0, 1);
  return names_.contains(word);
}

QString Completion::meant(const QString& typed) const {
  if (isCommand(typed)) return typed;
  if (const MenuRow* const row = tables_.find(typed)) return row->commandName();
  constexpr qsizetype kFewest = 3;
  if (typed.trimmed().size() < kFewest) return {};
  const std::vector<Candidate> found = matching(typed.trimmed(), 1);
  return !found.empty() && found.front().rank <= 1 ? found.front().command : QString();
}

}  // namespace host::window

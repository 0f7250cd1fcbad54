// Which commands a typed beginning may mean.
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "Window/Commands/MenuTable.h"

namespace host::window {

struct Candidate {
  QString command;               // what Enter runs
  const MenuRow* row = nullptr;  // null: a command that no table has
  int rank = 0;                  // 0 exact, 1 beginning of a name part, 2 beginning of a word, 3 inside
};

/// Lower case with å ä ö as a a o.
QString foldedLetters(const QString& text);

class Completion {
 public:
  /// `names` are the commands of the session, in capitals; without those of `tables` they still complete.
  Completion(const CommandTables& tables, QStringList names) : tables_(tables), names_(std::move(names)) {}

  /// At most `most` commands: beginnings of parts of names first, then words of names and tips of both languages, then
  /// letters inside. Empty for an empty text.
  std::vector<Candidate> matching(const QString& typed, std::size_t most) const;
  /// What Enter means: the exact name or short form; else the first match when three letters begin a part of its name.
  /// Empty: nothing is meant, the session shall say so.
  QString meant(const QString& typed) const;
  bool isCommand(const QString& typed) const;

 private:
  const CommandTables& tables_;
  QStringList names_;
};

}  // namespace host::window

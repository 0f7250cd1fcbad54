// Where answers come from: a script, a terminal, a window, or the list of a command run from code.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Editor/Answers.h"
#include "dbid.h"
#include "gepnt3d.h"

namespace host::editor {

/// How much of the input one answer takes.
enum class AnswerForm {
  Word,  // up to a blank or the line end; quoted text and "(...)" count as one word
  Text,  // the rest of the line, blanks included
  Line,  // the same, for dialogs: handed over as it stands
};

/// What a question asks for. Typed text may answer each of them; a canvas may answer those that say so.
enum class Wanted {
  Command,   // the host is idle
  Point,     // Answer::Kind::Point
  Number,    // a real or a whole number
  Text,      // a word or a line
  Keyword,   // one of the keywords only
  Entity,    // Answer::Kind::Point (a pick) or Answer::Kind::Entity
  Entities,  // the same, again and again until Enter
  Dialog,    // a line of a dialog or box that stands open
};

struct Question {
  std::wstring_view prompt;  // already shown in the transcript
  AnswerForm form = AnswerForm::Word;
  Wanted wanted = Wanted::Text;
  const Keywords* keywords = nullptr;  // that are taken too; null for none
  std::optional<AcGePoint3d> base;     // of a point: where a rubber band starts
  std::optional<double> direction;     // of a point that ends an arc: how the arc leaves the base, radians
  bool takesEnter = true;              // Enter alone is an answer
  bool takesNumber = false;            // of a point: a number alone is an answer too, such as an angle

  /// What Enter stands for, as the prompt spells it between its last angle brackets; empty when it names nothing.
  std::wstring_view defaultAnswer() const;
};

struct Answer {
  enum class Kind {
    Text,    // `text`
    Enter,   // an empty answer
    Cancel,  // Esc
    Point,   // `point`: pointed at, not typed
    Entity,  // `entity`: named by code
    End,     // nothing more will come
  };
  Kind kind = Kind::End;
  std::wstring text;
  bool quoted = false;  // stood in quotes: never a keyword, a prefix or a transparent command
  AcGePoint3d point;
  AcDbObjectId entity;
};

/// Where an answer stood.
struct Place {
  std::string file;      // a script's name; empty when there are no lines
  std::size_t line = 0;  // from 1

  bool isKnown() const { return !file.empty(); }
  /// "plan.scr:12"; empty when it is not known.
  std::string shown() const { return file.empty() ? std::string() : file + ":" + std::to_string(line); }
};

class InputSource {
 public:
  virtual ~InputSource() = default;
  /// Called by the running session, on its thread, whenever it needs an answer. May wait as long as it likes.
  virtual Answer next(const Question& question) = 0;
  /// Of the last answer, for messages.
  virtual Place place() const { return {}; }
  /// True when the user can be asked again after an answer that the prompt refuses; otherwise that is a failure.
  virtual bool isInteractive() const { return false; }
};

}  // namespace host::editor

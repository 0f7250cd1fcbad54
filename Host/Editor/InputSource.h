// Where answers come from: a script, a terminal, a window, or the list of a command run from code.
#pragma once

#include <string>
#include <string_view>

#include "dbid.h"
#include "gepnt3d.h"

namespace host::editor {

/// How much of the input one answer takes.
enum class AnswerForm {
  Word,  // up to a blank or the line end; quoted text and "(...)" count as one word
  Text,  // the rest of the line, blanks included
  Line,  // the same, for dialogs: handed over as it stands
};

struct Question {
  std::wstring_view prompt;  // already shown in the transcript
  AnswerForm form = AnswerForm::Word;
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

class InputSource {
 public:
  virtual ~InputSource() = default;
  virtual Answer next(const Question& question) = 0;
  /// "plan.scr:12" for the line of the last answer, for messages; empty when there are no lines.
  virtual std::string place() const { return {}; }
  /// True when somebody can be asked again after an answer that the prompt refuses; otherwise that is a failure.
  virtual bool isInteractive() const { return false; }
};

}  // namespace host::editor

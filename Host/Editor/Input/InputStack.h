// The levels of input of a session: a run's own source, scripts called from it, answers of commands run from code.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Editor/InputSource.h"

namespace host::editor {

class InputStack {
 public:
  /// One level that is read while the scope lives; what was put on top of it meanwhile goes with it.
  class Scope {
   public:
    /// The run's own source, which the caller owns.
    Scope(InputStack& stack, InputSource& source);
    /// Answers of a command run from code.
    Scope(InputStack& stack, std::unique_ptr<InputSource> answers);
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    ~Scope();

    /// Leaves the scripts that were called since.
    void dropScripts();
    /// The level has ended, or an answer of the code was refused or missing.
    bool isOver() const;

   private:
    InputStack& stack_;
    std::size_t base_;
  };

  /// Lines come from the script until it ends. `name` is what undoing it as a whole shows.
  void pushScript(std::unique_ptr<InputSource> script, std::wstring name);
  /// The next answer; a script that has ended hands back to the one that called it.
  Answer pull(const Question& question);

  /// Where the last answer stood; an unknown place when no level has lines.
  Place place() const;
  bool isEmpty() const { return levels_.empty(); }
  std::size_t depth() const { return levels_.size(); }
  /// The user can be asked again.
  bool isInteractive() const { return !levels_.empty() && levels_.back().source->isInteractive(); }
  bool isFromCode() const { return !levels_.empty() && levels_.back().isFromCode; }
  /// Answers of code: one was refused, or they ran out. No further ones are taken.
  void failCode() { levels_.back().hasFailed = true; }
  bool hasCodeFailed() const { return !levels_.empty() && levels_.back().hasFailed; }
  /// The outermost of the scripts that were called; without any, the group has no number.
  database::UndoGroup scriptGroup() const;
  /// Numbers the scripts of a new program from the beginning.
  void restartCount() { scriptCount_ = 0; }

 private:
  struct Level {
    InputSource* source = nullptr;
    std::unique_ptr<InputSource> owned;
    bool isFromCode = false;
    bool hasFailed = false;
    database::UndoGroup undoGroup;  // of a script that was called: one `U` takes all of it back
  };
  std::vector<Level> levels_;
  std::uint32_t scriptCount_ = 0;
};

}  // namespace host::editor

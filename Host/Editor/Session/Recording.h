// What a drawing's user answered since it was opened, as the lines of a script that does the same again.
//
// Nothing in it depends on a view: picks are handles, points have all their digits. Refused answers are left out, for a
// script ends with the first of them; questions that ended in Esc, or with the input, end in Esc again.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Database/Slot.h"
#include "Editor/InputSource.h"
#include "gepnt3d.h"

namespace host::editor {

class Recording {
 public:
  // ---- commands ----
  /// A command begins that was typed like this; `changes` is the drawing's counter.
  void commandBegins(std::wstring_view typed, std::uint64_t changes);
  /// One of which nothing is recorded: it works on files, or `steps` tell what it did.
  void silentCommandBegins();
  /// A command that has failed and changed nothing is forgotten.
  void commandEnds(std::uint64_t changes);
  void commandFailed() { hasFailed_ = true; }
  /// Everything that the command did was taken back.
  void commandInterrupted();
  /// Steps that were taken back, or repeated.
  void undone(std::size_t steps) { repeated(L"UNDO", steps); }
  void redone(std::size_t steps) { repeated(L"MREDO", steps); }
  /// What a command took that was selected before it; answers "Select objects". `isWhole`: no group reaches beyond it.
  void selectedBefore(const std::vector<database::Slot*>& entities, bool isWhole, std::int64_t pickStyle);

  // ---- answers ----
  /// A question is about to be asked, so many commands deep: what was refused is taken out.
  void asked(std::wstring_view prompt, std::size_t depth);
  void answered(const Question& question, const Answer& answer);
  /// The last answer was this point, these entities, nothing that could be found.
  void wasPoint(const AcGePoint3d& point);
  void wereEntities(const std::vector<database::Slot*>& entities);
  void wasNothing();
  /// The answer before `corner` began a window, and the last one ended it; transparent commands may stand between.
  void wasWindow(std::size_t corner, bool isCrossing);
  /// It began one that never had a second corner. `goesOn`: the question was left with Enter, and the command asks on.
  void wasNoWindow(std::size_t corner, bool goesOn);
  /// Where the next answer will stand.
  std::size_t place() const { return lines_.size(); }
  void refused() { isRefused_ = true; }

  // ---- dialogs worked by hand ----
  /// A line as scripts say it to the dialog or box that `what` names. It takes the place of the last line when that
  /// begins with `edited`, which is not empty then.
  void dialogWorked(std::wstring_view what, std::wstring_view line, std::wstring_view edited);
  void dialogCancelled(std::wstring_view what);

  /// The script, UTF-8.
  std::string script(std::string_view title) const;

 private:
  struct Line {
    std::wstring text;
    std::wstring prompt;  // of the question, with its depth; empty for a command
  };
  void add(std::wstring text, std::wstring_view prompt = {});
  void repeated(std::wstring_view command, std::size_t steps);
  bool isOpen() const { return isRunning_ && !isSilent_; }
  void replaceLast(std::wstring text);

  std::vector<Line> lines_;
  std::wstring asked_;     // the question that is being answered
  std::size_t begin_ = 0;  // of the running command
  std::uint64_t changes_ = 0;
  bool isRunning_ = false, isSilent_ = false, isRefused_ = false, hasFailed_ = false;
};

}  // namespace host::editor

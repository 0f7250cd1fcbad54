// Questions of commands and their answers.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Database/Slot.h"
#include "Editor/Answers.h"
#include "Editor/InputSource.h"
#include "Problems/Problem.h"
#include "gepnt3d.h"

namespace host::editor {

class Session;

enum class Outcome { Value, Enter, Keyword, Cancel };

template <class T>
struct Reply {
  Outcome outcome = Outcome::Cancel;
  T value{};
  std::wstring keyword;  // Outcome::Keyword: its global spelling
  explicit operator bool() const { return outcome == Outcome::Value; }
};

/// What the next answer may be: bits of acedInitGet, keywords, and for points the origin of "@" answers.
struct Limits {
  int bits = 0;
  Keywords keywords;
  std::optional<AcGePoint3d> base;
  std::optional<double> direction;  // as of Question

  /// The question as the input is asked it; refers to the limits and the prompt.
  Question question(std::wstring_view prompt, AnswerForm form, Wanted wanted) const;
};

struct EntityPick {
  database::Slot* entity = nullptr;
  AcGePoint3d point;
};

/// The prompts of `Prompter::select`, and whether locked layers are left out.
struct SelectOptions {
  std::wstring prompt = L"Select objects: ";
  std::wstring removePrompt = L"Remove objects: ";
  bool single = false;      // ends with the first pick that finds something
  bool everything = false;  // a pick takes all entities in the aperture
  bool skipLocked = false;
  std::function<bool(const database::Slot&)> accepts;  // a filter; empty takes all
};

class Prompter {
 public:
  explicit Prompter(Session& session) : session_(session) {}

  Reply<AcGePoint3d> point(std::wstring_view prompt, const Limits& limits = {});
  Reply<double> real(std::wstring_view prompt, const Limits& limits = {});
  Reply<int> integer(std::wstring_view prompt, const Limits& limits = {});
  Reply<std::wstring> word(std::wstring_view prompt, const Limits& limits = {});
  /// The rest of the line, blanks included.
  Reply<std::wstring> text(std::wstring_view prompt, const Limits& limits = {});
  Reply<std::wstring> keyword(std::wstring_view prompt, const Limits& limits);
  /// Outcome::Value with a null entity: the pick missed.
  Reply<EntityPick> entity(std::wstring_view prompt, const Limits& limits = {});
  /// Entities in the order they were selected; Outcome::Enter when there are none.
  Reply<std::vector<database::Slot*>> select(const SelectOptions& options = {});

  /// Text on a line of its own in the transcript.
  void line(std::wstring_view text);
  /// Says why an answer cannot be used. True: ask again. False: a script has failed; the command should end.
  bool refuse(std::wstring_view sentence);
  /// Ends the script with the status of a code; `sentence` without the script's name and line.
  void fail(Code code, std::wstring_view sentence);
  /// Ends the script with a problem that the command met.
  void fail(Problem problem);

  Session& session() { return session_; }

 private:
  template <class T>
  Reply<T> ask(std::wstring_view prompt, AnswerForm form, Wanted wanted, const Limits& limits,
               std::wstring_view refusal,
               const std::function<std::optional<T>(const Answer&, std::wstring& refusal)>& read);

  Session& session_;
};

}  // namespace host::editor

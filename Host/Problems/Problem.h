// What went wrong, in one form for all of the host: a code for programs, a place, a sentence for people.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

namespace host {

/// Also the exit status of programs.
enum class RunStatus { Done = 0, WrongUsage = 1, DrawingUnreadable = 2, ScriptFailed = 3, OutputFailed = 4 };

/// The kinds of problems. Each has a stable name and the exit status that it ends a program with (the table in
/// Problem.cpp); docs/host.md lists the names.
enum class Code : std::uint8_t {
  // A call or a setting.
  WrongUsage,
  ModuleRefused,
  VariableRefused,
  // Drawings that cannot be read at all.
  DrawingUnreadable,
  DwgReaderMissing,
  // Scripts and commands.
  ScriptUnreadable,
  CommandUnknown,
  CommandFailed,
  AnswerRefused,
  AnswerMissing,
  NothingFound,
  ObjectsSkipped,
  Interrupted,
  MemoryEnded,
  // Outputs.
  OutputRefused,
  OutputFailed,
  PictureEmpty,
  PictureNote,
  // Drawings that were read all the same.
  FileMalformed,
  StructureMended,
  LineSkipped,
  LineEnds,
  VersionConverted,
  RecordLeftOut,
  RecordMended,
  RecordMoved,
  ObjectAdded,
  HandleMended,
  OwnerMended,
  ReferenceMended,
  ValueMended,
  DwgObjectsMissing,
  DwgObjectsPictured,
  ObjectNotInserted,
  FurtherProblems,
  LeftOutTotal,
  // What elements of a plan say.
  ElementUntagged,
  ElementValue,
  ElementFill,
  BuildingValue,
  ShadowSettings,
  // The host at work.
  EncodingGuessed,
  FilePassedOver,
  PlugInFailed,
  PlugInRefused,
  LeftBehind,
  DialogsMissing,
  HostNote,
  Count
};

/// "record-left-out": lowercase with hyphens, the same in every release.
std::string_view nameOf(Code code);
/// What a program ends with when the problem ends its work; Done for what is only told.
RunStatus statusOf(Code code);

struct Problem {
  Code code = Code::HostNote;
  std::string file;          // as the user named it; empty when the problem is about no file
  std::size_t line = 0;      // of the file; 0 when it is not about one line
  std::uint64_t handle = 0;  // 0 when it is not about one object
  std::string text;          // UTF-8, one sentence or clause without file, line and handle
  bool isNote = false;       // something to know, nothing wrong

  RunStatus status() const { return statusOf(code); }
  /// "plan.dxf:12: 2F: the owner ...": file, line and handle, as far as they are known, in front of the text.
  std::string sentence() const;
};

/// A problem without a place, or with a file.
Problem problemOf(Code code, std::string text);
Problem problemOf(Code code, std::string file, std::string text);

/// A value, or the problem that kept it from being made.
template <class T = void>
class [[nodiscard]] Result {
  using Value = std::conditional_t<std::is_void_v<T>, std::monostate, T>;

 public:
  Result() requires std::is_void_v<T>
  = default;
  template <class U>
  requires(!std::is_void_v<T> && std::is_convertible_v<U&&, Value> && !std::is_same_v<std::decay_t<U>, Problem> &&
           !std::is_same_v<std::decay_t<U>, Result>) Result(U&& value)
      : held_(std::in_place_index<0>, std::forward<U>(value)) {}
  Result(Problem problem) : held_(std::in_place_index<1>, std::move(problem)) {}
  /// The problem of another result. Of one that is ok, only a result without a value can be made.
  template <class U>
  requires(!std::is_same_v<T, U> && !std::is_convertible_v<Result<U>, Value>) Result(const Result<U>& other)
      : held_(heldOf(other)) {}

  bool ok() const { return held_.index() == 0; }
  explicit operator bool() const { return ok(); }

  /// Only of a result that is ok.
  Value& value() { return *std::get_if<0>(&held_); }
  const Value& value() const { return *std::get_if<0>(&held_); }
  Value* operator->() { return &value(); }
  const Value* operator->() const { return &value(); }
  Value& operator*() { return value(); }
  const Value& operator*() const { return value(); }

  /// Only of a result that is not ok.
  Problem& problem() { return *std::get_if<1>(&held_); }
  const Problem& problem() const { return *std::get_if<1>(&held_); }
  RunStatus status() const { return ok() ? RunStatus::Done : problem().status(); }
  /// The problem's sentence; empty when there is none.
  std::string message() const { return ok() ? std::string() : problem().sentence(); }

 private:
  template <class U>
  static std::variant<Value, Problem> heldOf(const Result<U>& other) {
    if constexpr (std::is_void_v<T>) {
      if (other.ok()) return Value();
    }
    return other.problem();
  }

  std::variant<Value, Problem> held_;
};

}  // namespace host

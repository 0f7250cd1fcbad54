// The command line's text: prompts, answers, messages.
#pragma once

#include <functional>
#include <string_view>
#include <utility>

namespace host::editor {

/// Keeps track of the line so that answers end their line and whole-line messages start on a fresh one. What is written
/// is made printable: names in drawings may hold what a terminal would obey.
class Transcript {
 public:
  using Sink = std::function<void(std::wstring_view)>;

  void setSink(Sink sink) { sink_ = std::move(sink); }
  /// Text as it stands. A line break at its beginning is the one that the last answer already made.
  void print(std::wstring_view text);
  /// Text on a line of its own.
  void line(std::wstring_view text);
  /// A prompt: on a fresh line, without a line end.
  void prompt(std::wstring_view text);
  /// The answer to the prompt.
  void echo(std::wstring_view text);
  /// Ends an unfinished line.
  void finishLine();

 private:
  void write(std::wstring_view text);

  Sink sink_;
  bool atLineStart_ = true;
  bool breakDue_ = false;  // the line ends with the next output
};

}  // namespace host::editor

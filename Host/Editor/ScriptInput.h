// Answers from lines of text.
//
// A line end ends an answer, and so does a blank where the prompt takes no blanks; an empty line is Enter. A line that
// begins with ";" is a comment, "^C" is Esc, text in quotes ("" for a quote inside) is one answer. In a script a "("
// where a word is wanted goes on until it is closed, over several lines if need be; an empty line ends it in any case.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Editor/InputSource.h"
#include "Problems/Problem.h"

namespace host::editor {

/// The text in quotes as scripts read it as one answer: quotes within it stand twice.
std::wstring quotedAnswer(std::wstring_view text);

/// Cuts lines into answers; the derived class brings the lines.
class LineInput : public InputSource {
 public:
  Answer next(const Question& question) final;
  int lineNumber() const { return lineNumber_; }

 protected:
  /// The next line without its end; nothing at the end of the input.
  virtual std::optional<std::wstring> readLine(const Question& question) = 0;

 private:
  bool fetchLine(const Question& question);
  Answer takeRest(AnswerForm form);
  Answer takeWord(const Question& question);
  std::wstring takeQuoted();
  std::wstring takeParenthesized(const Question& question);
  void endWord();

  std::wstring line_;
  std::size_t position_ = 0;
  bool hasLine_ = false;
  int lineNumber_ = 0;
};

/// A script in UTF-8, with or without byte order mark, any line ends.
class ScriptInput final : public LineInput {
 public:
  /// `name` is what messages call it.
  ScriptInput(std::string_view utf8, std::string name);
  /// `remark`: something to tell the user of its encoding.
  static Result<std::unique_ptr<ScriptInput>> fromFile(const std::filesystem::path& file,
                                                       std::optional<Problem>& remark);
  Place place() const override { return {name_, static_cast<std::size_t>(lineNumber())}; }

 protected:
  std::optional<std::wstring> readLine(const Question& question) override;

 private:
  std::string text_;
  std::string name_;
  std::size_t next_ = 0;
};

}  // namespace host::editor

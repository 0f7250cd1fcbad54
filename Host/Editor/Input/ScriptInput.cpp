#include "Editor/ScriptInput.h"

#include <fstream>
#include <iterator>

#include "Editor/ScriptText.h"
#include "Platform/Files.h"
#include "Text/Text.h"

namespace host::editor {
namespace {

constexpr wchar_t kEscape = 0x1B;

bool isBlank(wchar_t c) { return c == L' ' || c == L'\t'; }

Answer textAnswer(std::wstring text, bool quoted = false) {
  Answer answer;
  answer.kind = text.empty() && !quoted ? Answer::Kind::Enter : Answer::Kind::Text;
  answer.text = std::move(text);
  answer.quoted = quoted;
  return answer;
}

Answer cancelAnswer() {
  Answer answer;
  answer.kind = Answer::Kind::Cancel;
  return answer;
}

/// Characters of the Esc at `position`, 0 when there is none.
std::size_t escapeLength(const std::wstring& line, std::size_t position) {
  if (position >= line.size()) return 0;
  if (line[position] == kEscape) return 1;
  if (line[position] != L'^' || position + 1 >= line.size()) return 0;
  return line[position + 1] == L'C' || line[position + 1] == L'c' ? 2 : 0;
}

}  // namespace

bool LineInput::fetchLine(const Question& question) {
  while (!hasLine_) {
    std::optional<std::wstring> line = readLine(question);
    if (!line) return false;
    ++lineNumber_;
    if (!line->empty() && line->back() == L'\r') line->pop_back();
    if (!line->empty() && line->front() == L';') continue;
    line_ = std::move(*line);
    position_ = 0;
    hasLine_ = true;
  }
  return true;
}

Answer LineInput::next(const Question& question) {
  if (!fetchLine(question)) return {};
  if (const std::size_t escape = escapeLength(line_, position_); escape > 0) {
    position_ += escape;
    // A line end right after Esc belongs to it and is no Enter.
    if (position_ >= line_.size()) {
      hasLine_ = false;
    } else if (isBlank(line_[position_])) {
      endWord();
    }
    return cancelAnswer();
  }
  return question.form == AnswerForm::Word ? takeWord(question) : takeRest(question.form);
}

Answer LineInput::takeRest(AnswerForm form) {
  hasLine_ = false;
  std::wstring rest = line_.substr(position_);
  if (form == AnswerForm::Line || rest.size() < 2 || rest.front() != L'"' || rest.back() != L'"')
    return textAnswer(std::move(rest));
  const std::size_t begin = position_;
  std::wstring inside = takeQuoted();
  if (position_ >= line_.size()) return textAnswer(std::move(inside), true);
  position_ = begin;  // quotes around the first word only: they are part of the text
  return textAnswer(std::move(rest));
}

Answer LineInput::takeWord(const Question& question) {
  if (position_ >= line_.size() || isBlank(line_[position_])) {
    endWord();
    return textAnswer({});
  }
  if (line_[position_] == L'"') {
    std::wstring inside = takeQuoted();
    endWord();
    return textAnswer(std::move(inside), true);
  }
  std::wstring word;
  if (line_[position_] == L'(') {
    word = takeParenthesized(question);
  } else {
    while (position_ < line_.size() && !isBlank(line_[position_])) word += line_[position_++];
  }
  endWord();
  return textAnswer(std::move(word));
}

std::wstring quotedAnswer(std::wstring_view text) {
  std::wstring quoted = L"\"";
  for (const wchar_t c : text) {
    if (c == L'"') quoted += c;
    quoted += c;
  }
  return quoted + L'"';
}

std::wstring LineInput::takeQuoted() {
  std::wstring inside;
  for (++position_; position_ < line_.size(); ++position_) {
    if (line_[position_] == L'"') {
      if (position_ + 1 >= line_.size() || line_[position_ + 1] != L'"') {
        ++position_;
        break;
      }
      ++position_;
    }
    inside += line_[position_];
  }
  return inside;
}

std::wstring LineInput::takeParenthesized(const Question& question) {
  std::wstring text;
  int depth = 0;
  bool inQuotes = false;
  for (;;) {
    while (position_ < line_.size()) {
      const wchar_t c = line_[position_++];
      text += c;
      if (c == L'"') inQuotes = !inQuotes;
      if (inQuotes) continue;
      if (c == L'(') ++depth;
      if (c == L')' && --depth == 0) return text;
    }
    // A missing parenthesis takes no more than the lines up to the next empty one. Who types is told of it at once.
    if (inQuotes || isInteractive()) return text;
    hasLine_ = false;
    if (!fetchLine(question)) return text;
    if (line_.find_first_not_of(L" \t") == std::wstring::npos) {
      position_ = line_.size();
      return text;
    }
    text += L' ';
  }
}

/// Takes the blank that ended an answer; at the end of the line that was the line end.
void LineInput::endWord() {
  if (position_ < line_.size() && isBlank(line_[position_])) {
    ++position_;
  } else if (position_ >= line_.size()) {
    hasLine_ = false;
  }
}

ScriptInput::ScriptInput(std::string_view utf8, std::string name) : text_(utf8), name_(std::move(name)) {
  if (text_.starts_with("\xEF\xBB\xBF")) next_ = 3;
}

Result<std::unique_ptr<ScriptInput>> ScriptInput::fromFile(const std::filesystem::path& file,
                                                           std::optional<Problem>& remark) {
  const std::string name = file.filename().string();
  const auto refused = [&](const std::string& why) {
    return problemOf(Code::ScriptUnreadable, name, "the script " + why);
  };
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return refused("cannot be read: it is no ordinary file");
  if (const auto size = std::filesystem::file_size(file, error); !error && size > kLargestScript)
    return refused("is longer than " + std::to_string(kLargestScript >> 20) + " MB");
  std::ifstream stream(file, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (!stream) return refused("cannot be read: " + platform::openingFault());
  Result<ScriptText> script = scriptText(std::move(bytes), name);
  if (!script) return script;
  remark = std::move(script->remark);
  return std::make_unique<ScriptInput>(script->utf8, name);
}

std::optional<std::wstring> ScriptInput::readLine(const Question&) {
  if (next_ >= text_.size()) return std::nullopt;
  const std::size_t end = std::min(text_.find('\n', next_), text_.size());
  std::wstring line = text::fromUtf8(std::string_view(text_).substr(next_, end - next_));
  next_ = end + 1;
  return line;
}

}  // namespace host::editor

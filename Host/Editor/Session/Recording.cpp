#include "Editor/Session/Recording.h"

#include <algorithm>
#include <cmath>

#include "Editor/ScriptInput.h"
#include "Text/Text.h"

namespace host::editor {
namespace {

constexpr std::wstring_view kEscape = L"^C";

/// Whether the word is one expression in parentheses, which a script reads whole.
bool isExpression(std::wstring_view word) {
  int depth = 0;
  bool inText = false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (word[i] == L'"') inText = !inText;
    if (inText) continue;
    if (word[i] == L'(') ++depth;
    if (word[i] == L')' && --depth == 0) return i + 1 == word.size();
  }
  return false;
}

/// Whether a line that begins so means something else to a script.
bool beginsOtherwise(std::wstring_view text) {
  constexpr wchar_t kEscapeCharacter = 0x1B;
  return text.starts_with(L';') || text.starts_with(L'"') || text.starts_with(L"^C") || text.starts_with(L"^c") ||
         text.front() == kEscapeCharacter;
}

/// The text as an answer of that form, on a line of its own.
std::wstring spelled(std::wstring_view text, AnswerForm form, bool isQuoted) {
  if (text.empty()) return isQuoted ? L"\"\"" : L"";
  switch (form) {
    case AnswerForm::Line:
      // Dialogs do not mind blanks around a line.
      return beginsOtherwise(text) && text.front() != L'"' ? L" " + std::wstring(text) : std::wstring(text);
    case AnswerForm::Text:
      return isQuoted || beginsOtherwise(text) ? quotedAnswer(text) : std::wstring(text);
    case AnswerForm::Word:
      break;
  }
  const bool isPlain =
      text.front() == L'(' ? isExpression(text) : text.find_first_of(L" \t") == std::wstring_view::npos;
  return isQuoted || !isPlain || beginsOtherwise(text) ? quotedAnswer(text) : std::wstring(text);
}

std::wstring digits(double value) { return text::fromUtf8(text::formatReal(value)); }

std::wstring spelledPoint(const AcGePoint3d& point) {
  std::wstring spelled = digits(point.x) + L"," + digits(point.y);
  return point.z != 0 ? spelled + L"," + digits(point.z) : spelled;
}

std::wstring handent(const database::Slot& entity) {
  return L"(handent \"" + text::fromUtf8(text::formatHandle(entity.handle)) + L"\")";
}

}  // namespace

void Recording::add(std::wstring text, std::wstring_view prompt) {
  lines_.push_back({std::move(text), std::wstring(prompt)});
}

// ---- commands -------------------------------------------------------------------------------------------------------

void Recording::commandBegins(std::wstring_view typed, std::uint64_t changes) {
  isRunning_ = true;
  isSilent_ = isRefused_ = hasFailed_ = false;
  begin_ = lines_.size();
  changes_ = changes;
  add(spelled(typed, AnswerForm::Word, false));
}

void Recording::silentCommandBegins() {
  isRunning_ = isSilent_ = true;
  isRefused_ = hasFailed_ = false;
  begin_ = lines_.size();
}

void Recording::commandEnds(std::uint64_t changes) {
  if (isOpen()) {
    const bool isEmpty = changes == changes_;
    if (isEmpty && (hasFailed_ || (isRefused_ && lines_.size() == begin_ + 1))) {
      lines_.resize(begin_);
    } else if (isRefused_ && lines_.size() > begin_ + 1) {
      // The command took the refusal for the end.
      lines_.back().text = kEscape;
    }
  }
  isRunning_ = isSilent_ = isRefused_ = hasFailed_ = false;
}

void Recording::commandInterrupted() {
  if (isOpen()) lines_.resize(begin_);
  isRunning_ = false;
}

void Recording::repeated(std::wstring_view command, std::size_t steps) {
  constexpr std::size_t kMostAtOnce = 32767;
  while (steps > 0) {
    const std::size_t count = std::min(steps, kMostAtOnce);
    add(std::wstring(command));
    add(std::to_wstring(count));
    steps -= count;
  }
}

void Recording::selectedBefore(const std::vector<database::Slot*>& entities, bool isWhole, std::int64_t pickStyle) {
  if (!isOpen()) return;
  const auto setStyle = [this](const std::wstring& value) {
    add(L"'SETVAR");
    add(L"PICKSTYLE");
    add(value);
  };
  if (!isWhole) setStyle(L"0");
  for (const database::Slot* entity : entities) add(handent(*entity));
  if (!isWhole) setStyle(std::to_wstring(pickStyle));
  add({});
}

// ---- answers --------------------------------------------------------------------------------------------------------

void Recording::asked(std::wstring_view prompt, std::size_t depth) {
  asked_ = std::to_wstring(depth) + L":" + std::wstring(prompt);
  if (!isOpen() || !isRefused_) return;
  isRefused_ = false;
  // What led to the refusal began with the last answer to the same question.
  std::size_t i = lines_.size();
  while (i > begin_ + 1 && lines_[i - 1].prompt != asked_) --i;
  const bool isFound = i > begin_ + 1;
  if (isFound) {
    lines_.resize(i - 1);
  } else if (lines_.size() > begin_ + 1) {
    lines_.pop_back();
  }
}

void Recording::answered(const Question& question, const Answer& answer) {
  if (!isOpen()) return;
  std::wstring text;
  switch (answer.kind) {
    case Answer::Kind::Text:
      text = spelled(answer.text, question.form, answer.quoted);
      break;
    case Answer::Kind::Enter:
      break;
    case Answer::Kind::Cancel:
    case Answer::Kind::End:
      text = kEscape;
      break;
    case Answer::Kind::Point:
      text = spelledPoint(answer.point);
      break;
    case Answer::Kind::Entity:
      if (answer.entity.slot() != nullptr) text = handent(*answer.entity.slot());
      break;
  }
  add(std::move(text), asked_);
}

void Recording::replaceLast(std::wstring text) {
  if (isOpen() && lines_.size() > begin_ + 1) lines_.back().text = std::move(text);
}

void Recording::wasPoint(const AcGePoint3d& point) { replaceLast(spelledPoint(point)); }

void Recording::wereEntities(const std::vector<database::Slot*>& entities) {
  if (!isOpen() || lines_.size() <= begin_ + 1) return;
  const std::wstring prompt = lines_.back().prompt;
  lines_.pop_back();
  for (const database::Slot* entity : entities) add(handent(*entity), prompt);
}

void Recording::wasNothing() { replaceLast({}); }

void Recording::wasWindow(std::size_t corner, bool isCrossing) {
  if (!isOpen() || corner <= begin_ + 1 || corner > lines_.size()) return;
  Line option = lines_[corner - 1];
  option.text = isCrossing ? L"C" : L"W";
  lines_[corner - 1].prompt.clear();
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(corner - 1), std::move(option));
}

void Recording::wasNoWindow(std::size_t corner, bool goesOn) {
  if (!isOpen() || corner <= begin_ + 1 || corner >= lines_.size()) return;
  if (goesOn) lines_.pop_back();
  lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(corner - 1));
}

// ---- dialogs --------------------------------------------------------------------------------------------------------

void Recording::dialogWorked(std::wstring_view what, std::wstring_view line, std::wstring_view edited) {
  if (!isOpen()) return;
  const bool goesOn = !edited.empty() && lines_.back().prompt == what && lines_.back().text.starts_with(edited);
  if (goesOn) lines_.pop_back();
  add(spelled(line, AnswerForm::Line, false), what);
}

void Recording::dialogCancelled(std::wstring_view what) {
  if (isOpen()) add(std::wstring(kEscape), what);
}

std::string Recording::script(std::string_view title) const {
  std::string all = "; ";
  all.append(title).append("\n");
  for (const Line& line : lines_) all.append(text::toUtf8(line.text)).append("\n");
  return all;
}

}  // namespace host::editor

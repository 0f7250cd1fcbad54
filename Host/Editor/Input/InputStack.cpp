#include "Editor/Input/InputStack.h"

#include <utility>

namespace host::editor {

std::wstring_view Question::defaultAnswer() const {
  const std::size_t end = prompt.rfind(L'>');
  const std::size_t begin = end == std::wstring_view::npos ? end : prompt.rfind(L'<', end);
  return begin == std::wstring_view::npos ? std::wstring_view() : prompt.substr(begin + 1, end - begin - 1);
}

InputStack::Scope::Scope(InputStack& stack, InputSource& source) : stack_(stack), base_(stack.levels_.size()) {
  Level level;
  level.source = &source;
  stack_.levels_.push_back(std::move(level));
}

InputStack::Scope::Scope(InputStack& stack, std::unique_ptr<InputSource> answers)
    : stack_(stack), base_(stack.levels_.size()) {
  Level level;
  level.source = answers.get();
  level.owned = std::move(answers);
  level.isFromCode = true;
  stack_.levels_.push_back(std::move(level));
}

InputStack::Scope::~Scope() { stack_.levels_.resize(base_); }

void InputStack::Scope::dropScripts() { stack_.levels_.resize(base_ + 1); }

bool InputStack::Scope::isOver() const { return stack_.levels_.size() <= base_ || stack_.levels_.back().hasFailed; }

void InputStack::pushScript(std::unique_ptr<InputSource> script, std::wstring name) {
  Level level;
  level.source = script.get();
  level.owned = std::move(script);
  level.undoGroup = {++scriptCount_, std::move(name)};
  levels_.push_back(std::move(level));
}

Answer InputStack::pull(const Question& question) {
  while (!levels_.empty()) {
    Answer answer = levels_.back().source->next(question);
    // A script that another one called hands back to it; a run's own input and code's answers just end.
    if (answer.kind != Answer::Kind::End || levels_.back().owned == nullptr || levels_.back().isFromCode) return answer;
    levels_.pop_back();
  }
  return {};
}

Place InputStack::place() const {
  for (auto level = levels_.rbegin(); level != levels_.rend(); ++level) {
    Place here = level->source->place();
    if (here.isKnown()) return here;
  }
  return {};
}

database::UndoGroup InputStack::scriptGroup() const {
  for (const Level& level : levels_) {
    if (level.undoGroup.number != 0) return level.undoGroup;
  }
  return {};
}

}  // namespace host::editor

#include "Window/Input/WindowInput.h"

#include "Window/Commands/Language.h"

namespace host::window {
namespace {

constexpr wchar_t kEscape[] = L"\x1b";
/// A command that asks again after every Esc would never come to rest.
constexpr int kMostCancels = 50;

}  // namespace

void WindowInput::wake() {
  if (loop_ != nullptr) loop_->quit();
}

void WindowInput::answer(const QStringList& lines) {
  for (const QString& line : lines) items_.push_back({Item::Kind::Line, line});
  wake();
}

void WindowInput::cancel() {
  items_.clear();
  items_.push_back({Item::Kind::Cancel, {}});
  wake();
}

void WindowInput::cancelToRest(const QStringList& lines) {
  items_.clear();
  items_.push_back({Item::Kind::Rest, {}});
  answer(lines);
}

void WindowInput::leave() {
  isLeaving_ = true;
  items_.clear();
  wake();
}

std::optional<std::wstring> WindowInput::readLine(const editor::Question& question) {
  const bool isCommand = question.wanted == editor::Wanted::Command;
  for (;;) {
    if (isLeaving_) return std::nullopt;
    if (!items_.empty()) {
      const Item item = items_.front();
      if (item.kind == Item::Kind::Rest) {
        if (isCommand || ++cancels_ > kMostCancels) {
          cancels_ = 0;
          items_.pop_front();
          continue;
        }
        emit answering({}, false, true);
        return kEscape;
      }
      items_.pop_front();
      const bool isCancel = item.kind == Item::Kind::Cancel;
      emit answering(item.line, isCommand && !isCancel, isCancel);
      return isCancel ? std::wstring(kEscape) : fromQt(item.line);
    }
    question_ = &question;
    isWaiting_ = true;
    QEventLoop loop;
    loop_ = &loop;
    emit asked();
    // An answer may have come while the question was shown.
    if (items_.empty() && !isLeaving_) loop.exec();
    loop_ = nullptr;
    isWaiting_ = false;
    question_ = nullptr;
  }
}

}  // namespace host::window

#include "Editor/Session/Transcript.h"

#include "Text/Text.h"

namespace host::editor {

void Transcript::write(std::wstring_view text) {
  if (text.empty()) return;
  atLineStart_ = text.back() == L'\n';
  if (sink_) sink_(text::printable(text));
}

void Transcript::print(std::wstring_view text) {
  if (text.empty()) return;
  if (breakDue_) {
    breakDue_ = false;
    if (text.front() != L'\n') write(L"\n");
  }
  write(text);
}

void Transcript::finishLine() {
  if (breakDue_ || !atLineStart_) write(L"\n");
  breakDue_ = false;
}

void Transcript::line(std::wstring_view text) {
  finishLine();
  while (text.starts_with(L'\n')) text.remove_prefix(1);
  while (text.ends_with(L'\n')) text.remove_suffix(1);
  write(text);
  breakDue_ = true;
}

void Transcript::prompt(std::wstring_view text) {
  if (text.empty()) return;
  if (text.front() != L'\n') {
    finishLine();
  } else if (breakDue_ || atLineStart_) {
    // The cursor stands, or is about to stand, on a fresh line: the prompt's own break would leave an empty one.
    finishLine();
    text.remove_prefix(1);
  }
  write(text);
}

void Transcript::echo(std::wstring_view text) {
  write(text);
  breakDue_ = true;
}

}  // namespace host::editor
